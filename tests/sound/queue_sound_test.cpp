// The host program's queue over the registered control and the real device.

#include "PlayQueue.h"
#include "SoundTest.h"
#include "Unicode.h"

namespace corvina::test {
namespace {

class Queue : public SoundTest {
protected:
    void SetUp() override {
        SoundTest::SetUp();
        longFile = file(signal(10 * 44100));
        shortFile = file(signal(shortLength));
        queue = std::make_unique<app::PlayQueue>(
            app::QueueHandlers{[this] { started.push_back(queue->current()); },
                               [this] { ++ended; },
                               [this](const std::wstring& words) { failures.push_back(words); },
                               {}});
    }

    [[nodiscard]] bool waitForEnd() {
        return pumpUntil([this] { return ended > 0; });
    }
    [[nodiscard]] bool waitForStarts(std::size_t count) {
        return pumpUntil([&] { return started.size() >= count; });
    }

    using Indexes = std::vector<std::size_t>;

    std::wstring longFile;
    std::wstring shortFile;
    Indexes started;
    int ended = 0;
    std::vector<std::wstring> failures;
    std::unique_ptr<app::PlayQueue> queue;
};

TEST_F(Queue, plays_its_files_one_after_the_other) {
    queue->add(shortFile);
    queue->add(shortFile);
    queue->play(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 1}));
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(failures.empty());
    EXPECT_EQ(queue->result(), 0);
    EXPECT_FALSE(queue->isActive());
}

TEST_F(Queue, passes_over_a_file_that_cannot_be_played_and_keeps_its_result) {
    queue->add(shortFile + L".xyz");
    queue->add(shortFile);
    queue->play(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{1}));
    EXPECT_EQ(failures.size(), 1u);
    EXPECT_EQ(queue->result(), 1);
}

TEST_F(Queue, ends_at_once_if_no_file_can_be_played) {
    queue->add(std::wstring(L"no such file.wav"));
    queue->play(0);
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(queue->result(), 1);
}

TEST_F(Queue, reports_in_words_what_a_device_refused) {
    queue->add(shortFile);
    queue->setDevice(4711);
    queue->play(0);
    EXPECT_EQ(ended, 1);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(queue->result(), 2);
}

TEST_F(Queue, goes_on_to_the_next_file_and_back) {
    for (int count = 0; count < 2; ++count)
        queue->add(longFile);
    queue->play(0);
    queue->next();
    ASSERT_TRUE(waitForStarts(2));
    queue->previous();
    ASSERT_TRUE(waitForStarts(3));
    queue->previous();
    ASSERT_TRUE(waitForStarts(4));
    queue->stop();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 1, 0, 0}));
}

TEST_F(Queue, begins_again_if_it_is_repeated) {
    for (int count = 0; count < 2; ++count)
        queue->add(longFile);
    queue->setRepeated(true);
    queue->play(1);
    queue->next();
    ASSERT_TRUE(waitForStarts(2));
    queue->stop();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{1, 0}));
}

TEST_F(Queue, repeated_without_a_file_that_can_be_played_it_ends) {
    queue->setRepeated(true);
    for (const wchar_t* name : {L"no such file.wav", L"nor this.wav"})
        queue->add(std::wstring(name));
    queue->play(1);
    EXPECT_EQ(ended, 1);
    EXPECT_FALSE(queue->failure(0).empty());
    EXPECT_FALSE(queue->failure(1).empty());
}

TEST_F(Queue, ends_behind_the_last_file) {
    queue->add(longFile);
    queue->play(0);
    queue->next();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0}));
}

TEST_F(Queue, obeys_the_latest_wish_while_a_file_is_being_stopped) {
    for (int count = 0; count < 3; ++count)
        queue->add(longFile);
    queue->play(0);
    queue->stop();
    queue->play(2);
    ASSERT_TRUE(waitForStarts(2));
    queue->stop();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 2}));
    EXPECT_EQ(ended, 1);
}

