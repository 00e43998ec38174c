// What DecSND asks of libsndfile to open and to close a file, and what it then says of it.

#include "SndFixture.h"
#include "runtime/RuntimeError.h"
#include "support/RaisedErrors.h"

#include <gmock/gmock.h>
#include <limits>
#include <string>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(SndCalls, creation_loads_the_library_and_release_unloads_it) {
    { DecSND source(StandIns::api()); }
    EXPECT_THAT(libraries.loads, ElementsAre("load libsndfile.dll", "free libsndfile.dll"));
}

TEST_F(SndCalls, every_operation_returns_3_without_the_library) {
    libraries.remove("libsndfile.dll");
    DecSND source(StandIns::api());
    char buffer[4];
    std::int32_t got = 7;
    EXPECT_EQ(source.OpenSource(L"a.au"), 3);
    EXPECT_EQ(source.Read(buffer, 4, got), 3);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(seek(source, 0, 0), 3);
    EXPECT_EQ(seek(source, -1, 0), 3);
    EXPECT_EQ(source.CloseSource(), 3);
}

TEST_F(SndCalls, the_properties_raise_nothing_about_the_library_when_it_is_missing) {
    libraries.remove("libsndfile.dll");
    DecSND source(StandIns::api());
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_EQ(source.Tags()->TagCount(), 0);
    for (const auto time : {&DecSND::Position, &DecSND::Duration}) {
        try {
            (void)(source.*time)();
            FAIL() << "no error";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), 6) << "no frames at no rate";
        }
    }
}

TEST_F(SndCalls, open_for_reading_measures_by_seeking_to_the_end_and_back) {
    DecSND source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"C:\\folder\\a.au"), 0);
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"sf_open", {16}}, Call{"sf_seek", {handle, 0, 0, 2}},
                            Call{"sf_seek", {handle, 0, 0, 0}}));
    EXPECT_EQ(openedPath, "C:\\folder\\a.au");
}

TEST_F(SndCalls, a_file_that_the_library_refuses_returns_1) {
    results.open = 0;
    DecSND source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"a.au"), 1);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_open", {16}}));
}

TEST_F(SndCalls, a_name_that_no_file_has_returns_1_and_is_not_opened) {
    DecSND source(StandIns::api());
    for (const std::wstring& name :
         {std::wstring(L"a.au\0b", 6), std::wstring(), std::wstring(L"AUX.au"),
          std::wstring(L"C:\\folder\\com1.snd")})
        EXPECT_EQ(source.OpenSource(name), 1);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(SndCalls, a_name_that_the_code_page_lacks_is_opened_by_its_characters) {
    addExport("sf_wchar_open", &sfWcharOpen);
    DecSND source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"\x4E00.au"), 0);
    EXPECT_EQ(libraries.calls.front(), (Call{"sf_wchar_open", {16}}));
    EXPECT_EQ(openedName, L"\x4E00.au");
}

TEST_F(SndCalls, open_on_an_open_object_closes_the_old_file_first_also_when_the_new_open_fails) {
    DecSND& source = opened();
    results.open = 0;
    EXPECT_EQ(source.OpenSource(L"b.au"), 1);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_close", {handle}}, Call{"sf_open", {16}}));
    char buffer[4];
    std::int32_t got = 0;
    EXPECT_EQ(source.Read(buffer, 4, got), 1);
}

TEST_F(SndCalls, close_zeroes_the_information_and_the_format_record) {
    DecSND& source = opened();
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_close", {handle}}));
    EXPECT_EQ(source.Channels(), 0);
    EXPECT_EQ(source.SampleRate(), 0);
    EXPECT_EQ(source.WFXPointer()->wFormatTag, 0);
}

