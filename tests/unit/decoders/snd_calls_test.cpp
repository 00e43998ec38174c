// What DecSND asks of libsndfile, with stand-ins that write every call down.

#include "runtime/RuntimeError.h"
#include "sources/DecSND.h"
#include "support/ErrorsOfUse.h"
#include "support/StandIns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t handle = 0x5F11E;

struct Answers {
    std::int32_t open = handle;
    SndfileInfo info{1000, 0, 1000, 2, 0x030002, 1, 1, 0};
    std::int32_t end = 1000;    // sf_seek to the end
    std::int32_t current = 0;   // sf_seek by 0
    std::int32_t readItems = 0; // sf_read_short
};
Answers answers;
std::string openedPath;

std::int32_t __cdecl sfOpen(const char* path, std::int32_t mode, SndfileInfo* info) {
    openedPath = path;
    StandIns::record("sf_open", {mode});
    if (answers.open != 0)
        *info = answers.info;
    return answers.open;
}
std::int32_t __cdecl sfSeek(std::int32_t file, std::int32_t low, std::int32_t high,
                            std::int32_t whence) {
    StandIns::record("sf_seek", {file, low, high, whence});
    return whence == 2 ? answers.end : whence == 1 ? answers.current : low;
}
std::int32_t __cdecl sfReadShort(std::int32_t file, std::int32_t buffer, std::int32_t low,
                                 std::int32_t high) {
    StandIns::record("sf_read_short", {file, buffer, low, high});
    return answers.readItems;
}
std::int32_t __cdecl sfClose(std::int32_t file) {
    StandIns::record("sf_close", {file});
    return 0;
}

const StandIns::Exports allExports{{"sf_open", standIn(&sfOpen)},
                                   {"sf_seek", standIn(&sfSeek)},
                                   {"sf_read_short", standIn(&sfReadShort)},
                                   {"sf_close", standIn(&sfClose)}};

std::int32_t seek(DecSND& source, std::int32_t value, std::int32_t mode) {
    return source.SeekTo(value, mode);
}

class SndCalls : public testing::Test {
protected:
    SndCalls() {
        answers = {};
        libraries.add("libsndfile.dll", allExports);
    }

    DecSND& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(L"a.au"), 0);
        libraries.calls.clear();
        return *source_;
    }

    StandIns libraries;

private:
    std::optional<DecSND> source_;
};

TEST_F(SndCalls, creation_loads_the_library_and_release_unloads_it) {
    { DecSND source(StandIns::api()); }
    EXPECT_THAT(libraries.loads, ElementsAre("load libsndfile.dll", "free libsndfile.dll"));
}

TEST_F(SndCalls, every_operation_answers_3_without_the_library) {
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
}

TEST_F(SndCalls, open_for_reading_measures_by_seeking_to_the_end_and_back) {
    DecSND source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"C:\\folder\\a.au"), 0);
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"sf_open", {16}}, Call{"sf_seek", {handle, 0, 0, 2}},
                            Call{"sf_seek", {handle, 0, 0, 0}}));
    EXPECT_EQ(openedPath, "C:\\folder\\a.au");
}

TEST_F(SndCalls, a_file_that_the_library_refuses_answers_1) {
    answers.open = 0;
    DecSND source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"a.au"), 1);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_open", {16}}));
}

