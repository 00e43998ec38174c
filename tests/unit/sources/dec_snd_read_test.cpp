// What DecSND asks of libsndfile to read, to seek and for times.

#include "SndFixture.h"
#include "runtime/RuntimeError.h"
#include "support/GuardedNew.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(SndCalls, an_odd_count_asks_for_the_whole_items_below_it) {
    DecSND& source = opened();
    char buffer[4];
    std::int32_t got = 0;
    results.readItems = 2048;
    EXPECT_EQ(source.Read(buffer, 4097, got), 0);
    EXPECT_EQ(got, 4096);
    EXPECT_THAT(libraries.calls,
                ElementsAre(Call{"sf_read_short", {handle, word(buffer), 2048, 0}}));
}

TEST_F(SndCalls, fewer_items_than_asked_are_the_end) {
    DecSND& source = opened();
    char buffer[4];
    std::int32_t got = 0;
    results.readItems = 2047;
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
    results.end = 250;
    DecSND& source = opened();
    seek(source, 1, 0); // 2.5
    seek(source, 3, 0); // 7.5
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 2, 0, 0}},
                                             Call{"sf_seek", {handle, 8, 0, 0}}));
}

TEST_F(SndCalls, a_percentage_whose_product_overflows_raises_overflow) {
    results.end = 30'000'000;
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 71, 0), 0);
    EXPECT_THROW(seek(source, 72, 0), RuntimeError);
}

TEST_F(SndCalls, seconds_reach_the_whole_length) {
    results.info.framesLow = 7999; // 7.999 s
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 7, 1), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 7000, 0, 0}}));
    EXPECT_EQ(seek(source, 8, 1), 4);
    results.info.framesLow = 8000;
    EXPECT_EQ(seek(opened(), 8, 1), 0);
}

TEST_F(SndCalls, a_negative_value_returns_4_in_any_mode) {
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
    results.current = 500;
    EXPECT_EQ(source.Position(), 500);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_seek", {handle, 0, 0, 1}}));
}

TEST_F(SndCalls, half_a_millisecond_rounds_to_the_even_one) {
    results.info.sampleRate = 2000;
    DecSND& source = opened();
    results.current = 1;
    EXPECT_EQ(source.Position(), 0);
    results.current = 3;
    EXPECT_EQ(source.Position(), 2);
}

