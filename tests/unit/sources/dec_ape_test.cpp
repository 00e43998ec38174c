// What DecAPE asks of MACDll.dll to open and close a file and to describe it.

#include "ApeFixture.h"
#include "runtime/RuntimeError.h"
#include "support/RaisedErrors.h"

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ApeCalls, creation_loads_nothing) {
    DecAPE source(StandIns::api());
    EXPECT_THAT(libraries.loads, IsEmpty());
}

TEST_F(ApeCalls, open_asks_the_fields_in_order) {
    DecAPE source(StandIns::api());
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Create", {}}, info(1004), info(1007), info(1003),
                                             info(1006), info(1018), info(1017), info(1016)));
    EXPECT_THAT(openedPath, testing::EndsWith("\\a.ape"));
    EXPECT_THAT(libraries.loads, ElementsAre("load MACDll.dll"));
}

TEST_F(ApeCalls, a_missing_file_returns_1_before_the_library_is_loaded) {
    DecAPE source(StandIns::api());
    EXPECT_EQ(source.OpenSource(folder.path() + L"\\none.ape"), 1);
    EXPECT_THAT(libraries.loads, IsEmpty());
}

TEST_F(ApeCalls, a_missing_file_leaves_an_open_one_open) {
    DecAPE& source = opened();
    EXPECT_EQ(source.OpenSource(folder.path() + L"\\none.ape"), 1);
    EXPECT_THAT(libraries.calls, IsEmpty());
    char buffer[4];
    std::int32_t got = 0;
    EXPECT_EQ(source.Read(buffer, 4, got), 5);
}

TEST_F(ApeCalls, a_missing_library_raises_error_53_that_names_it_at_each_open) {
    libraries.remove("MACDll.dll");
    DecAPE source(StandIns::api());
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            source.OpenSource(path);
            FAIL() << "no error";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), 53);
            EXPECT_THAT(error.text(), testing::HasSubstr(L"MACDll.dll"));
        }
    }
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST_F(ApeCalls, a_missing_export_raises_error_453_that_names_both) {
    libraries.removeExport("MACDll.dll", "c_APEDecompress_GetInfo");
    DecAPE source(StandIns::api());
    try {
        source.OpenSource(path);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 453);
        EXPECT_THAT(error.text(), testing::HasSubstr(L"c_APEDecompress_GetInfo in MACDll.dll"));
    }
}

TEST_F(ApeCalls, any_missing_export_raises_error_453_where_it_is_needed_and_leaks_no_decoder) {
    libraries.withoutEachExport([this](const std::string& library, const std::string& name) {
        SCOPED_TRACE(library + " without " + name);
        EXPECT_THAT(raisedErrors<DecAPE>(path), testing::Contains(453));
        EXPECT_THAT(raisedErrors<DecAPE>(path), testing::Each(453));
        if (name != "c_APEDecompress_Destroy") {
            EXPECT_EQ(libraries.called("Destroy"), libraries.called("Create"));
        }
        libraries.calls.clear();
    });
}

TEST_F(ApeCalls, the_decoder_of_an_open_that_raised_an_error_is_destroyed_with_the_source) {
    libraries.removeExport("MACDll.dll", "c_APEDecompress_GetInfo");
    {
        DecAPE source(StandIns::api());
        EXPECT_THROW(source.OpenSource(path), RuntimeError);
    }
    EXPECT_EQ(libraries.calls.back(), (Call{"Destroy", {handle}}));
}

TEST_F(ApeCalls, a_handle_of_0_is_not_tested_and_is_passed_on) {
    results.create = 0;
    DecAPE source(StandIns::api());
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_EQ(libraries.calls.at(1), (Call{"GetInfo", {0, 1004, 0, 0}}));
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_EQ(source.Duration(), 0);
    libraries.calls.clear();
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(ApeCalls, an_open_that_raised_an_error_leaves_the_source_closed) {
    results.create = 0;
    DecAPE& source = opened();
    libraries.removeExport("MACDll.dll", "c_APEDecompress_Create");
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
    char buffer[4];
    std::int32_t got = 0;
    EXPECT_EQ(source.Read(buffer, 4, got), 1);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_EQ(libraries.called("Seek"), 0);
}

TEST_F(ApeCalls, opening_again_begins_at_the_start_with_another_decoder) {
    DecAPE& source = opened();
    std::int32_t got = 0;
    char buffer[400];
    EXPECT_EQ(source.Read(buffer, 400, got), 5);
    EXPECT_TRUE(source.EndOfStream());
    libraries.calls.clear();
    results.information[2001] = 0;
    ASSERT_EQ(source.OpenSource(path), 0);
    EXPECT_EQ(libraries.calls.front(), (Call{"Destroy", {handle}}));
    EXPECT_EQ(libraries.called("Create"), 1);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(source.Position(), 0);
}

TEST_F(ApeCalls, the_numbers_come_from_the_library) {
    DecAPE& source = opened();
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.Duration(), 10000);
    EXPECT_EQ(source.Bitrate(), 700000);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_TRUE(source.Seekable());
    EXPECT_FALSE(source.Force16Bit());
    const WAVEFORMATEX& format = *source.WFXPointer();
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(format.nBlockAlign, 4);
    EXPECT_EQ(format.nAvgBytesPerSec, 176400u);
}

TEST_F(ApeCalls, the_position_is_asked_of_the_decoder_each_time) {
    DecAPE& source = opened();
    EXPECT_EQ(source.Position(), 1234);
    EXPECT_THAT(libraries.calls, ElementsAre(info(2001)));
}

TEST_F(ApeCalls, the_position_of_a_closed_source_is_0) {
    EXPECT_EQ(DecAPE(StandIns::api()).Position(), 0);
    EXPECT_THAT(libraries.loads, IsEmpty());
}

TEST_F(ApeCalls, a_bitrate_that_overflows_raises_overflow) {
    results.information[1018] = 2147484;
    EXPECT_THROW((void)opened().Bitrate(), RuntimeError);
}

TEST_F(ApeCalls, channels_or_bits_beyond_16_bits_raise_overflow) {
    DecAPE source(StandIns::api());
    results.information[1006] = 40000;
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
    results.information[1006] = 2;
    results.information[1004] = -40000;
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
}

TEST_F(ApeCalls, open_on_an_open_source_destroys_the_old_decoder_first) {
    DecAPE& source = opened();
    source.OpenSource(path);
    EXPECT_EQ(libraries.calls.at(0), (Call{"Destroy", {handle}}));
    EXPECT_EQ(libraries.calls.at(1), (Call{"Create", {}}));
}

TEST_F(ApeCalls, release_destroys_the_decoder_and_frees_the_library) {
    {
        DecAPE source(StandIns::api());
        source.OpenSource(path);
        libraries.calls.clear();
    }
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Destroy", {handle}}));
    EXPECT_EQ(libraries.loads.back(), "free MACDll.dll");
}

TEST_F(ApeCalls, the_extension_is_ape) {
    EXPECT_THAT(DecAPE(StandIns::api()).Extensions(), ElementsAre(L"ape"));
}

} // namespace
} // namespace corvina::test
