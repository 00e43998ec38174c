#include "runtime/RuntimeError.h"
#include "sources/DecWMAMP3.h"
#include "unit/StandInReader.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>

namespace corvina {
namespace {

using namespace test;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

constexpr QWORD millisecond = 10'000;
constexpr QWORD second = 1000 * millisecond;

// Bytes that count on from first.
std::vector<std::uint8_t> counting(std::uint8_t first, std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

// One second in four blocks of ten bytes, each counting on.
void layFourBlocks() {
    layFile(second, {{0, counting(0, 10)},
                     {second / 4, counting(10, 10)},
                     {second / 2, counting(20, 10)},
                     {second / 4 * 3, counting(30, 10)}});
}

struct ReadResult {
    std::int32_t result = -1;
    std::vector<std::uint8_t> bytes;
};

ReadResult readFrom(DecWMAMP3& source, std::int32_t count) {
    ReadResult answer;
    answer.bytes.assign(static_cast<std::size_t>(std::max(count, 1)), 0xEE);
    std::int32_t got = -1;
    answer.result = source.Read(answer.bytes.data(), count, got);
    answer.bytes.resize(static_cast<std::size_t>(got));
    return answer;
}

std::int32_t seek(DecWMAMP3& source, std::int32_t value, std::int32_t mode) {
    return source.SeekTo(value, mode);
}

class WindowsMedia : public testing::Test {
protected:
    void SetUp() override { layFourBlocks(); }

    std::vector<std::string> callsOfOpen() {
        DecWMAMP3 source(standInApi);
        (void)library.takeCalls();
        openResult = source.OpenSource(L"song.wma");
        return library.takeCalls();
    }

    std::int32_t openResult = -1;
};

// ---- the library

TEST_F(WindowsMedia, creating_the_source_loads_the_library_and_creates_a_reader_for_playback) {
    DecWMAMP3 source(standInApi);
    EXPECT_THAT(library.calls, ElementsAre("LoadLibrary wmvcore.dll", "WMCreateSyncReader 1 null"));
}

TEST_F(WindowsMedia, destroying_the_source_releases_the_reader_before_it_frees_the_library) {
    { DecWMAMP3 source(standInApi); }
    EXPECT_EQ(library.calls.back(), "FreeLibrary with 0");
    EXPECT_EQ(library.libraryUses, 0);
}

TEST_F(WindowsMedia, destroying_an_open_source_closes_the_reader) {
    {
        DecWMAMP3 source(standInApi);
        source.OpenSource(L"song.wma");
        (void)library.takeCalls();
    }
    EXPECT_THAT(library.calls, ElementsAre("Close", "FreeLibrary with 0"));
}

TEST_F(WindowsMedia, without_the_library_open_and_close_answer_3_and_read_5) {
    library.missing = true;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
    EXPECT_EQ(source.CloseSource(), 3);
    const ReadResult read = readFrom(source, 10);
    EXPECT_EQ(read.result, 5);
    EXPECT_TRUE(read.bytes.empty());
    EXPECT_THAT(library.calls, ElementsAre("LoadLibrary wmvcore.dll"));
}

TEST_F(WindowsMedia, without_the_library_a_seek_is_refused) {
    library.missing = true;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(seek(source, 0, 0), 4);
}

TEST_F(WindowsMedia, a_library_without_the_export_is_as_good_as_none) {
    library.withoutExport = true;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
}

TEST_F(WindowsMedia, a_failed_creation_leaves_no_reader_whatever_it_left_in_the_pointer) {
    library.createResult = E_ACCESSDENIED;
    {
        DecWMAMP3 source(standInApi);
        EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
    }
    EXPECT_EQ(library.libraryUses, 0);
}

TEST_F(WindowsMedia, any_result_of_the_creation_but_0_is_a_failure) {
    library.createResult = S_FALSE;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
}

// ---- what it says of itself

TEST_F(WindowsMedia, it_plays_wma_mp3_and_wmv) {
    DecWMAMP3 source(standInApi);
    EXPECT_THAT(source.Extensions(), ElementsAre(L"wma", L"mp3", L"wmv"));
}

TEST_F(WindowsMedia, it_is_named_and_always_seekable_and_16_bit) {
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.FormatName(), L"Windows Media Audio");
    EXPECT_TRUE(source.Seekable());
    EXPECT_TRUE(source.Force16Bit());
    EXPECT_EQ(&source.Info(), static_cast<cSoundInf*>(&source));
}

TEST_F(WindowsMedia, it_stays_seekable_when_the_file_denies_it) {
    library.attributes.push_back(numberAttribute(L"Seekable", WMT_TYPE_BOOL, DWORD{0}));
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_TRUE(source.Seekable());
}

TEST_F(WindowsMedia, its_tags_are_one_collection_for_life) {
    DecWMAMP3 source(standInApi);
    StrmTags* const tags = source.Tags();
    EXPECT_EQ(tags->TagCount(), 0);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Tags(), tags);
}

// ---- opening

TEST_F(WindowsMedia, opening_calls_the_reader_in_the_stated_order) {
    EXPECT_THAT(callsOfOpen(),
                ElementsAre("Open song.wma", "GetOutputCount", "GetOutputFormatCount 0",
                            "GetOutputFormat 0 0", "GetMediaTypeSize", "GetMediaType",
                            "SetMediaType 16", "SetOutputProps 0", "SetRangeByFrame 1 0 0",
                            "GetAttributeCountEx 65535", "GetAttributeLengths 65535 0",
                            "GetAttributeByIndexEx 65535 0"));
    EXPECT_EQ(openResult, 0);
}

TEST_F(WindowsMedia, an_open_that_the_reader_refuses_answers_1_and_calls_nothing_more) {
    library.results = {{"Open", E_FAIL}};
    EXPECT_THAT(callsOfOpen(), ElementsAre("Open song.wma"));
    EXPECT_EQ(openResult, 1);
}

TEST_F(WindowsMedia, a_success_code_other_than_0_is_a_failure) {
    library.results = {{"Open", S_FALSE}};
    EXPECT_THAT(callsOfOpen(), ElementsAre("Open song.wma"));
    EXPECT_EQ(openResult, 1);
}

TEST_F(WindowsMedia, a_range_that_cannot_be_set_fails_the_open_with_12_and_closes_the_reader) {
    library.results = {{"SetRangeByFrame", E_NOTIMPL}};
    const std::vector<std::string> calls = callsOfOpen();
    EXPECT_EQ(openResult, 12);
    EXPECT_THAT(calls, Not(Contains(StartsWith("GetAttribute"))));
    EXPECT_EQ(calls.back(), "Close");
    EXPECT_FALSE(library.fileOpen);
}

TEST_F(WindowsMedia, attributes_that_cannot_be_counted_fail_the_open_with_12) {
    library.results = {{"GetAttributeCountEx", E_FAIL}};
    EXPECT_EQ(callsOfOpen().back(), "Close");
    EXPECT_EQ(openResult, 12);
    EXPECT_FALSE(library.fileOpen);
}

TEST_F(WindowsMedia, a_reader_without_a_header_fails_the_open_with_12) {
    library.withoutHeader = true;
    EXPECT_EQ(callsOfOpen().back(), "Close");
    EXPECT_EQ(openResult, 12);
}

TEST_F(WindowsMedia, a_second_open_leaves_the_first_file_to_the_reader) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"first.wma");
    (void)library.takeCalls();
    EXPECT_EQ(source.OpenSource(L"second.wma"), 0);
    EXPECT_EQ(library.calls.front(), "Open second.wma");
    EXPECT_THAT(library.calls, Not(Contains("Close")));
}

