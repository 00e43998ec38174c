// The next file: what of it the host sees, before it is heard and afterwards.

#include "PlaybackFaultsFixture.h"
#include "support/ErrorNumber.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;

class NextFile : public PlaybackFaults {
protected:
    NextFile() {
        script.moves = true;
        script.extensions = {L"test", L"other"};
        script.data = noise(buffer * 10);
        script.otherData[L"next.other"] = noise(buffer * 10, 7);
        options().nextFile = next;
    }

    [[nodiscard]] PlaybackOptions& options() { return host.player.settings().options(); }
    static void playBuffers(int count) {
        for (int i = 0; i < count; ++i) {
            fakeWave.finishOne();
            dispatchWaitingMessages();
        }
    }
    [[nodiscard]] std::wstring format() { return host.player.facts().formatName(); }

    const std::wstring next = folder.write(L"next.other", {0});
};

TEST_F(NextFile, is_the_one_that_is_described_from_when_it_is_heard_until_another_is_opened) {
    startAndFill();
    playBuffers(4);
    EXPECT_EQ(options().nextFile, L"") << "it is queued";
    EXPECT_EQ(format(), L"TEST");
    playBuffers(7);
    EXPECT_EQ(host.progress.back(), L"Next next.other");
    EXPECT_EQ(format(), L"OTHER");
    ASSERT_EQ(host.player.OpenAudioFile(file), 0);
    EXPECT_EQ(format(), L"TEST");
    playOut();
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(NextFile, is_to_be_played_next_again_if_the_playback_is_stopped_before) {
    startAndFill();
    playBuffers(4);
    EXPECT_EQ(options().nextFile, L"");
    host.player.PlayStop();
    EXPECT_EQ(options().nextFile, next);
    dispatchWaitingMessages();
    startAndFill();
    playOut();
    EXPECT_EQ(host.player.NextFile(), L"");
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 1", L"State 1",
                                           L"Next next.other", L"State 0", L"Ended 0"));
}

TEST_F(NextFile, is_the_one_whose_duration_is_said_also_after_the_end) {
    script.durationMs = 453;
    script.otherDurations[L"next.other"] = 454;
    startAndFill();
    EXPECT_EQ(host.player.DurationMs(), 453);
    playOut();
    EXPECT_EQ(host.player.DurationMs(), 454);
    ASSERT_EQ(host.player.OpenAudioFile(file), 0);
    EXPECT_EQ(host.player.DurationMs(), 453);
}

