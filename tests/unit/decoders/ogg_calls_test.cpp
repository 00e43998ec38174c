// What DecOGG asks of its libraries, with stand-ins that write every call down.

#include "runtime/RuntimeError.h"
#include "sources/DecOGG.h"
#include "support/ErrorsOfUse.h"
#include "support/StandIns.h"
#include "support/TempFolder.h"

#include <array>
#include <bit>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <map>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t cFile = 0x00F11E;
constexpr std::int32_t commentBlock = 0x00C0DE;

// What the stand-ins answer.
struct Answers {
    std::int32_t fopen = cFile;
    std::int32_t ovOpen = 0;
    bool hasInformation = true;
    std::array<std::int32_t, 8> information{0, 2, 44100, 0, 128000, 0, -1, 0};
    std::int32_t pcmTotal = 441000;
    std::int32_t ovRead = 0;
    std::int32_t comments = commentBlock;
    std::map<std::string, std::string> values;
};
Answers answers;
std::string openedPath;
std::string openedMode;
std::int32_t firstWordAtClear;
std::int32_t state;

std::int32_t __cdecl standInFopen(const char* path, const char* mode) {
    openedPath = path;
    openedMode = mode;
    StandIns::record("fopen", {});
    return answers.fopen;
}
std::int32_t __cdecl standInFclose(std::int32_t file) {
    StandIns::record("fclose", {file});
    return 0;
}
std::int32_t __cdecl ovOpen(std::int32_t file, std::int32_t* decoder, std::int32_t initial,
                            std::int32_t bytes) {
    StandIns::record("ov_open", {file, initial, bytes});
    state = word(decoder);
    *decoder = file;
    return answers.ovOpen;
}
const std::int32_t* __cdecl ovInfo(std::int32_t decoder, std::int32_t link) {
    StandIns::record("ov_info", {decoder, link});
    return answers.hasInformation ? answers.information.data() : nullptr;
}
std::int64_t __cdecl ovPcmTotal(std::int32_t decoder, std::int32_t link) {
    StandIns::record("ov_pcm_total", {decoder, link});
    return answers.pcmTotal;
}
std::int32_t __cdecl ovRead(std::int32_t decoder, std::int32_t buffer, std::int32_t bytes,
                            std::int32_t endian, std::int32_t width, std::int32_t isSigned,
                            std::int32_t* section) {
    StandIns::record("ov_read", {decoder, buffer, bytes, endian, width, isSigned});
    *section = 0;
    return answers.ovRead;
}
std::int32_t __cdecl ovTimeSeek(std::int32_t decoder, double seconds) {
    const auto words = std::bit_cast<std::array<std::int32_t, 2>>(seconds);
    StandIns::record("ov_time_seek", {decoder, words[0], words[1]});
    return -1; // not looked at
}
std::int32_t __cdecl ovComment(std::int32_t decoder, std::int32_t link) {
    StandIns::record("ov_comment", {decoder, link});
    return answers.comments;
}
const char* __cdecl vorbisCommentQuery(std::int32_t block, const char* name, std::int32_t index) {
    StandIns::record(std::string("vorbis_comment_query ") + name, {block, index});
    const auto found = answers.values.find(name);
    return found == answers.values.end() ? nullptr : found->second.c_str();
}
std::int32_t __cdecl ovClear(const std::int32_t* decoder) {
    StandIns::record("ov_clear", {word(decoder)});
    firstWordAtClear = *decoder;
    return 0;
}

class OggCalls : public testing::Test {
protected:
    OggCalls() {
        answers = {};
        libraries.add("msvcrt.dll",
                      {{"fopen", standIn(&standInFopen)}, {"fclose", standIn(&standInFclose)}});
        libraries.add("ogg.dll");
        libraries.add("vorbis.dll", {{"vorbis_comment_query", standIn(&vorbisCommentQuery)}});
        libraries.add("vorbisfile.dll", {{"ov_open", standIn(&ovOpen)},
                                         {"ov_info", standIn(&ovInfo)},
                                         {"ov_pcm_total", standIn(&ovPcmTotal)},
                                         {"ov_read", standIn(&ovRead)},
                                         {"ov_time_seek", standIn(&ovTimeSeek)},
                                         {"ov_comment", standIn(&ovComment)},
                                         {"ov_clear", standIn(&ovClear)}});
    }