TEST_F(WindowsMedia, a_second_open_starts_at_its_own_first_byte) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"first.wma");
    seek(source, 75, 0);
    source.OpenSource(L"second.wma");
    EXPECT_EQ(source.Position(), 0);
    EXPECT_EQ(readFrom(source, 4).bytes, counting(0, 4));
}

TEST_F(WindowsMedia, a_second_open_that_the_reader_refuses_leaves_the_first_file_open) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"first.wma");
    library.results = {{"Open", E_UNEXPECTED}};
    EXPECT_EQ(source.OpenSource(L"second.wma"), 1);
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST_F(WindowsMedia, a_second_open_that_fails_later_leaves_nothing_open) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"first.wma");
    library.results = {{"SetRangeByFrame", E_FAIL}};
    EXPECT_EQ(source.OpenSource(L"second.wma"), 12);
    EXPECT_EQ(source.CloseSource(), 1);
}

// ---- closing

TEST_F(WindowsMedia, closing_a_source_that_is_not_open_answers_1) {
    DecWMAMP3 source(standInApi);
    (void)library.takeCalls();
    EXPECT_EQ(source.CloseSource(), 1);
    EXPECT_TRUE(library.calls.empty());
}

TEST_F(WindowsMedia, closing_drops_the_held_block_the_end_and_the_tags) {
    library.attributes.push_back(textAttribute(L"Title", L"Small Tune"));
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Tags()->TagCount(), 1);
    (void)readFrom(source, 100);
    seek(source, 0, 0);
    ASSERT_TRUE(source.EndOfStream());
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(source.Tags()->TagCount(), 0);
    library.blocks.clear();
    EXPECT_TRUE(readFrom(source, 4).bytes.empty());
    EXPECT_EQ(source.CloseSource(), 1);
}

