#include "StandInReader.h"
#include "sources/DecWMAMP3.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina {
namespace {

using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

class WindowsMediaFormat : public testing::Test {
protected:
    void SetUp() override { layFile(10'000'000, {}); }

    std::int32_t open() {
        source.OpenSource(L"song.wma");
        source.CloseSource();
        (void)library.takeCalls();
        return source.OpenSource(L"song.wma");
    }

    // What was called from the count of outputs up to the choice.
    std::vector<std::string> choice() {
        std::vector<std::string> calls = library.takeCalls();
        calls.erase(calls.begin());
        while (!calls.empty() && (calls.back().starts_with("GetAttribute") ||
                                  calls.back().starts_with("SetRangeByFrame")))
            calls.pop_back();
        return calls;
    }

    DecWMAMP3 source{standInApi};
};

TEST_F(WindowsMediaFormat, the_chosen_format_is_the_sources) {
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.WFXPointer()->nAvgBytesPerSec, 176400u);
    EXPECT_EQ(source.WFXPointer()->nBlockAlign, 4);
}

TEST_F(WindowsMediaFormat, the_record_stays_where_it_is_while_the_source_is_open) {
    EXPECT_EQ(open(), 0);
    const WAVEFORMATEX* const record = source.WFXPointer();
    std::int32_t got = 0;
    std::int32_t mode = 0;
    (void)source.Read(nullptr, 10, got);
    (void)source.SeekTo(0, mode);
    (void)source.CloseSource();
    EXPECT_EQ(source.WFXPointer(), record);
    EXPECT_EQ(record->wBitsPerSample, 16);
}

TEST_F(WindowsMediaFormat, before_any_open_the_record_is_zero) {
    EXPECT_EQ(source.BitsPerSample(), 0);
    EXPECT_EQ(source.SampleRate(), 0);
}

// The deliberate exchange of both numbers, and one format more than there are.
TEST_F(WindowsMediaFormat, format_numbers_go_in_as_outputs_and_one_past_their_count) {
    library.formatCounts = {{0, 3}};
    library.formats.clear();
    EXPECT_EQ(open(), 12);
    EXPECT_THAT(choice(), ElementsAre("GetOutputCount", "GetOutputFormatCount 0",
                                      "GetOutputFormat 0 0", "GetOutputFormat 1 0",
                                      "GetOutputFormat 2 0", "GetOutputFormat 3 0", "Close"));
}

TEST_F(WindowsMediaFormat, a_match_is_set_for_the_outer_number) {
    library.outputs = 2;
    library.formatCounts = {{0, 1}, {1, 2}};
    library.formats = {{{2, 1}, pcmFormat(16)}};
    EXPECT_EQ(open(), 0);
    EXPECT_THAT(choice(),
                ElementsAre("GetOutputCount", "GetOutputFormatCount 0", "GetOutputFormat 0 0",
                            "GetOutputFormat 1 0", "GetOutputFormatCount 1", "GetOutputFormat 0 1",
                            "GetOutputFormat 1 1", "GetOutputFormat 2 1", "GetMediaTypeSize",
                            "GetMediaType", "SetMediaType 16", "SetOutputProps 1"));
}

TEST_F(WindowsMediaFormat, the_streams_of_all_other_outputs_are_switched_off_last) {
    library.outputs = 3;
    library.formatCounts = {{0, 2}};
    library.formats = {{{1, 0}, pcmFormat(16)}};
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(library.calls.back(), "SetStreamsSelected 1 off 3 off");
}

TEST_F(WindowsMediaFormat, a_file_with_one_output_keeps_its_stream_untouched) {
    EXPECT_EQ(open(), 0);
    EXPECT_FALSE(library.calls.empty());
    for (const std::string& call : library.calls) {
        EXPECT_EQ(call.find("SetStreamsSelected"), std::string::npos);
        EXPECT_EQ(call.find("GetStreamNumberForOutput"), std::string::npos);
    }
}

TEST_F(WindowsMediaFormat, an_output_whose_formats_cannot_be_counted_is_passed_over) {
    library.outputs = 2;
    library.formatCounts = {{1, 0}};
    library.formats = {{{0, 1}, pcmFormat(16)}};
    EXPECT_EQ(open(), 0);
    EXPECT_THAT(choice(), Contains("SetOutputProps 1"));
}

TEST_F(WindowsMediaFormat, a_file_without_outputs_returns_12_and_the_reader_is_closed) {
    library.outputs = 0;
    EXPECT_EQ(open(), 12);
    EXPECT_THAT(choice(), ElementsAre("GetOutputCount", "Close"));
    EXPECT_FALSE(library.fileOpen);
}

