// What DecAPE asks of MACDll.dll, with stand-ins that write every call down.

#include "runtime/RuntimeError.h"
#include "sources/DecAPE.h"
#include "support/ErrorsOfUse.h"
#include "support/StandIns.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t handle = 0xA9E;

struct Answers {
    std::int32_t create = handle;
    std::map<std::int32_t, std::int32_t> information{{1003, 44100}, {1004, 16},     {1006, 2},
                                                     {1007, 4},     {1016, 441000}, {1017, 10000},
                                                     {1018, 700},   {2001, 1234}};
    std::int32_t retrieved = 0;
};
Answers answers;
std::string openedPath;

std::int32_t __stdcall create(const char* path, std::int32_t* error) {
    openedPath = path;
    StandIns::record("Create", {});
    *error = 0;
    return answers.create;
}
std::int32_t __stdcall getInfo(std::int32_t decoder, std::int32_t field, std::int32_t first,
                               std::int32_t second) {
    StandIns::record("GetInfo", {decoder, field, first, second});
    return decoder == 0 ? 0 : answers.information[field];
}
std::int32_t __stdcall getData(std::int32_t decoder, std::int32_t buffer, std::int32_t blocks,
                               std::int32_t* retrieved) {
    StandIns::record("GetData", {decoder, buffer, blocks});
    *retrieved = answers.retrieved;
    return 0;
}
std::int32_t __stdcall seekTo(std::int32_t decoder, std::int32_t block) {
    StandIns::record("Seek", {decoder, block});
    return 0;
}
std::int32_t __stdcall destroy(std::int32_t decoder) {
    StandIns::record("Destroy", {decoder});
    return 0;
}

std::int32_t seek(DecAPE& source, std::int32_t value, std::int32_t mode) {
    return source.SeekTo(value, mode);
}

class ApeCalls : public testing::Test {
protected:
    ApeCalls() {
        answers = {};
        libraries.add("MACDll.dll", {{"c_APEDecompress_Create", standIn(&create)},
                                     {"c_APEDecompress_GetInfo", standIn(&getInfo)},
                                     {"c_APEDecompress_GetData", standIn(&getData)},
                                     {"c_APEDecompress_Seek", standIn(&seekTo)},
                                     {"c_APEDecompress_Destroy", standIn(&destroy)}});
    }

    DecAPE& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(path), 0);
        libraries.calls.clear();
        return *source_;
    }

    TempFolder folder;
    std::wstring path = folder.write(L"a.ape", {1});
    StandIns libraries;

private:
    std::optional<DecAPE> source_;
};

Call info(std::int32_t field) {
    return {"GetInfo", {handle, field, 0, 0}};
}

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

TEST_F(ApeCalls, a_missing_file_answers_1_before_the_library_is_loaded) {
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
        EXPECT_THAT(errorsOfUse<DecAPE>(path), testing::Contains(453));
        EXPECT_THAT(errorsOfUse<DecAPE>(path), testing::Each(453));
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
    answers.create = 0;
    DecAPE source(StandIns::api());
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_EQ(libraries.calls.at(1), (Call{"GetInfo", {0, 1004, 0, 0}}));
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_EQ(source.Duration(), 0);
    libraries.calls.clear();
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_THAT(libraries.calls, IsEmpty());
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
    answers.information[1018] = 2147484;
    EXPECT_THROW((void)opened().Bitrate(), RuntimeError);
}

TEST_F(ApeCalls, channels_or_bits_beyond_16_bits_raise_overflow) {
    DecAPE source(StandIns::api());
    answers.information[1006] = 40000;
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
    answers.information[1006] = 2;
    answers.information[1004] = -40000;
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
}

TEST_F(ApeCalls, read_asks_for_blocks_and_answers_bytes) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    answers.retrieved = 1;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, 4);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"GetData", {handle, word(buffer), 2}}));
}

TEST_F(ApeCalls, the_size_of_a_block_is_that_of_the_record_whatever_the_library_says) {
    answers.information[1007] = 6;
    DecAPE& source = opened();
    char buffer[12];
    std::int32_t got = 0;
    answers.retrieved = 2;
    source.Read(buffer, 12, got);
    EXPECT_EQ(got, 8);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"GetData", {handle, word(buffer), 3}}));
}

TEST_F(ApeCalls, part_of_a_block_is_never_asked_for_because_the_buffer_has_no_room_for_the_rest) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    source.Read(buffer, 5, got);
    source.Read(buffer, 7, got); // 1.75 blocks, nearest 2
    source.Read(buffer, 3, got);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"GetData", {handle, word(buffer), 1}},
                                             Call{"GetData", {handle, word(buffer), 1}},
                                             Call{"GetData", {handle, word(buffer), 0}}));
}

TEST_F(ApeCalls, reading_at_the_end_answers_5_with_0_bytes) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 8, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(ApeCalls, read_on_a_closed_source_answers_1_and_calls_nothing) {
    DecAPE source(StandIns::api());
    char buffer[8];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 8, got), 1);
    EXPECT_EQ(got, 7);
    EXPECT_THAT(libraries.loads, IsEmpty());
}

TEST_F(ApeCalls, reading_a_file_that_the_library_refused_is_a_division_by_zero) {
    answers.create = 0;
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    EXPECT_THROW(source.Read(buffer, 8, got), RuntimeError);
}

TEST_F(ApeCalls, half_a_block_rounds_to_the_even_one) {
    answers.information[1016] = 1'000'001;
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 50, 0), 0); // 500,000.5
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 500'000}}));
}

TEST_F(ApeCalls, seconds_are_the_same_part_of_the_blocks_as_of_the_length) {
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 132'300}}));
}

TEST_F(ApeCalls, the_ends_of_both_ranges_are_accepted) {
    DecAPE& source = opened();
    for (const std::int32_t mode : {0, 1})
        EXPECT_EQ(seek(source, 0, mode), 0);
    EXPECT_EQ(seek(source, 100, 0), 0);
    EXPECT_EQ(seek(source, 10, 1), 0);
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"Seek", {handle, 0}}, Call{"Seek", {handle, 0}},
                            Call{"Seek", {handle, 441'000}}, Call{"Seek", {handle, 441'000}}));
}

TEST_F(ApeCalls, a_seek_out_of_range_answers_3_and_calls_nothing) {
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, -1, 0), 3);
    EXPECT_EQ(seek(source, 101, 0), 3);
    EXPECT_EQ(seek(source, -1, 1), 3);
    EXPECT_EQ(seek(source, 11, 1), 3);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(ApeCalls, the_start_can_be_sought_in_a_file_without_length) {
    answers.information[1017] = 0;
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 0, 1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 0}}));
}

TEST_F(ApeCalls, any_other_mode_goes_to_the_start) {
    DecAPE& source = opened();
    EXPECT_EQ(seek(source, 5, 2), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"Seek", {handle, 0}}));
}

TEST_F(ApeCalls, a_seek_after_the_end_resets_it) {
    DecAPE& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    source.Read(buffer, 8, got);
    seek(source, 0, 0);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(ApeCalls, seeking_a_closed_source_does_nothing) {
    DecAPE source(StandIns::api());
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_THAT(libraries.loads, IsEmpty());
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