TEST_F(WindowsMedia, a_closed_source_opens_again) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    source.CloseSource();
    EXPECT_EQ(source.OpenSource(L"song.wma"), 0);
    EXPECT_EQ(readFrom(source, 40).bytes, counting(0, 40));
}

// ---- reading

TEST_F(WindowsMedia, reading_asks_for_the_next_block_of_any_output) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    (void)readFrom(source, 1);
    EXPECT_THAT(library.calls, ElementsAre("GetNextSample 0", "GetBufferAndLength"));
}

TEST_F(WindowsMedia, a_read_across_a_block_boundary_joins_both_blocks) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 7);
    const ReadResult read = readFrom(source, 6);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.bytes, counting(7, 6));
    EXPECT_EQ(readFrom(source, 17).bytes, counting(13, 17));
}

TEST_F(WindowsMedia, a_read_that_ends_with_its_block_does_not_fetch_the_next) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 10);
    EXPECT_EQ(library.next, 1u);
}

TEST_F(WindowsMedia, a_read_that_meets_the_end_answers_5_with_the_bytes_left_and_then_none) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 33);
    EXPECT_FALSE(source.EndOfStream());
    const ReadResult last = readFrom(source, 10);
    EXPECT_EQ(last.result, 5);
    EXPECT_EQ(last.bytes, counting(33, 7));
    EXPECT_TRUE(source.EndOfStream());
    const ReadResult after = readFrom(source, 10);
    EXPECT_EQ(after.result, 5);
    EXPECT_TRUE(after.bytes.empty());
}

TEST_F(WindowsMedia, a_read_of_all_that_is_left_still_answers_0) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 40).result, 0);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_fetch_that_fails_otherwise_answers_5_without_the_end) {
    library.afterLastBlock = E_FAIL;
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 100).result, 5);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_fetch_that_fails_otherwise_takes_the_end_back) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 100);
    ASSERT_TRUE(source.EndOfStream());
    library.afterLastBlock = E_FAIL;
    (void)readFrom(source, 1);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_block_that_does_not_give_its_bytes_ends_the_read_and_is_released) {
    library.results = {{"GetBufferAndLength", E_FAIL}};
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    const int before = library.objects;
    EXPECT_EQ(readFrom(source, 10).result, 5);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(library.objects, before);
}

TEST_F(WindowsMedia, empty_blocks_are_passed_over) {
    layFile(second, {{0, {}}, {1, {}}, {2, counting(0, 4)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 4).bytes, counting(0, 4));
}

TEST_F(WindowsMedia, a_read_before_any_open_fetches_in_vain_and_answers_5) {
    library.blocks.clear();
    DecWMAMP3 source(standInApi);
    const ReadResult read = readFrom(source, 10);
    EXPECT_EQ(read.result, 5);
    EXPECT_TRUE(read.bytes.empty());
    EXPECT_EQ(library.calls.back(), "GetNextSample 0");
}

TEST_F(WindowsMedia, a_read_of_no_bytes_or_fewer_does_nothing) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    for (const std::int32_t count : {0, -1, -2147483647 - 1}) {
        std::int32_t got = 7;
        EXPECT_EQ(source.Read(nullptr, count, got), 0);
        EXPECT_EQ(got, 0);
    }
    EXPECT_TRUE(library.calls.empty());
}

