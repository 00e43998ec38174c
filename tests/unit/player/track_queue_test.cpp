// Tracks one after the other: what is sent, and which place of which track a frame of the device
// is.

#include "player/TrackQueue.h"

#include "TrackFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Track = TrackQueue::Track;

const TrackQueue::Options looping{.loops = true, .exactly = false, .next = nullptr};

class Queue : public ::testing::Test {
protected:
    Queue() { fakeAcm.reset(); }

    // Begun, as the queue wants them.
    static Track trackOf(const std::shared_ptr<MemorySource>& source) {
        auto track = std::make_shared<PlayedTrack>(L"", source, fakeAcmApi, nullptr);
        EXPECT_TRUE(track->begin());
        return track;
    }
    // What is sent of the next frames, and whether the sound has ended with them.
    FrameNumbers fill(std::size_t frames, const TrackQueue::Options& options = {}) {
        Bytes block(frames * sizeof(std::int16_t), 0xEE);
        const TrackQueue::Filled filled = queue.fill(block, options);
        ended = filled.ended;
        FrameNumbers numbers(static_cast<std::size_t>(filled.bytes) / sizeof(std::int16_t));
        if (!numbers.empty())
            std::memcpy(numbers.data(), block.data(), numbers.size() * sizeof(std::int16_t));
        return numbers;
    }
    TrackQueue::Options followedBySecond() {
        return {.loops = false, .exactly = false, .next = [this] {
                    return std::exchange(following, nullptr);
                }};
    }
    // 150 frames of the first track and 50 of the second.
    void fillBoth() {
        queue.begin(first);
        fill(200, followedBySecond());
    }

    std::shared_ptr<MemorySource> firstSource = numberedSource(0, 150);
    std::shared_ptr<MemorySource> secondSource = numberedSource(1000, 150);
    Track first = trackOf(firstSource);
    Track second = trackOf(secondSource);
    Track following = second;
    TrackQueue queue;
    bool ended = false;
};

TEST_F(Queue, sends_a_track_block_after_block_to_its_end) {
    queue.begin(first);
    EXPECT_THAT(fill(100), ElementsAreArray(numbersFrom(0, 100)));
    EXPECT_FALSE(ended);
    EXPECT_THAT(fill(100), ElementsAreArray(numbersFrom(100, 50)));
    EXPECT_TRUE(ended);
}

TEST_F(Queue, leaves_what_lies_behind_the_sound_alone) {
    queue.begin(first);
    Bytes block(400, 0xEE);
    EXPECT_EQ(queue.fill(block, {}).bytes, 300);
    EXPECT_THAT(std::span(block).subspan(300), ::testing::Each(0xEE));
}

TEST_F(Queue, goes_on_with_the_next_track_within_a_block) {
    queue.begin(first);
    FrameNumbers both = numbersFrom(0, 150);
    const FrameNumbers other = numbersFrom(1000, 50);
    both.insert(both.end(), other.begin(), other.end());
    EXPECT_THAT(fill(200, followedBySecond()), ElementsAreArray(both));
    EXPECT_FALSE(ended);
    EXPECT_EQ(queue.current(), second);
    EXPECT_TRUE(queue.waitsForNext());
    EXPECT_TRUE(queue.uses(firstSource.get()));
    EXPECT_TRUE(queue.uses(secondSource.get()));
    EXPECT_FALSE(queue.uses(nullptr));
}

TEST_F(Queue, knows_which_place_of_which_track_a_frame_is) {
    fillBoth();
    const auto expectPlace = [this](std::int64_t frame, const Track& track, int milliseconds) {
        const TrackQueue::Place place = queue.placeAt(frame);
        EXPECT_EQ(place.track, track) << frame;
        EXPECT_EQ(place.milliseconds, milliseconds) << frame;
    };
    expectPlace(0, first, 0);
    expectPlace(149, first, 149);
    expectPlace(150, second, 0);
    expectPlace(199, second, 49);
    expectPlace(-5, first, 0); // a device that lies
}

TEST_F(Queue, has_no_place_without_a_track) {
    EXPECT_EQ(queue.placeAt(0).track, nullptr);
}

TEST_F(Queue, reports_a_next_track_once_when_its_first_frame_is_reached) {
    fillBoth();
    EXPECT_THAT(queue.unheard(), ElementsAre(second));
    EXPECT_THAT(queue.startedUntil(149), IsEmpty());
    EXPECT_EQ(firstSource->closes, 0);
    EXPECT_THAT(queue.startedUntil(150), ElementsAre(second));
    EXPECT_EQ(firstSource->closes, 1);
    EXPECT_FALSE(queue.uses(firstSource.get()));
    EXPECT_FALSE(queue.waitsForNext());
    EXPECT_THAT(queue.startedUntil(199), IsEmpty());
    EXPECT_THAT(queue.unheard(), IsEmpty());
    EXPECT_EQ(queue.placeAt(160).milliseconds, 10);
}