TEST_F(SndCalls, closing_or_reading_or_seeking_without_a_file_returns_1) {
    DecSND source(StandIns::api());
    char buffer[4];
    std::int32_t got = 7;
    EXPECT_EQ(source.CloseSource(), 1);
    EXPECT_EQ(source.Read(buffer, 4, got), 1);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(seek(source, -1, 0), 1);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(SndCalls, release_closes_an_open_file) {
    {
        DecSND source(StandIns::api());
        source.OpenSource(L"a.au");
        libraries.calls.clear();
    }
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_close", {handle}}));
}

TEST_F(SndCalls, a_missing_export_raises_error_1) {
    libraries.removeExport("libsndfile.dll", "sf_open");
    DecSND source(StandIns::api());
    EXPECT_THROW(source.OpenSource(L"a.au"), RuntimeError);
}

TEST_F(SndCalls, any_missing_export_raises_error_1_where_it_is_needed_and_leaks_no_file) {
    libraries.withoutEachExport([this](const std::string& library, const std::string& name) {
        SCOPED_TRACE(library + " without " + name);
        EXPECT_THAT(raisedErrors<DecSND>(L"a.au"), testing::Contains(1));
        EXPECT_THAT(raisedErrors<DecSND>(L"a.au"), testing::Each(1));
        if (name != "sf_close") {
            EXPECT_EQ(libraries.called("sf_close"), libraries.called("sf_open"));
        }
        libraries.calls.clear();
    });
}

struct Width {
    std::int32_t subtype;
    WORD bits;
    WORD blockAlign; // of one channel
};

TEST_F(SndCalls, the_record_has_the_width_of_the_subtype) {
    constexpr Width widths[] = {{1, 8, 1},  {5, 8, 1},  {2, 16, 2}, {3, 24, 3},   {4, 32, 4},
                                {6, 32, 4}, {7, 64, 8}, {0, 4, 0},  {0x10, 4, 0}, {0xFFFF, 4, 0}};
    for (const Width& width : widths) {
        results.info = {1000, 0, 1000, 1, 0x030000 | width.subtype, 1, 1, 0};
        const WAVEFORMATEX& format = *opened().WFXPointer();
        EXPECT_EQ(format.wBitsPerSample, width.bits) << width.subtype;
        EXPECT_EQ(format.nBlockAlign, width.blockAlign) << width.subtype;
        EXPECT_EQ(format.nAvgBytesPerSec, width.blockAlign * 1000u) << width.subtype;
    }
}

TEST_F(SndCalls, half_a_byte_of_block_align_rounds_to_the_even_number) {
    results.info.format = 0x10;
    results.info.channels = 3; // 1.5 bytes
    EXPECT_EQ(opened().WFXPointer()->nBlockAlign, 2);
}

TEST_F(SndCalls, a_24_bit_file_says_16_bits_while_its_record_keeps_24) {
    results.info.format = 3;
    DecSND& source = opened();
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_TRUE(source.Force16Bit());
    EXPECT_EQ(source.WFXPointer()->wBitsPerSample, 24);
}

TEST_F(SndCalls, the_bitrate_is_the_byte_rate_of_the_record) {
    results.info.format = 3;
    EXPECT_EQ(opened().Bitrate(), 1000 * 2 * 3);
}

TEST_F(SndCalls, a_byte_rate_that_overflows_raises_overflow_and_the_file_is_closed_at_the_end) {
    results.info.sampleRate = std::numeric_limits<std::int32_t>::max();
    {
        DecSND source(StandIns::api());
        EXPECT_THROW(source.OpenSource(L"a.au"), RuntimeError);
    }
    EXPECT_EQ(libraries.calls.back(), (Call{"sf_close", {handle}}));
}

TEST_F(SndCalls, more_channels_than_16_bits_count_raise_overflow) {
    results.info.channels = 40000;
    DecSND source(StandIns::api());
    EXPECT_THROW(source.OpenSource(L"a.au"), RuntimeError);
}

TEST_F(SndCalls, the_fixed_properties) {
    DecSND source(StandIns::api());
    EXPECT_EQ(source.FormatName(), L"Sndfile Audio");
    EXPECT_THAT(source.Extensions(),
                ElementsAre(L"au", L"snd", L"aiff", L"aifc", L"aif", L"voc", L"vox"));
    EXPECT_TRUE(source.Seekable());
    EXPECT_EQ(source.Tags(), source.Tags());
}

} // namespace
} // namespace corvina::test