TEST_F(WindowsMedia, memory_that_cannot_be_written_is_counted_as_if_it_had_been) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    static const std::uint8_t constant[25] = {};
    void* const targets[] = {nullptr, reinterpret_cast<void*>(0xFFFFFFF8),
                             const_cast<std::uint8_t*>(constant)};
    for (void* target : targets) {
        seek(source, 0, 0);
        std::int32_t got = 0;
        EXPECT_EQ(source.Read(target, 25, got), 0);
        EXPECT_EQ(got, 25);
        EXPECT_EQ(readFrom(source, 5).bytes, counting(25, 5));
    }
}

TEST_F(WindowsMedia, a_block_whose_length_lies_is_not_read) {
    for (const DWORD told : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        library.blocks[0].toldBytes = told;
        DecWMAMP3 source(standInApi);
        source.OpenSource(L"song.wma");
        const ReadResult read = readFrom(source, 10);
        EXPECT_EQ(read.result, 5);
        EXPECT_TRUE(read.bytes.empty());
    }
    EXPECT_EQ(library.objects, 0);
}

TEST_F(WindowsMedia, a_block_with_a_length_and_no_bytes_is_not_read) {
    library.blocks[0].withoutData = true;
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(readFrom(source, 10).result, 5);
}

// ---- position and duration

TEST_F(WindowsMedia, the_position_moves_in_steps_of_whole_blocks) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Position(), 0);
    (void)readFrom(source, 10);
    EXPECT_EQ(source.Position(), 0);
    (void)readFrom(source, 1);
    EXPECT_EQ(source.Position(), 250);
    (void)readFrom(source, 9);
    EXPECT_EQ(source.Position(), 250);
}

TEST_F(WindowsMedia, the_duration_is_the_attributes_in_milliseconds) {
    layFile(1'234'5'001, {});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Duration(), 1235);
}

TEST_F(WindowsMedia, a_time_beyond_32_bits_overflows) {
    layFile((QWORD{2147483647} + 1) * millisecond, {});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_THROW((void)source.Duration(), RuntimeError);
}

TEST_F(WindowsMedia, a_file_without_a_duration_does_not_keep_that_of_the_file_before) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    ASSERT_EQ(source.Duration(), 1000);
    source.CloseSource();
    library.attributes.clear();
    source.OpenSource(L"other.wma");
    EXPECT_EQ(source.Duration(), 0);
}

TEST_F(WindowsMedia, a_bitrate_beyond_32_bits_overflows) {
    library.attributes = {numberAttribute(L"Bitrate", WMT_TYPE_DWORD, DWORD{0x80000000})};
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_THROW((void)source.Bitrate(), RuntimeError);
}

// ---- seeking

TEST_F(WindowsMedia, a_percentage_is_of_the_exact_duration) {
    layFile(12'345'678, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 50, 0), 0);
    EXPECT_EQ(library.calls.front(), "SetRange 6172839 0");
}

TEST_F(WindowsMedia, a_seek_to_99_percent_is_accepted_and_to_100_refused) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 99, 0), 0);
    EXPECT_EQ(library.takeCalls().front(), "SetRange 9900000 0");
    EXPECT_EQ(seek(source, 100, 0), 4);
    EXPECT_EQ(seek(source, -1, 0), 4);
    EXPECT_EQ(seek(source, 2147483647, 0), 4);
    EXPECT_TRUE(library.calls.empty());
}

