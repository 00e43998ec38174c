// The host program's queue over the registered control and the real device.

#include "PlayQueue.h"
#include "SoundTest.h"

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
        return pumpUntil([this] {
            queue->tick();
            return ended > 0;
        });
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
    queue->add(L"no such file.wav");
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
        queue->add(name);
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

TEST_F(Queue, begins_at_the_given_second) {
    queue->add(longFile);
    queue->play(0, 7);
    EXPECT_EQ(queue->player().positionSeconds(), 7);
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
    ASSERT_EQ(failures.size(), 1u);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(started, (Indexes{0, 1}));
    EXPECT_EQ(failures.size(), 1u);
}

TEST_F(Queue, does_not_seek_before_the_beginning) {
    queue->add(longFile);
    queue->play(0, 2);
    queue->seekBy(-5);
    EXPECT_EQ(queue->player().positionSeconds(), 0);
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
    EXPECT_TRUE(queue->files().empty());
}

} // namespace
} // namespace corvina::test
