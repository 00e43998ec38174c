// What DecOGG asks of its libraries to open and to close a file, and what it then says of it.

#include "OggFixture.h"
#include "runtime/RuntimeError.h"
#include "support/RaisedErrors.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Call> lastTwo(const std::vector<Call>& calls) {
    return {calls.end() - std::min<std::ptrdiff_t>(2, std::ssize(calls)), calls.end()};
}

TEST_F(OggCalls, creation_loads_the_four_libraries_in_order_and_release_unloads_all) {
    { DecOGG source(StandIns::api()); }
    EXPECT_THAT(libraries.loads,
                ElementsAre("load msvcrt.dll", "load ogg.dll", "load vorbis.dll",
                            "load vorbisfile.dll", "free msvcrt.dll", "free ogg.dll",
                            "free vorbis.dll", "free vorbisfile.dll"));
}

TEST_F(OggCalls, a_missing_library_stops_the_loading_and_release_unloads_all_four) {
    libraries.remove("vorbis.dll");
    { DecOGG source(StandIns::api()); }
    EXPECT_THAT(libraries.loads,
                ElementsAre("load msvcrt.dll", "load ogg.dll", "load vorbis.dll", "free msvcrt.dll",
                            "free ogg.dll", "free 0", "free 0"));
}

TEST_F(OggCalls, open_calls_the_library_step_by_step) {
    EXPECT_EQ(openResult(), 0);
    EXPECT_THAT(callsAtOpen,
                ElementsAre(Call{"fopen", {}},                                           //
                            Call{"ov_open", {cFile, 0, 0}},                              //
                            Call{"ov_info", {state, -1}},                                //
                            Call{"ov_pcm_total", {state, -1}},                           //
                            Call{"ov_comment", {state, -1}},                             //
                            Call{"vorbis_comment_query artist", {commentBlock, 0}},      //
                            Call{"ov_comment", {state, -1}},                             //
                            Call{"vorbis_comment_query album", {commentBlock, 0}},       //
                            Call{"ov_comment", {state, -1}},                             //
                            Call{"vorbis_comment_query title", {commentBlock, 0}},       //
                            Call{"ov_comment", {state, -1}},                             //
                            Call{"vorbis_comment_query genre", {commentBlock, 0}},       //
                            Call{"ov_comment", {state, -1}},                             //
                            Call{"vorbis_comment_query tracknumber", {commentBlock, 0}}, //
                            Call{"ov_comment", {state, -1}},                             //
                            Call{"vorbis_comment_query description", {commentBlock, 0}}));
    EXPECT_EQ(openedMode, "rb");
    EXPECT_THAT(openedPath, testing::EndsWith("\\a.ogg"));
}

TEST_F(OggCalls, any_missing_library_makes_every_open_return_4) {
    for (const char* missing : {"msvcrt.dll", "ogg.dll", "vorbis.dll", "vorbisfile.dll"}) {
        StandIns none;
        for (const char* library : {"msvcrt.dll", "ogg.dll", "vorbis.dll", "vorbisfile.dll"})
            if (std::strcmp(library, missing) != 0)
                none.add(library);
        DecOGG source(StandIns::api());
        EXPECT_EQ(source.OpenSource(path), 4) << missing;
        EXPECT_EQ(source.OpenSource(L"no such file.ogg"), 4) << missing;
    }
}

TEST_F(OggCalls, a_missing_file_returns_1_and_nothing_is_called) {
    path = folder.path() + L"\\none.ogg";
    EXPECT_EQ(openResult(), 1);
    EXPECT_THAT(callsAtOpen, IsEmpty());
}