TEST_F(SndCalls, a_path_that_would_name_another_file_answers_1_and_is_not_opened) {
    DecSND source(StandIns::api());
    EXPECT_EQ(source.OpenSource(L"\x4E00.au"), 1);
    EXPECT_EQ(source.OpenSource(std::wstring(L"a.au\0b", 6)), 1);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(SndCalls, open_on_an_open_object_closes_the_old_file_first_also_when_the_new_open_fails) {
    DecSND& source = opened();
    answers.open = 0;
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

TEST_F(SndCalls, closing_or_reading_or_seeking_without_a_file_answers_1) {
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
        EXPECT_THAT(errorsOfUse<DecSND>(L"a.au"), testing::Contains(1));
        EXPECT_THAT(errorsOfUse<DecSND>(L"a.au"), testing::Each(1));
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
        answers.info = {1000, 0, 1000, 1, 0x030000 | width.subtype, 1, 1, 0};
        const WAVEFORMATEX& format = *opened().WFXPointer();
        EXPECT_EQ(format.wBitsPerSample, width.bits) << width.subtype;
        EXPECT_EQ(format.nBlockAlign, width.blockAlign) << width.subtype;
        EXPECT_EQ(format.nAvgBytesPerSec, width.blockAlign * 1000u) << width.subtype;
    }
}

TEST_F(SndCalls, half_a_byte_of_block_align_rounds_to_the_even_number) {
    answers.info.format = 0x10;
    answers.info.channels = 3; // 1.5 bytes
    EXPECT_EQ(opened().WFXPointer()->nBlockAlign, 2);
}

TEST_F(SndCalls, a_24_bit_file_says_16_bits_while_its_record_keeps_24) {
    answers.info.format = 3;
    DecSND& source = opened();
    EXPECT_EQ(source.BitsPerSample(), 16);
    EXPECT_TRUE(source.Force16Bit());
    EXPECT_EQ(source.WFXPointer()->wBitsPerSample, 24);
}

TEST_F(SndCalls, the_bitrate_is_the_byte_rate_of_the_record) {
    answers.info.format = 3;
    EXPECT_EQ(opened().Bitrate(), 1000 * 2 * 3);
}

TEST_F(SndCalls, a_byte_rate_that_overflows_raises_overflow_and_the_file_is_closed_at_the_end) {
    answers.info.sampleRate = std::numeric_limits<std::int32_t>::max();
    {
        DecSND source(StandIns::api());
        EXPECT_THROW(source.OpenSource(L"a.au"), RuntimeError);
    }
    EXPECT_EQ(libraries.calls.back(), (Call{"sf_close", {handle}}));
}

TEST_F(SndCalls, more_channels_than_16_bits_count_raise_overflow) {
    answers.info.channels = 40000;
    DecSND source(StandIns::api());
    EXPECT_THROW(source.OpenSource(L"a.au"), RuntimeError);
}

TEST_F(SndCalls, an_odd_count_asks_for_the_whole_items_below_it) {
    DecSND& source = opened();
    char buffer[4];
    std::int32_t got = 0;
    answers.readItems = 2048;
    EXPECT_EQ(source.Read(buffer, 4097, got), 0);
    EXPECT_EQ(got, 4096);
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"sf_read_short", {handle, word(buffer), 2048, 0}}));
}

TEST_F(SndCalls, fewer_items_than_asked_are_the_end) {
    DecSND& source = opened();
    char buffer[4];
    std::int32_t got = 0;
    answers.readItems = 2047;
    EXPECT_EQ(source.Read(buffer, 4096, got), 5);
    EXPECT_EQ(got, 4094);
}

TEST_F(SndCalls, reading_nothing_or_one_byte_is_no_end) {
    DecSND& source = opened();
    char buffer[4];
    std::int32_t got = 1;
    EXPECT_EQ(source.Read(buffer, 0, got), 0);
    EXPECT_EQ(source.Read(buffer, 1, got), 0);
    EXPECT_EQ(got, 0);
}

TEST_F(SndCalls, percent_reaches_99) {
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 99, 0), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 990, 0, 0}}));
    EXPECT_EQ(seek(source, 100, 0), 4);
}

TEST_F(SndCalls, half_a_frame_rounds_to_the_even_one) {
    answers.end = 250;
    DecSND& source = opened();
    seek(source, 1, 0); // 2.5
    seek(source, 3, 0); // 7.5
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 2, 0, 0}},
                                             Call{"sf_seek", {handle, 8, 0, 0}}));
}

TEST_F(SndCalls, a_percentage_whose_product_overflows_raises_overflow) {
    answers.end = 30'000'000;
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 71, 0), 0);
    EXPECT_THROW(seek(source, 72, 0), RuntimeError);
}