TEST_F(Queue, begins_a_track_that_loops_again_without_reporting_it) {
    queue.begin(first);
    FrameNumbers twice = numbersFrom(0, 150);
    const FrameNumbers again = numbersFrom(0, 50);
    twice.insert(twice.end(), again.begin(), again.end());
    EXPECT_THAT(fill(200, looping), ElementsAreArray(twice));
    EXPECT_FALSE(ended);
    EXPECT_EQ(queue.placeAt(170).milliseconds, 20);
    EXPECT_THAT(queue.startedUntil(170), IsEmpty());
    EXPECT_EQ(firstSource->closes, 0);
}

TEST_F(Queue, ends_if_a_track_that_loops_has_no_sound) {
    queue.begin(trackOf(numberedSource(0, 0)));
    EXPECT_THAT(fill(100, looping), IsEmpty());
    EXPECT_TRUE(ended);
}

TEST_F(Queue, ends_if_a_track_that_loops_cannot_be_moved_again) {
    // Even its beginning is out of reach once the track was closed.
    queue.begin(first);
    fill(100, looping);
    first->close();
    fill(100, looping);
    EXPECT_TRUE(ended);
}

TEST_F(Queue, keeps_a_next_track_of_another_format_for_a_device_of_its_own) {
    queue.begin(first);
    const Track other = trackOf(numberedSource(0, 100, 2000));
    EXPECT_THAT(fill(200, {.loops = false, .exactly = false, .next = [&] { return other; }}),
                ElementsAreArray(numbersFrom(0, 150)));
    EXPECT_TRUE(ended);
    EXPECT_EQ(queue.other(), other);
    EXPECT_THAT(queue.unheard(), ElementsAre(other));
    EXPECT_TRUE(queue.uses(other->source()));
    EXPECT_EQ(queue.takeOther(), other);
    EXPECT_EQ(queue.other(), nullptr);
    EXPECT_THAT(queue.unheard(), IsEmpty());
}

TEST_F(Queue, counts_from_the_next_byte_of_the_only_track_left_after_a_restart) {
    fillBoth();
    queue.restart(first);
    EXPECT_FALSE(queue.uses(secondSource.get()));
    EXPECT_THAT(queue.unheard(), IsEmpty());
    ASSERT_TRUE(first->seek(100));
    queue.restart(first);
    EXPECT_EQ(queue.placeAt(0).milliseconds, 100);
    EXPECT_THAT(fill(10), ElementsAreArray(numbersFrom(100, 10)));
    EXPECT_EQ(queue.placeAt(10).milliseconds, 110);
}

TEST_F(Queue, closes_every_track_once) {
    fillBoth();
    queue.close();
    EXPECT_EQ(firstSource->closes, 1);
    EXPECT_EQ(secondSource->closes, 1);
    EXPECT_EQ(queue.current(), nullptr);
    queue.close();
    EXPECT_EQ(firstSource->closes, 1);
}

TEST_F(Queue, forgets_its_tracks_without_closing_them) {
    fillBoth();
    queue.forget();
    EXPECT_EQ(queue.current(), nullptr);
    EXPECT_FALSE(queue.uses(firstSource.get()));
    EXPECT_EQ(firstSource->closes + secondSource->closes, 0);
    queue.begin(second);
    EXPECT_EQ(queue.placeAt(0).track, second);
}

TEST_F(Queue, ends_if_a_track_that_loops_has_no_sound_any_more) {
    queue.begin(first);
    EXPECT_THAT(fill(100, looping), ElementsAreArray(numbersFrom(0, 100)));
    firstSource->respond = [](void*, std::int32_t, std::int32_t& read) {
        read = 0;
        return SourceResult::endOfData;
    };
    EXPECT_THAT(fill(100, looping), ElementsAreArray(numbersFrom(100, 50)));
    EXPECT_TRUE(ended);
}

TEST_F(Queue, counts_frames_of_a_single_byte) {
    const auto eightBits = [](std::size_t frames) {
        return trackOf(std::make_shared<MemorySource>(pcm(1000, 1, 8), Bytes(frames)));
    };
    const Track next = eightBits(100);
    queue.begin(eightBits(150));
    Bytes block(200);
    EXPECT_EQ(
        queue.fill(block, {.loops = false, .exactly = false, .next = [&] { return next; }}).bytes,
        200);
    EXPECT_EQ(queue.placeAt(149).milliseconds, 149);
    EXPECT_EQ(queue.placeAt(150).track, next);
    EXPECT_EQ(queue.placeAt(150).milliseconds, 0);
}

TEST_F(Queue, has_no_track_for_another_device_any_more_after_a_restart) {
    queue.begin(first);
    const Track other = trackOf(numberedSource(0, 100, 2000));
    fill(200, {.loops = false, .exactly = false, .next = [&] { return other; }});
    ASSERT_EQ(queue.other(), other);
    queue.restart(first);
    EXPECT_EQ(queue.other(), nullptr);
    EXPECT_THAT(queue.unheard(), IsEmpty());
    EXPECT_FALSE(queue.uses(other->source()));
}

} // namespace
} // namespace corvina::test