TEST_F(NextFile, that_is_shorter_than_a_block_has_begun_when_the_last_block_was_played) {
    script.data = noise(buffer * 10 - 4000);
    script.otherData[L"next.other"] = noise(400, 7);
    startAndFill();
    playOut();
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.other", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.player.NextFile(), L"") << "it was heard";
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(NextFile, of_another_format_is_the_next_one_still_if_its_turn_is_taken_by_a_start) {
    script.otherFormats[L"next.other"] = pcm(22050, 1, 16);
    startAndFill();
    while (fakeWave.open) {
        fakeWave.finishAll();
        handleReturnedBuffers();
    }
    ASSERT_EQ(start(), 0) << "the close message still waits";
    EXPECT_EQ(host.player.NextFile(), next);
    EXPECT_EQ(options().nextFile, next);
    dispatchWaitingMessages();
}

TEST_F(NextFile, in_which_a_jump_leads_has_begun_even_if_no_message_has_said_so) {
    script.durationMs = 453;
    startAndFill();
    playBuffers(9);
    fakeWave.framesBeyond = 2000 + 441;
    ASSERT_EQ(host.player.PositionMs(), 10);
    EXPECT_EQ(host.player.NextFile(), next);
    fakeWave.written.clear();
    host.player.setPositionMs(100);
    EXPECT_EQ(host.progress.back(), L"Next next.other");
    EXPECT_EQ(host.player.NextFile(), L"");
    EXPECT_EQ(host.player.PositionMs(), 100);
    playOut();
    const Bytes& sound = script.otherData[L"next.other"];
    ASSERT_GE(fakeWave.written.size(), sound.size() - 4410 * 4);
    EXPECT_TRUE(std::equal(sound.begin() + 4410 * 4, sound.end(), fakeWave.written.begin()));
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.other", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.events, endOfPlayback);
}

TEST_F(NextFile, of_another_format_is_played_on_the_same_device_and_is_the_next_no_longer) {
    script.otherFormats[L"next.other"] = pcm(22050, 1, 16);
    ASSERT_EQ(start(3), 0);
    dispatchWaitingMessages();
    playOut();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_EQ(fakeWave.format.nSamplesPerSec, 22050u);
    EXPECT_EQ(fakeWave.device, 3u);
    EXPECT_EQ(host.player.NextFile(), L"");
    EXPECT_EQ(format(), L"OTHER");
}

TEST_F(NextFile, whose_device_cannot_be_opened_ends_the_playback_with_an_error) {
    script.otherFormats[L"next.other"] = pcm(22050, 1, 16);
    startAndFill();
    fakeWave.faults.arm("waveOutOpen", 1, once, MMSYSERR_ALLOCATED);
    playOut();
    EXPECT_THAT(host.events, ElementsAre(L"StartPlayAudio:waveOutOpen|4|4",
                                         L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 3"));
    EXPECT_EQ(options().nextFile, next) << "it was not heard";
    EXPECT_EQ(host.player.NextFile(), next);
}

TEST_F(NextFile, behind_a_short_one_is_the_next_until_it_is_heard) {
    script.otherData[L"next.other"] = noise(buffer, 7);
    script.otherData[L"third.test"] = noise(buffer * 10, 8);
    const std::wstring third = folder.write(L"third.test", {0});
    startAndFill();
    playBuffers(2);
    ASSERT_EQ(options().nextFile, L"") << "it is queued";
    options().nextFile = third;
    playBuffers(1);
    ASSERT_EQ(options().nextFile, L"") << "this one, too";
    playBuffers(7);
    EXPECT_EQ(host.progress.back(), L"Next next.other");
    EXPECT_EQ(host.player.NextFile(), third);
    playBuffers(1);
    EXPECT_EQ(host.progress.back(), L"Next third.test");
    EXPECT_EQ(host.player.NextFile(), L"");
}

TEST_F(NextFile, whose_device_gets_no_messages_ends_the_playback) {
    script.otherFormats[L"next.other"] = pcm(22050, 1, 16);
    startAndFill();
    windowFaults.arm("PostMessage", 1);
    playOut();
    EXPECT_EQ(fakeWave.opens, 2);
    EXPECT_FALSE(fakeWave.open);
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"Next next.other", L"State 0", L"Ended 0"));
}

TEST_F(NextFile, that_no_source_reads_or_opens_is_reported) {
    options().nextFile = folder.write(L"next.xyz", {0});
    startAndFill();
    script.openResult = SourceResult::notOpen;
    playOut();
    EXPECT_EQ(host.events.front(), L"NextFile|1|Format not supported");
    host.events.clear();
    script.openResult = SourceResult::done;
    options().nextFile = next;
    ASSERT_EQ(start(), 0);
    script.openResult = SourceResult::notOpen;
    dispatchWaitingMessages();
    playOut();
    EXPECT_EQ(host.events.front(), L"NextFile|1|Could not open file");
    EXPECT_EQ(host.player.NextFile(), L"");
}

TEST_F(NextFile, that_raises_an_error_when_it_is_opened_is_reported_and_the_one_before_is_heard) {
    script.onOpen = [](const std::wstring& name) {
        if (name == L"next.other")
            throw RuntimeError(53, L"File not found");
    };
    startAndFill();
    playOut();
    ASSERT_GE(fakeWave.written.size(), script.data.size());
    EXPECT_TRUE(std::equal(script.data.begin(), script.data.end(), fakeWave.written.begin()));
    EXPECT_THAT(host.events, ElementsAre(L"NextFile|53|File not found",
                                         L"StopPlayAudio:waveOutReset|5|5", L"DonePlay"));
    EXPECT_THAT(host.progress, ElementsAre(L"State 1", L"State 0", L"Ended 0"));
    EXPECT_EQ(host.player.NextFile(), L"");
}

} // namespace
} // namespace corvina::test