TEST_F(SndCalls, seconds_reach_the_whole_length) {
    answers.info.framesLow = 7999; // 7.999 s
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 7, 1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 7000, 0, 0}}));
    EXPECT_EQ(seek(source, 8, 1), 4);
    answers.info.framesLow = 8000;
    EXPECT_EQ(seek(opened(), 8, 1), 0);
}

TEST_F(SndCalls, a_negative_value_answers_4_in_any_mode) {
    DecSND& source = opened();
    for (const std::int32_t mode : {0, 1, 2, -1})
        EXPECT_EQ(seek(source, -1, mode), 4);
    EXPECT_THAT(libraries.calls, IsEmpty());
}

TEST_F(SndCalls, any_other_mode_goes_to_the_start) {
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 5, 2), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 0, 0, 0}}));
}

TEST_F(SndCalls, the_position_is_asked_of_the_library_each_time) {
    DecSND& source = opened();
    answers.current = 500;
    EXPECT_EQ(source.Position(), 500);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 0, 0, 1}}));
}

TEST_F(SndCalls, half_a_millisecond_rounds_to_the_even_one) {
    answers.info.sampleRate = 2000;
    DecSND& source = opened();
    answers.current = 1;
    EXPECT_EQ(source.Position(), 0);
    answers.current = 3;
    EXPECT_EQ(source.Position(), 2);
}