TEST_F(Queue, begins_at_the_given_time) {
    queue->add(longFile);
    queue->play(0, 7000);
    EXPECT_GE(queue->positionMs(), 7000);
    EXPECT_LT(queue->positionMs(), 7500);
    queue->stop();
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Queue, gives_a_device_up_that_does_not_finish_and_goes_on) {
    queue->add(longFile);
    queue->add(shortFile);
    queue->play(0);
    queue->next();
    // As if the device kept its blocks: the player does not hear that they came back.
    const auto tooLong = std::chrono::steady_clock::now() + 15s;
    while (failures.empty() && std::chrono::steady_clock::now() < tooLong) {
        MSG lost;
        while (::PeekMessageW(&lost, nullptr, MM_WOM_DONE, MM_WOM_DONE, PM_REMOVE))
            ;
        queue->tick();
        ::Sleep(10);
    }
    ASSERT_EQ(failures.size(), 1u) << app::toUtf8(failures.back());
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 1}));
    EXPECT_EQ(failures.size(), 1u);
}

TEST_F(Queue, does_not_seek_before_the_beginning) {
    queue->add(longFile);
    queue->play(0, 2000);
    queue->seekBy(-5000);
    EXPECT_LT(queue->positionMs(), 300);
    queue->stop();
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Queue, keeps_its_place_when_an_earlier_file_is_removed) {
    for (int count = 0; count < 3; ++count)
        queue->add(longFile);
    queue->play(1);
    queue->remove(0);
    EXPECT_EQ(queue->current(), 0u);
    queue->next();
    ASSERT_TRUE(waitForStarts(2));
    EXPECT_EQ(queue->current(), 1u);
    queue->stop();
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Queue, stops_the_file_that_is_removed_while_it_plays) {
    queue->add(longFile);
    queue->play(0);
    queue->remove(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(queue->tracks().empty());
}

TEST_F(Queue, plays_two_files_without_a_sample_between) {
    const Frames whole = signal(3 * shortLength);
    const Frames first(whole.begin(), whole.begin() + 2 * shortLength);
    const Frames second(whole.begin() + 2 * shortLength, whole.end());
    queue->add(file(first));
    queue->add(file(second));
    expectRecorded(whole, [&] {
        ended = 0;
        started.clear();
        const std::size_t before = recording.now();
        queue->play(0);
        EXPECT_TRUE(waitForEnd());
        EXPECT_EQ(started, (Indexes{0, 1}));
        return recording.listen(before, whole.size(), 5s);
    });
    EXPECT_TRUE(failures.empty());
}

TEST_F(Queue, marks_a_file_that_cannot_follow_and_goes_on_behind_it) {
    queue->add(shortFile);
    queue->add(std::wstring(L"no such file.wav"));
    queue->add(shortFile);
    queue->play(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 2}));
    EXPECT_EQ(failures.size(), 1u);
    EXPECT_TRUE(queue->failure(0).empty());
    EXPECT_FALSE(queue->failure(1).empty());
    EXPECT_EQ(queue->result(), 1);
}

TEST_F(Queue, a_list_that_changes_while_it_plays_is_followed_as_it_is_then) {
    const std::wstring other = file(signal(shortLength, 2));
    queue->add(shortFile);
    queue->add(longFile);
    queue->add(other);
    queue->play(0);
    queue->move(2, 1);
    ASSERT_TRUE(waitForStarts(2));
    EXPECT_EQ(queue->tracks()[queue->current()].file, other);
    queue->stop();
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Queue, repeats_one_file_without_a_new_start_until_it_is_switched_off) {
    queue->add(shortFile); // 283 ms
    queue->add(shortFile);
    queue->setLooping(true);
    queue->play(0);
    EXPECT_FALSE(pumpUntil([this] { return started.size() > 1 || ended > 0; }, 2s));
    queue->setLooping(false);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 1}));
}