    // An opened source whose opening is not among the calls.
    DecOGG& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(path), 0);
        libraries.calls.clear();
        return *source_;
    }

    std::int32_t openResult() {
        DecOGG source(StandIns::api());
        const std::int32_t result = source.OpenSource(path);
        callsAtOpen = libraries.taken();
        return result;
    }

    TempFolder folder;
    std::wstring path = folder.write(L"a.ogg", {1});
    StandIns libraries;
    std::vector<Call> callsAtOpen;

private:
    std::optional<DecOGG> source_;
};

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

TEST_F(OggCalls, open_makes_the_stated_calls) {
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

TEST_F(OggCalls, any_missing_library_makes_every_open_answer_4) {
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

TEST_F(OggCalls, a_missing_file_answers_1_and_nothing_is_called) {
    path = folder.path() + L"\\none.ogg";
    EXPECT_EQ(openResult(), 1);
    EXPECT_THAT(callsAtOpen, IsEmpty());
}

TEST_F(OggCalls, a_stream_that_the_library_refuses_is_cleared_and_answers_1) {
    answers.ovOpen = -132;
    EXPECT_EQ(openResult(), 1);
    EXPECT_THAT(callsAtOpen, ElementsAre(Call{"fopen", {}}, Call{"ov_open", {cFile, 0, 0}},
                                         Call{"ov_clear", {state}}));
}

TEST_F(OggCalls, no_stream_information_answers_1) {
    answers.hasInformation = false;
    EXPECT_EQ(openResult(), 1);
    EXPECT_EQ(callsAtOpen.back(), (Call{"ov_info", {state, -1}}));
}

TEST_F(OggCalls, a_rate_below_1_is_cleared_and_answers_1) {
    for (const std::int32_t rate : {0, -44100}) {
        answers.information[2] = rate;
        EXPECT_EQ(openResult(), 1);
        EXPECT_EQ(callsAtOpen.back(), (Call{"ov_clear", {state}}));
    }
}

TEST_F(OggCalls, more_than_two_channels_are_cleared_and_answer_1) {
    answers.information[1] = 3;
    EXPECT_EQ(openResult(), 1);
    EXPECT_EQ(callsAtOpen.back(), (Call{"ov_clear", {state}}));
}

TEST_F(OggCalls, a_refused_file_is_closed_by_the_next_open) {
    answers.ovOpen = -1;
    DecOGG source(StandIns::api());
    source.OpenSource(path);
    libraries.calls.clear();
    source.OpenSource(folder.path() + L"\\none.ogg");
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"ov_clear", {state}}, Call{"fclose", {cFile}}));
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
        EXPECT_THAT(errorsOfUse<DecOGG>(path), testing::Contains(1));
        EXPECT_THAT(errorsOfUse<DecOGG>(path), testing::Each(1));
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
    answers.information = {0, 1, 22050, 1, 64000, 2, 3, 4};
    answers.pcmTotal = 22051;
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
    answers.information[2] = 2000;
    answers.pcmTotal = 5; // 2.5 ms
    EXPECT_EQ(opened().Duration(), 2);
}

TEST_F(OggCalls, a_rate_whose_byte_rate_overflows_raises_overflow) {
    answers.information[2] = 1 << 30;
    DecOGG source(StandIns::api());
    EXPECT_THROW(source.OpenSource(path), RuntimeError);
}

TEST_F(OggCalls, tags_have_lower_case_names_and_empty_values_are_left_out) {
    answers.values = {{"title", "t"}, {"artist", ""}, {"description", "d"}};
    const StrmTags& tags = *opened().Tags();
    ASSERT_EQ(tags.TagCount(), 2);
    EXPECT_EQ(tags.TagItem(1).TagName(), L"title");
    EXPECT_EQ(tags.TagItem(1).TagValue(), L"t");
    EXPECT_EQ(tags.TagItem(2).TagName(), L"description");
}

TEST_F(OggCalls, tag_values_are_taken_byte_by_byte) {
    answers.values = {{"title", "\xE9t\xC3\xA9"}};
    EXPECT_EQ(opened().Tags()->TagItem(1).TagValue(), L"\u00E9t\u00C3\u00A9");
}

TEST_F(OggCalls, opening_again_clears_the_tags) {
    answers.values = {{"title", "t"}};
    DecOGG& source = opened();
    StrmTags* const collection = source.Tags();
    source.OpenSource(path);
    EXPECT_EQ(source.Tags(), collection);
    EXPECT_EQ(collection->TagCount(), 1);
}

TEST_F(OggCalls, without_a_comment_block_there_are_no_tags) {
    answers.comments = 0;
    EXPECT_EQ(opened().Tags()->TagCount(), 0);
}