TEST_F(SndCalls, the_end_is_reached_with_the_last_frame) {
    DecSND& source = opened();
    answers.current = 999;
    EXPECT_FALSE(source.EndOfStream());
    answers.current = 1000;
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(SndCalls, the_duration_of_2_to_the_31_frames_is_wrong_because_only_the_low_word_counts) {
    answers.info.framesLow = 0x80000000u;
    EXPECT_EQ(opened().Duration(), -2147483647 - 1);
    answers.info.framesLow = 5;
    answers.info.framesHigh = 1;
    EXPECT_EQ(opened().Duration(), 5);
}

TEST_F(SndCalls, a_rate_of_0_makes_times_a_division_by_zero) {
    answers.info.sampleRate = 0;
    EXPECT_THROW((void)opened().Duration(), RuntimeError);
}

TEST_F(SndCalls, the_fixed_properties) {
    DecSND source(StandIns::api());
    EXPECT_EQ(source.FormatName(), L"Sndfile Audio");
    EXPECT_THAT(source.Extensions(),
                ElementsAre(L"au", L"snd", L"aiff", L"aifc", L"aif", L"voc", L"vox"));
    EXPECT_TRUE(source.Seekable());
    EXPECT_EQ(source.Tags(), source.Tags());
}

// ---- the operations of the library itself

std::int32_t __cdecl anyFunction(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
    StandIns::record("", {a, b, c, d});
    return 42;
}

class SndfileOperations : public testing::Test {
protected:
    // Calls an operation with the one export of that name present; the words that reach it.
    template <typename Operation>
    std::vector<std::int32_t> words(const char* name, std::size_t count, Operation operation) {
        StandIns libraries;
        libraries.add("libsndfile.dll", {{name, standIn(&anyFunction)}});
        SndfileLibrary library(StandIns::api());
        EXPECT_EQ(operation(library), 42) << name;
        std::vector<std::int32_t> result = libraries.calls.at(0).words;
        result.resize(count);
        return result;
    }
};

using Transfer = std::int32_t (*)(SndfileLibrary&, char*);

TEST_F(SndfileOperations, transfers_pass_handle_buffer_and_the_count_low_word_first) {
    constexpr std::int64_t count = 0x0000'0002'0000'0003;
    const std::pair<const char*, Transfer> transfers[] = {
        {"sf_read_raw", [](SndfileLibrary& l, char* b) { return l.readRaw(9, b, count); }},
        {"sf_write_raw", [](SndfileLibrary& l, char* b) { return l.writeRaw(9, b, count); }},
        {"sf_readf_short",
         [](SndfileLibrary& l, char* b) { return l.readFramesShort(9, b, count); }},
        {"sf_writef_short",
         [](SndfileLibrary& l, char* b) { return l.writeFramesShort(9, b, count); }},
        {"sf_readf_int", [](SndfileLibrary& l, char* b) { return l.readFramesInt(9, b, count); }},
        {"sf_writef_int", [](SndfileLibrary& l, char* b) { return l.writeFramesInt(9, b, count); }},
        {"sf_readf_float",
         [](SndfileLibrary& l, char* b) { return l.readFramesFloat(9, b, count); }},
        {"sf_writef_float",
         [](SndfileLibrary& l, char* b) { return l.writeFramesFloat(9, b, count); }},
        {"sf_readf_double",
         [](SndfileLibrary& l, char* b) { return l.readFramesDouble(9, b, count); }},
        {"sf_writef_double",
         [](SndfileLibrary& l, char* b) { return l.writeFramesDouble(9, b, count); }},
        {"sf_read_short", [](SndfileLibrary& l, char* b) { return l.readShort(9, b, count); }},
        {"sf_read_int", [](SndfileLibrary& l, char* b) { return l.readInt(9, b, count); }},
        {"sf_write_int", [](SndfileLibrary& l, char* b) { return l.writeInt(9, b, count); }},
        {"sf_read_float", [](SndfileLibrary& l, char* b) { return l.readFloat(9, b, count); }},
        {"sf_write_float", [](SndfileLibrary& l, char* b) { return l.writeFloat(9, b, count); }},
        {"sf_read_double", [](SndfileLibrary& l, char* b) { return l.readDouble(9, b, count); }},
        {"sf_write_double", [](SndfileLibrary& l, char* b) { return l.writeDouble(9, b, count); }},
    };
    char buffer[1];
    for (const auto& [name, transfer] : transfers)
        EXPECT_THAT(words(name, 4, [&](SndfileLibrary& l) { return transfer(l, buffer); }),
                    ElementsAre(9, word(buffer), 3, 2))
            << name;
}

TEST_F(SndfileOperations, writing_16_bit_items_calls_the_reading_function) {
    char buffer[1];
    EXPECT_THAT(
        words("sf_read_short", 4, [&](SndfileLibrary& l) { return l.writeShort(9, buffer, 3); }),
        ElementsAre(9, word(buffer), 3, 0));
}

TEST_F(SndfileOperations, a_negative_offset_fills_the_high_word) {
    EXPECT_THAT(words("sf_seek", 4, [](SndfileLibrary& l) { return l.seek(9, -5, 1); }),
                ElementsAre(9, -5, -1, 1));
}

TEST_F(SndfileOperations, the_others_pass_the_arguments_of_their_prototypes) {
    const char text[] = "t";
    char data[1];
    SndfileInfo info{};
    EXPECT_THAT(words("sf_error", 1, [](SndfileLibrary& l) { return l.error(9); }), ElementsAre(9));
    EXPECT_THAT(words("sf_strerror", 1, [](SndfileLibrary& l) { return l.strerror(9); }),
                ElementsAre(9));
    EXPECT_THAT(words("sf_error_number", 1, [](SndfileLibrary& l) { return l.errorNumber(3); }),
                ElementsAre(3));
    EXPECT_THAT(
        words("sf_command", 4, [&](SndfileLibrary& l) { return l.command(9, 0x1001, data, 1); }),
        ElementsAre(9, 0x1001, word(data), 1));
    EXPECT_THAT(words("sf_format_check", 1, [&](SndfileLibrary& l) { return l.formatCheck(info); }),
                ElementsAre(word(&info)));
    EXPECT_THAT(
        words("sf_set_string", 3, [&](SndfileLibrary& l) { return l.setString(9, 1, text); }),
        ElementsAre(9, 1, word(text)));
    EXPECT_THAT(words("sf_get_string", 2, [](SndfileLibrary& l) { return l.getString(9, 1); }),
                ElementsAre(9, 1));
    EXPECT_THAT(words("sf_close", 1, [](SndfileLibrary& l) { return l.close(9); }), ElementsAre(9));
    EXPECT_THAT(words("sf_write_sync", 1, [](SndfileLibrary& l) { return l.writeSync(9); }),
                ElementsAre(9));
}

} // namespace
} // namespace corvina::test