TEST_F(WindowsMedia, a_seek_in_seconds_goes_as_far_as_the_duration) {
    layFile(3 * second, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_EQ(library.takeCalls().front(), "SetRange 30000000 0");
    EXPECT_EQ(seek(source, 4, 1), 4);
    EXPECT_EQ(seek(source, -1, 1), 4);
    EXPECT_TRUE(library.calls.empty());
}

// 2.9996 s are 3000 ms when rounded, and so the third second is within it, but the place is taken
// from the exact time.
TEST_F(WindowsMedia, a_seek_in_seconds_is_judged_by_the_rounded_and_placed_by_the_exact_duration) {
    layFile(29'996'000, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_EQ(library.calls.front(), "SetRange 29996000 0");
}

TEST_F(WindowsMedia, a_seek_in_another_mode_goes_to_the_start) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    for (const std::int32_t mode : {2, -1, 77}) {
        (void)library.takeCalls();
        EXPECT_EQ(seek(source, -5, mode), 0);
        EXPECT_EQ(library.calls.front(), "SetRange 0 0");
    }
}

TEST_F(WindowsMedia, a_seek_leaves_the_mode_as_it_was) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    std::int32_t mode = 9;
    source.SeekTo(0, mode);
    EXPECT_EQ(mode, 9);
}

TEST_F(WindowsMedia, a_seek_fetches_the_first_block_there_and_delivers_nothing_from_before) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 3);
    EXPECT_EQ(seek(source, 50, 0), 0);
    EXPECT_EQ(source.Position(), 500);
    EXPECT_EQ(readFrom(source, 12).bytes, counting(20, 12));
}

TEST_F(WindowsMedia, a_seek_that_finds_no_block_delivers_nothing_from_before_either) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 3);
    EXPECT_EQ(seek(source, 99, 0), 0);
    const ReadResult read = readFrom(source, 10);
    EXPECT_EQ(read.result, 5);
    EXPECT_TRUE(read.bytes.empty());
}

TEST_F(WindowsMedia, a_seek_that_the_reader_refuses_leaves_position_and_held_block) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 13);
    library.results = {{"SetRange", E_FAIL}};
    EXPECT_EQ(seek(source, 0, 0), 4);
    EXPECT_EQ(source.Position(), 250);
    EXPECT_EQ(readFrom(source, 7).bytes, counting(13, 7));
}

TEST_F(WindowsMedia, after_the_end_a_seek_to_the_start_reads_again_but_the_end_stays_noted) {
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)readFrom(source, 100);
    ASSERT_TRUE(source.EndOfStream());
    EXPECT_EQ(seek(source, 0, 1), 0);
    const ReadResult read = readFrom(source, 20);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.bytes, counting(0, 20));
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(WindowsMedia, a_seek_to_second_0_of_no_duration_raises_the_error_of_0_by_0) {
    layFile(0, {});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    try {
        (void)seek(source, 0, 1);
        FAIL() << "nothing was raised";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 6);
    }
}

TEST_F(WindowsMedia, a_percentage_of_no_duration_is_the_start) {
    layFile(0, {{0, counting(0, 10)}});
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    (void)library.takeCalls();
    EXPECT_EQ(seek(source, 50, 0), 0);
    EXPECT_EQ(library.calls.front(), "SetRange 0 0");
}

// ---- whatever fails, nothing is left behind

TEST_F(WindowsMedia, whichever_call_fails_nothing_stays_alive_or_loaded) {
    library.attributes.push_back(textAttribute(L"Title", L"Small Tune"));
    const std::vector<std::string> functions = {"Open",
                                                "GetOutputCount",
                                                "GetOutputFormatCount",
                                                "GetOutputFormat",
                                                "GetMediaTypeSize",
                                                "GetMediaType",
                                                "SetMediaType",
                                                "SetOutputProps",
                                                "SetRangeByFrame",
                                                "GetAttributeCountEx",
                                                "GetAttributeLengths",
                                                "GetAttributeByIndexEx",
                                                "GetNextSample",
                                                "GetBufferAndLength",
                                                "SetRange",
                                                "Close"};
    for (const std::string& function : functions) {
        SCOPED_TRACE(function);
        layFourBlocks();
        library.results = {{function, E_FAIL}};
        {
            DecWMAMP3 source(standInApi);
            source.OpenSource(L"song.wma");
            (void)readFrom(source, 15);
            (void)seek(source, 10, 0);
            (void)readFrom(source, 100);
        }
        EXPECT_EQ(library.objects, 0);
        EXPECT_EQ(library.libraryUses, 0);
        EXPECT_FALSE(library.fileOpen);
    }
}

} // namespace
} // namespace corvina