TEST_F(SndCalls, the_end_is_reached_with_the_last_frame) {
    DecSND& source = opened();
    results.current = 999;
    EXPECT_FALSE(source.EndOfStream());
    results.current = 1000;
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(SndCalls, the_end_is_where_the_library_found_it_whatever_the_record_says) {
    results.end = 500;
    DecSND& source = opened();
    results.current = 499;
    EXPECT_FALSE(source.EndOfStream());
    results.current = 500;
    EXPECT_TRUE(source.EndOfStream());
}

TEST_F(SndCalls, the_duration_of_2_to_the_31_frames_is_wrong_because_only_the_low_word_counts) {
    results.info.framesLow = 0x80000000u;
    EXPECT_EQ(opened().Duration(), -2147483647 - 1);
    results.info.framesLow = 5;
    results.info.framesHigh = 1;
    EXPECT_EQ(opened().Duration(), 5);
}

TEST_F(SndCalls, a_rate_of_0_makes_times_a_division_by_zero) {
    results.info.sampleRate = 0;
    EXPECT_THROW((void)opened().Duration(), RuntimeError);
}

TEST_F(SndCalls, floating_point_files_are_read_as_such_and_keep_their_level) {
    addExport("sf_read_float", &sfReadFloat);
    for (const std::int32_t subtype : {6, 7}) {
        results.info.format = 0x030000 | subtype;
        results.floats = {0.0F, 0.5F, -0.5F, 1.0F, -1.0F, 7.5F, -7.5F, 1.0F / 32768};
        DecSND& source = opened();
        std::int16_t samples[8] = {};
        std::int32_t got = 0;
        EXPECT_EQ(source.Read(samples, 16, got), 0);
        EXPECT_EQ(got, 16);
        EXPECT_THAT(samples,
                    testing::ElementsAre(0, 16384, -16384, 32767, -32768, 32767, -32768, 1));
        EXPECT_THAT(libraries.calls, testing::ElementsAre(Call{"sf_read_float", {handle, 8, 0}}));
        EXPECT_EQ(source.Read(samples, 18, got), 5);
        EXPECT_EQ(got, 16);
    }
}

// The rate that a damaged header names decides how much is read at a time.
TEST_F(SndCalls, floating_point_samples_take_little_memory_however_much_is_read) {
    addExport("sf_read_float", &sfReadFloat);
    results.info.format = 0x030006;
    results.floats.assign(200'000, 0.25F);
    DecSND& source = opened();
    std::vector<std::int16_t> samples(150'001);
    (void)takeLargestBlock();
    std::int32_t got = 0;
    EXPECT_EQ(source.Read(samples.data(), 300'000, got), 0);
    EXPECT_LE(takeLargestBlock(), 100'000u);
    EXPECT_EQ(got, 300'000);
    EXPECT_EQ(std::count(samples.begin(), samples.end(), 8192), 150'000);
    results.floats.assign(10, 0.25F);
    EXPECT_EQ(source.Read(samples.data(), 300'000, got), 5);
    EXPECT_EQ(got, 20);
}

TEST_F(SndCalls, a_closed_file_still_has_its_duration_and_is_at_its_start) {
    results.info.framesLow = 8000;
    DecSND& source = opened();
    ASSERT_EQ(source.Duration(), 8000);
    results.current = 0;
    source.CloseSource();
    EXPECT_EQ(source.Duration(), 8000);
    EXPECT_EQ(source.Position(), 0);
}

// A file that the library cannot seek in.
class SndCallsWithoutSeek : public SndCalls {
protected:
    SndCallsWithoutSeek() {
        results.seeks = false;
        results.info.seekable = 0;
        results.info.framesLow = 50'000;
        results.counting = 100'000;
    }

    // The reads, as the number of items each asks for.
    std::vector<std::int32_t> itemsAskedFor() const {
        std::vector<std::int32_t> items;
        for (const Call& call : libraries.calls)
            if (call.name == "sf_read_short")
                items.push_back(call.words.at(2));
        return items;
    }
    // Reads one frame and returns its number.
    static std::int32_t nextFrame(DecSND& source) {
        std::int16_t items[2] = {};
        std::int32_t got = 0;
        EXPECT_EQ(source.Read(items, 4, got), 0);
        return (items[0] - 1) / 2;
    }
};

TEST_F(SndCallsWithoutSeek, the_position_counts_the_frames_that_were_read) {
    results.info.sampleRate = 1000;
    DecSND& source = opened();
    EXPECT_EQ(source.Position(), 0);
    std::int16_t items[20];
    std::int32_t got = 0;
    EXPECT_EQ(source.Read(items, 40, got), 0);
    EXPECT_EQ(source.Position(), 10);
    ASSERT_EQ(source.OpenSource(L"b.vox"), 0);
    EXPECT_EQ(source.Position(), 0) << "the next file begins at its start";
}

TEST_F(SndCallsWithoutSeek, a_seek_decodes_up_to_the_place_and_no_further) {
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 10, 1), 0);
    EXPECT_EQ(source.Position(), 10'000);
    EXPECT_THAT(itemsAskedFor(), ElementsAre(8192, 8192, 2 * (10'000 - 2 * 4096)));
    EXPECT_EQ(nextFrame(source), 10'000);
    EXPECT_EQ(libraries.called("sf_open"), 0);
}

TEST_F(SndCallsWithoutSeek, a_seek_backwards_opens_the_file_again_and_decodes_from_its_start) {
    DecSND& source = opened();
    EXPECT_EQ(seek(source, 10, 1), 0);
    libraries.calls.clear();
    EXPECT_EQ(seek(source, 3, 1), 0);
    EXPECT_EQ(source.Position(), 3000);
    EXPECT_THAT(itemsAskedFor(), ElementsAre(6000));
    EXPECT_EQ(nextFrame(source), 3000);
    EXPECT_EQ(libraries.called("sf_close"), 1);
    EXPECT_EQ(libraries.called("sf_open"), 1);
    EXPECT_EQ(seek(source, 0, 0), 0);
    EXPECT_EQ(source.Position(), 0);
    EXPECT_EQ(nextFrame(source), 0);
}

TEST_F(SndCalls, an_odd_count_of_vox_samples_is_decoded_beside_the_callers_buffer) {
    results.info.format = 0x200021;
    results.counting = 9;
    DecSND& source = opened();
    for (const std::int16_t count : {std::int16_t{1}, std::int16_t{3}, std::int16_t{5}}) {
        std::int16_t items[8] = {};
        std::int32_t got = 0;
        const std::int16_t before = static_cast<std::int16_t>(counted);
        EXPECT_EQ(source.Read(items, 2 * count, got), 0);
        EXPECT_EQ(got, 2 * count);
        for (std::int16_t item = 0; item < 8; ++item)
            EXPECT_EQ(items[item], item < count ? before + item + 1 : 0) << count;
    }
    std::int16_t untouched = 77;
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(&untouched, 2, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(untouched, 77);
}

TEST_F(SndCalls, an_even_count_of_vox_samples_goes_straight_to_the_callers_buffer) {
    results.info.format = 0x200021;
    results.counting = 9;
    DecSND& source = opened();
    std::int16_t items[4] = {};
    std::int32_t got = 0;
    EXPECT_EQ(source.Read(items, 8, got), 0);
    EXPECT_THAT(libraries.calls, ElementsAre(Call{"sf_read_short", {handle, word(items), 4, 0}}));
}

} // namespace
} // namespace corvina::test
