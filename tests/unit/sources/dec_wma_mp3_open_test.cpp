// The Windows Media source: opening, closing, and what a failure leaves behind.

#include "WindowsMediaFixture.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

TEST_F(WindowsMedia, opening_calls_the_reader_step_by_step) {
    EXPECT_THAT(callsOfOpen(),
                ElementsAre("Open song.wma", "GetOutputCount", "GetOutputFormatCount 0",
                            "GetOutputFormat 0 0", "GetMediaTypeSize", "GetMediaType",
                            "SetMediaType 16", "SetOutputProps 0", "SetRangeByFrame 1 0 0",
                            "GetAttributeCountEx 65535", "GetAttributeLengths 65535 0",
                            "GetAttributeByIndexEx 65535 0"));
    EXPECT_EQ(openResult, 0);
}

TEST_F(WindowsMedia, an_open_that_the_reader_refuses_returns_1_and_calls_nothing_more) {
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

TEST_F(WindowsMedia, closing_a_source_that_is_not_open_returns_1) {
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
} // namespace corvina::test