TEST_F(Queue, takes_the_systems_choice_while_the_chosen_device_is_not_there) {
    std::vector<std::wstring> notices;
    queue = std::make_unique<app::PlayQueue>(app::QueueHandlers{
        .ended = [this] { ++ended; },
        .noticed = [&notices](const std::wstring& words) { notices.push_back(words); }});
    queue->add(shortFile);
    queue->setDeviceName(L"no such device");
    queue->play(0);
    ASSERT_TRUE(queue->isPlaying());
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_NE(notices[0].find(L"no such device"), std::wstring::npos);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(queue->result(), 0);
}

TEST_F(Queue, plays_on_the_device_of_that_name) {
    const std::vector<app::OutputDevice> devices = queue->player().devices();
    ASSERT_FALSE(devices.empty());
    queue->add(shortFile);
    queue->setDeviceName(devices.back().name);
    queue->play(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(queue->result(), 0);
    EXPECT_TRUE(failures.empty());
}

// Tracks of one file, as a CUE sheet names them.
class Parts : public Queue {
protected:
    void SetUp() override {
        Queue::SetUp();
        if (IsSkipped())
            return;
        queue->add({longFile, 1000, 1400, L"One"});
        queue->add({longFile, 1400, 1800, L"Two"});
        queue->add({longFile, 9700, 0, L"Three"});
    }
};

TEST_F(Parts, are_heard_from_their_beginning_to_their_end) {
    const Frames all = signal(10 * 44100);
    const std::size_t before = recording.now();
    queue->play(0);
    EXPECT_EQ(queue->durationMs(), 400);
    EXPECT_LT(queue->positionMs(), 300);
    ASSERT_TRUE(waitForStarts(3));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 1, 2}));
    EXPECT_TRUE(failures.empty());
    const Frames heard = recording.listenUntilQuiet(before, 5s);
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.front(), all[44100]);
    // The last one runs to the end of the file.
    const Frames sound = withoutSilenceBehind(heard);
    EXPECT_EQ(sound.back(), all.back());
}

TEST_F(Parts, that_touch_are_one_sound) {
    const Frames all = signal(10 * 44100);
    queue->remove(2);
    // The second part's end is not compared: what the device holds then is dropped.
    constexpr std::size_t length = 44100 * 7 / 10;
    const Frames expected(all.begin() + 44100, all.begin() + 44100 + length);
    expectRecorded(expected, [&] {
        ended = 0;
        const std::size_t before = recording.now();
        queue->play(0);
        EXPECT_TRUE(waitForEnd());
        Frames heard = recording.listen(before, length, 5s);
        EXPECT_LT(withoutSilenceBehind(heard).size(), length + 44100 / 4);
        heard.resize(std::min(heard.size(), length));
        return heard;
    });
}

TEST_F(Parts, have_places_of_their_own) {
    queue->play(1);
    queue->seekTo(250);
    EXPECT_GE(queue->player().positionMs(), 1650);
    EXPECT_LT(queue->player().positionMs(), 1790);
    queue->seekBy(-1000);
    EXPECT_GE(queue->player().positionMs(), 1400);
    EXPECT_LT(queue->player().positionMs(), 1600);
    queue->stop();
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Parts, are_repeated_by_themselves) {
    queue->setLooping(true);
    queue->play(0);
    EXPECT_FALSE(pumpUntil(
        [this] { return started.size() > 1 || ended > 0 || queue->player().positionMs() > 1600; },
        2s));
    queue->stop();
    ASSERT_TRUE(waitForEnd());
}

TEST_F(Parts, that_begin_behind_the_end_of_their_file_are_marked) {
    queue->clear();
    queue->add({longFile, 60000, 0, L"Nowhere"});
    queue->add(shortFile);
    queue->play(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{1}));
    EXPECT_FALSE(queue->failure(0).empty());
    EXPECT_TRUE(queue->failure(1).empty());
}

} // namespace
} // namespace corvina::test