TEST_F(WindowsMediaFormat, outputs_that_cannot_be_counted_close_the_reader_twice) {
    library.results = {{"GetOutputCount", E_FAIL}};
    EXPECT_EQ(open(), 12);
    EXPECT_THAT(choice(), ElementsAre("GetOutputCount", "Close", "Close"));
}

TEST_F(WindowsMediaFormat, a_video_output_returns_12) {
    library.formats.at({0, 0}).major = mediaVideo;
    EXPECT_EQ(open(), 12);
    EXPECT_THAT(choice(), Not(Contains(StartsWith("SetMediaType"))));
}

TEST_F(WindowsMediaFormat, a_compressed_output_returns_12) {
    library.formats.at({0, 0}).subtype = mediaAudio;
    EXPECT_EQ(open(), 12);
}

TEST_F(WindowsMediaFormat, only_8_or_24_bit_outputs_return_12_and_the_reader_is_closed) {
    for (const WORD bits : {WORD{8}, WORD{24}}) {
        library.formats = {{{0, 0}, pcmFormat(bits)}};
        EXPECT_EQ(open(), 12);
        EXPECT_FALSE(library.fileOpen);
    }
}

TEST_F(WindowsMediaFormat, pcm_of_another_width_stays_in_the_record_when_nothing_better_comes) {
    library.formats = {{{0, 0}, pcmFormat(24)}};
    EXPECT_EQ(open(), 12);
    EXPECT_EQ(source.BitsPerSample(), 24);
}

TEST_F(WindowsMediaFormat, a_16_bit_format_replaces_one_of_another_width_before_it) {
    library.formats = {{{0, 0}, pcmFormat(8)}, {{1, 0}, pcmFormat(16)}};
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_THAT(choice(), Contains("SetOutputProps 0"));
}

TEST_F(WindowsMediaFormat, properties_that_do_not_report_their_type_are_passed_over) {
    for (const char* function : {"GetMediaTypeSize", "GetMediaType"}) {
        library.results = {{function, E_FAIL}};
        EXPECT_EQ(open(), 12);
    }
}

TEST_F(WindowsMediaFormat, failures_to_set_what_was_found_do_not_matter) {
    library.results = {{"SetMediaType", E_FAIL}, {"SetOutputProps", E_FAIL}};
    EXPECT_EQ(open(), 0);
}

TEST_F(WindowsMediaFormat, a_format_block_of_16_bytes_is_enough) {
    library.formats.at({0, 0}).block.resize(16);
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(source.WFXPointer()->cbSize, 0);
    EXPECT_EQ(source.BitsPerSample(), 16);
}

TEST_F(WindowsMediaFormat, a_format_block_without_the_width_returns_12) {
    for (const std::size_t bytes : {0u, 1u, 14u}) {
        library.formats = {{{0, 0}, pcmFormat(16)}};
        library.formats.at({0, 0}).block.resize(bytes);
        EXPECT_EQ(open(), 12) << bytes;
    }
}

TEST_F(WindowsMediaFormat, a_null_format_block_returns_12) {
    EXPECT_EQ(open(), 0) << "a good file before it does not help";
    library.formats.at({0, 0}).withoutBlock = true;
    EXPECT_EQ(open(), 12);
}

TEST_F(WindowsMediaFormat, a_media_type_of_nonsense_size_returns_12) {
    for (const DWORD bytes : {1u, 71u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        library.formats.at({0, 0}).typeBytes = bytes;
        EXPECT_EQ(open(), 12) << bytes;
    }
}

TEST_F(WindowsMediaFormat, a_media_type_of_more_than_a_megabyte_returns_12) {
    library.formats.at({0, 0}).typeBytes = 1024 * 1024;
    EXPECT_EQ(open(), 0);
    library.formats.at({0, 0}).typeBytes = 1024 * 1024 + 1;
    EXPECT_EQ(open(), 12);
}

TEST_F(WindowsMediaFormat, extra_bytes_that_the_record_counts_are_readable_behind_it) {
    std::vector<std::uint8_t>& block = library.formats.at({0, 0}).block;
    block[16] = 0xFF;
    block[17] = 0xFF;
    block.push_back(0xAB);
    EXPECT_EQ(open(), 0);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(source.WFXPointer());
    EXPECT_EQ(bytes[18], 0xAB);
    EXPECT_EQ(bytes[18 + 0xFFFE], 0);
}

TEST_F(WindowsMediaFormat, a_count_of_formats_that_never_ends_does) {
    library.formatCounts = {{0, 0xFFFFFFFF}};
    library.formats.clear();
    library.noting = false; // so many texts have no space among guarded blocks
    EXPECT_EQ(open(), 12);
}

} // namespace
} // namespace corvina