TEST_F(OggCalls, a_stream_that_the_library_refuses_is_cleared_and_closed_and_returns_1) {
    results.ovOpen = -132;
    EXPECT_EQ(openResult(), 1);
    EXPECT_THAT(callsAtOpen, ElementsAre(Call{"fopen", {}}, Call{"ov_open", {cFile, 0, 0}},
                                         Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
}

TEST_F(OggCalls, no_stream_information_returns_1) {
    results.hasInformation = false;
    EXPECT_EQ(openResult(), 1);
    EXPECT_EQ(callsAtOpen.back(), (Call{"ov_info", {state, -1}}));
}

TEST_F(OggCalls, a_rate_below_1_is_cleared_and_closed_and_returns_1) {
    for (const std::int32_t rate : {0, -44100}) {
        results.information[2] = rate;
        EXPECT_EQ(openResult(), 1);
        EXPECT_THAT(lastTwo(callsAtOpen),
                    ElementsAre(Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
    }
}

TEST_F(OggCalls, a_rate_of_1_plays) {
    results.information[2] = 1;
    results.pcmTotal = 3;
    EXPECT_EQ(opened().Duration(), 3000);
}

TEST_F(OggCalls, the_decoder_is_empty_at_each_open) {
    DecOGG& source = opened();
    EXPECT_TRUE(emptyAtOpen);
    emptyAtOpen = false;
    EXPECT_EQ(source.OpenSource(path), 0);
    EXPECT_TRUE(emptyAtOpen);
}

TEST_F(OggCalls, more_than_two_channels_are_cleared_and_closed_and_return_1) {
    results.information[1] = 3;
    EXPECT_EQ(openResult(), 1);
    EXPECT_THAT(lastTwo(callsAtOpen),
                ElementsAre(Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
}

TEST_F(OggCalls, a_refused_file_is_closed_once) {
    results.ovOpen = -1;
    DecOGG source(StandIns::api());
    source.OpenSource(path);
    libraries.calls.clear();
    source.CloseSource();
    source.OpenSource(folder.path() + L"\\none.ogg");
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(OggCalls, close_clears_the_decoder_and_closes_the_file_once) {
    DecOGG& source = opened();
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_EQ(source.CloseSource(), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
}

// Otherwise ov_clear would close the file too, and fclose would hit a closed one.
TEST_F(OggCalls, the_decoder_no_longer_knows_the_file_when_it_is_cleared) {
    firstWordAtClear = -1;
    opened().CloseSource();
    EXPECT_EQ(firstWordAtClear, 0);
}

TEST_F(OggCalls,
       open_on_an_open_source_closes_the_old_file_first_also_when_the_new_one_is_missing) {
    DecOGG& source = opened();
    EXPECT_EQ(source.OpenSource(L"none.ogg"), 1);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
}

TEST_F(OggCalls, the_file_is_closed_even_if_the_library_cannot_clear) {
    DecOGG& source = opened();
    libraries.removeExport("vorbisfile.dll", "ov_clear");
    EXPECT_THROW(source.CloseSource(), RuntimeError);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"fclose", {cFile}}));
    EXPECT_EQ(source.CloseSource(), 0);
}

TEST_F(OggCalls, a_missing_export_raises_error_1) {
    libraries.removeExport("vorbisfile.dll", "ov_open");
    DecOGG source(StandIns::api());
    try {
        source.OpenSource(path);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 1);
        EXPECT_EQ(error.text(), L"Export missing!");
    }
}

TEST_F(OggCalls, any_missing_export_raises_error_1_where_it_is_needed_and_leaks_no_file) {
    libraries.withoutEachExport([this](const std::string& library, const std::string& name) {
        SCOPED_TRACE(library + " without " + name);
        EXPECT_THAT(raisedErrors<DecOGG>(path), testing::Contains(1));
        EXPECT_THAT(raisedErrors<DecOGG>(path), testing::Each(1));
        if (name != "fclose") {
            EXPECT_EQ(libraries.called("fclose"), libraries.called("fopen"));
        }
        libraries.calls.clear();
    });
}

TEST_F(OggCalls, the_file_of_an_open_that_raised_an_error_is_closed_with_the_source) {
    libraries.removeExport("vorbisfile.dll", "ov_info");
    {
        DecOGG source(StandIns::api());
        EXPECT_THROW(source.OpenSource(path), RuntimeError);
        libraries.calls.clear();
    }
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
}

TEST_F(OggCalls, the_numbers_come_from_the_stream_information) {
    results.information = {0, 1, 22050, 1, 64000, 2, 3, 4};
    results.pcmTotal = 22051;
    DecOGG& source = opened();
    EXPECT_EQ(source.SampleRate(), 22050);
    EXPECT_EQ(source.Channels(), 1);
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_EQ(source.Bitrate(), 64000);
    EXPECT_EQ(source.Duration(), 1000); // 1000.05
    EXPECT_EQ(source.Position(), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_TRUE(source.Seekable());
    EXPECT_TRUE(source.Force16Bit());
}

TEST_F(OggCalls, the_format_record_is_16_bit_pcm) {
    const WAVEFORMATEX& format = *opened().WFXPointer();
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(format.nChannels, 2);
    EXPECT_EQ(format.nSamplesPerSec, 44100u);
    EXPECT_EQ(format.nAvgBytesPerSec, 176400u);
    EXPECT_EQ(format.nBlockAlign, 4);
    EXPECT_EQ(format.wBitsPerSample, 16);
    EXPECT_EQ(format.cbSize, 0);
}

TEST_F(OggCalls, a_duration_between_two_milliseconds_rounds_to_the_even_one) {
    results.information[2] = 2000;
    results.pcmTotal = 5; // 2.5 ms
    EXPECT_EQ(opened().Duration(), 2);
}

TEST_F(OggCalls, a_rate_whose_byte_rate_overflows_raises_overflow) {
    results.information[2] = 1 << 30;
    DecOGG source(StandIns::api());
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
}

TEST_F(OggCalls, tags_have_lower_case_names_and_empty_values_are_left_out) {
    results.values = {{"title", "t"}, {"artist", ""}, {"description", "d"}};
    const StrmTags& tags = *opened().Tags();
    ASSERT_EQ(tags.TagCount(), 2);
    EXPECT_EQ(tags.TagItem(1).TagName(), L"title");
    EXPECT_EQ(tags.TagItem(1).TagValue(), L"t");
    EXPECT_EQ(tags.TagItem(2).TagName(), L"description");
}

TEST_F(OggCalls, tag_values_are_taken_byte_by_byte) {
    results.values = {{"title", "\xE9t\xC3\xA9"}};
    EXPECT_EQ(opened().Tags()->TagItem(1).TagValue(), L"\u00E9t\u00C3\u00A9");
}

TEST_F(OggCalls, opening_again_begins_at_the_start_and_not_at_the_end) {
    DecOGG& source = opened();
    std::int32_t mode = 0;
    std::int32_t got = 0;
    char buffer[400];
    ASSERT_EQ(source.SeekTo(100, mode), 0); // the end, which the library refuses
    EXPECT_EQ(source.Read(buffer, 400, got), 5);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_EQ(source.Position(), 10000);
    ASSERT_EQ(source.OpenSource(path), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_EQ(source.Position(), 0);
    results.ovRead = 400;
    EXPECT_EQ(source.Read(buffer, 400, got), 0) << "it is not at the end any more";
    EXPECT_EQ(got, 400);
}

TEST_F(OggCalls, opening_again_clears_the_tags) {
    results.values = {{"title", "t"}};
    DecOGG& source = opened();
    StrmTags* const collection = source.Tags();
    source.OpenSource(path);
    EXPECT_EQ(source.Tags(), collection);
    EXPECT_EQ(collection->TagCount(), 1);
}

TEST_F(OggCalls, without_a_comment_block_there_are_no_tags) {
    results.comments = 0;
    results.values = {{"title", "t"}};
    EXPECT_EQ(openResult(), 0);
    for (const Call& call : callsAtOpen)
        EXPECT_THAT(call.name, testing::Not(testing::StartsWith("vorbis_comment_query")));
    EXPECT_EQ(opened().Tags()->TagCount(), 0);
}

TEST_F(OggCalls, the_extension_is_ogg) {
    EXPECT_THAT(DecOGG(StandIns::api()).Extensions(), ElementsAre(L"ogg"));
}

} // namespace
} // namespace corvina::test