TEST_F(OggCalls, read_asks_once_for_little_endian_signed_16_bit_samples) {
    DecOGG& source = opened();
    char buffer[8];
    answers.ovRead = 4;
    std::int32_t got = -1;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, 4); // fewer than asked is no end
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"ov_read", {state, word(buffer), 8, 0, 2, 1}}));
}

TEST_F(OggCalls, the_position_grows_by_what_was_read) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    answers.ovRead = 17640; // 100 ms
    source.Read(buffer, 8, got);
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 200);
}

TEST_F(OggCalls, half_a_millisecond_rounds_to_the_even_position) {
    answers.information = {0, 1, 1000, 0, 0, 0, 0, 0};
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    answers.ovRead = 1; // half a sample of 1 ms
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 0);
    answers.ovRead = 3; // 1.5
    source.Read(buffer, 8, got);
    EXPECT_EQ(source.Position(), 2);
}

TEST_F(OggCalls, a_count_whose_thousandfold_overflows_raises_overflow) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    answers.ovRead = 2147484;
    EXPECT_THROW(source.Read(buffer, 8, got), RuntimeError);
    answers.ovRead = 2147482;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
}

TEST_F(OggCalls, no_bytes_are_the_end) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = -1;
    EXPECT_EQ(source.Read(buffer, 8, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(OggCalls, a_hole_in_the_data_hands_the_negative_count_on_and_leaves_the_position) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    answers.ovRead = -3;
    EXPECT_EQ(source.Read(buffer, 8, got), 0);
    EXPECT_EQ(got, -3);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_FALSE(source.EndOfStream());
}

TEST_F(OggCalls, read_on_a_closed_source_answers_1_and_calls_nothing) {
    DecOGG source(StandIns::api());
    char buffer[8];
    std::int32_t got = 77;
    EXPECT_EQ(source.Read(buffer, 8, got), 1);
    EXPECT_EQ(got, 77);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

Call timeSeek(double seconds) {
    const auto words = std::bit_cast<std::array<std::int32_t, 2>>(seconds);
    return {"ov_time_seek", {state, words[0], words[1]}};
}

std::int32_t seek(DecOGG& source, std::int32_t value, std::int32_t mode) {
    return source.SeekTo(value, mode);
}

TEST_F(OggCalls, seeking_by_percent_and_by_seconds_passes_the_time_as_a_double) {
    DecOGG& source = opened(); // 10 s
    EXPECT_EQ(seek(source, 25, 0), 0);
    EXPECT_EQ(source.Position(), 2500);
    EXPECT_EQ(seek(source, 7, 1), 0);
    EXPECT_EQ(source.Position(), 7000);
    EXPECT_THAT(libraries.calls, ElementsAre(timeSeek(2.5), timeSeek(7)));
}

TEST_F(OggCalls, seeking_to_0_percent_goes_to_the_start_and_resets_the_end) {
    DecOGG& source = opened();
    char buffer[8];
    std::int32_t got = 0;
    source.Read(buffer, 8, got);
    libraries.calls.clear();
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_FALSE(source.EndOfStream());
    EXPECT_THAT(libraries.calls, ElementsAre(timeSeek(0)));
}

TEST_F(OggCalls, the_ends_of_both_ranges_are_accepted) {
    DecOGG& source = opened();
    EXPECT_EQ(seek(source, 100, 0), 0);
    EXPECT_EQ(seek(source, 10, 1), 0);
}

TEST_F(OggCalls, a_seek_out_of_range_answers_3_and_calls_nothing) {
    DecOGG& source = opened();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t value : {-1, 101, least, most})
        EXPECT_EQ(seek(source, value, 0), 3) << value;
    for (const std::int32_t value : {-1, 11, least, most})
        EXPECT_EQ(seek(source, value, 1), 3) << value;
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(OggCalls, any_other_mode_goes_to_the_start) {
    DecOGG& source = opened();
    EXPECT_EQ(seek(source, 7, 2), 0);
    EXPECT_EQ(seek(source, -7, -1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(timeSeek(0), timeSeek(0)));
}

TEST_F(OggCalls, seeking_a_closed_source_does_nothing) {
    DecOGG source(StandIns::api());
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(OggCalls, the_extension_is_ogg) {
    EXPECT_THAT(DecOGG(StandIns::api()).Extensions(), ElementsAre(L"ogg"));
}

} // namespace
} // namespace corvina::test
