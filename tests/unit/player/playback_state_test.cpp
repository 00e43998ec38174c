// The states of a playback, in the order in which the engine enters them.

#include "PlaybackFaultsFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using States = PlaybackFaults;

TEST(PlaybackState, each_has_a_name_of_its_own) {
    std::set<std::string> names;
    for (int state = 0; state <= static_cast<int>(PlaybackState::closeRefused); ++state)
        names.insert(nameOf(static_cast<PlaybackState>(state)));
    EXPECT_EQ(names.size(), 6u);
    EXPECT_FALSE(names.contains(""));
}

TEST(PlaybackState, only_a_device_that_is_opening_or_draining_can_begin_to_be_fed) {
    using enum PlaybackState;
    for (const PlaybackState from : {closed, feeding, closing, closeRefused})
        EXPECT_FALSE(mayFollow(from, feeding)) << nameOf(from);
    EXPECT_TRUE(mayFollow(opening, feeding));
    EXPECT_TRUE(mayFollow(draining, feeding)) << "a jump back from the end";
}

TEST(PlaybackState, follow_each_other_in_these_ways_alone) {
    using enum PlaybackState;
    const std::map<PlaybackState, std::set<PlaybackState>> ways{
        {closed, {opening}},
        {opening, {feeding, closed}},
        {feeding, {draining, closed}},
        {draining, {feeding, closing, closed}},
        {closing, {closed, closeRefused}},
        {closeRefused, {closed}}};
    for (const auto& [from, followers] : ways)
        for (const auto& [to, unused] : ways)
            EXPECT_EQ(mayFollow(from, to), followers.contains(to))
                << nameOf(from) << " to " << nameOf(to);
}

TEST_F(States, of_a_playback_to_the_end) {
    script.data = noise(buffer * 10);
    startAndFill();
    EXPECT_THAT(stateLog, ElementsAre("opening", "feeding"));
    playOut();
    EXPECT_THAT(stateLog, ElementsAre("opening", "feeding", "draining", "closing", "closed"));
}

TEST_F(States, of_a_playback_that_is_stopped) {
    startAndFill();
    host.player.PlayStop();
    EXPECT_THAT(stateLog, ElementsAre("opening", "feeding", "draining"));
    dispatchWaitingMessages();
    EXPECT_THAT(stateLog, ElementsAre("opening", "feeding", "draining", "closing", "closed"));
}

TEST_F(States, do_not_change_over_a_pause) {
    startAndFill();
    stateLog.clear();
    host.player.PlayPause();
    host.player.PlayUnPause();
    EXPECT_THAT(stateLog, IsEmpty());
}

TEST_F(States, of_a_device_that_cannot_be_opened_stay_closed) {
    fakeWave.faults.arm("waveOutOpen", 1);
    EXPECT_NE(start(), 0);
    EXPECT_THAT(stateLog, IsEmpty());
}

TEST_F(States, of_a_start_that_fails_behind_the_opening) {
    fakeWave.faults.arm("waveOutPrepareHeader", 3);
    EXPECT_NE(start(), 0);
    EXPECT_THAT(stateLog, ElementsAre("opening", "closed"));
}

TEST_F(States, of_a_start_whose_messages_are_refused) {
    windowFaults.arm("PostMessage", 1);
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(stateLog, ElementsAre("opening", "feeding", "draining", "closing", "closed"));
}

TEST_F(States, of_a_device_that_refuses_to_close_and_is_closed_by_the_next_start) {
    startAndFill();
    fakeWave.faults.arm("waveOutClose", 1);
    host.player.PlayStop();
    dispatchWaitingMessages();
    EXPECT_EQ(stateLog.back(), "closeRefused");
    stateLog.clear();
    ASSERT_EQ(start(), 0);
    EXPECT_THAT(stateLog, ElementsAre("closed", "opening", "feeding"));
}

TEST_F(States, of_a_playback_in_which_something_is_thrown) {
    startAndFill();
    stateLog.clear();
    script.onRead = [] { throwOverflow(); };
    playOut();
    EXPECT_THAT(stateLog, ElementsAre("draining", "closing", "closed"));
}

TEST_F(States, of_a_playback_that_the_host_leaves) {
    startAndFill();
    stateLog.clear();
    host.player.shutdown();
    EXPECT_THAT(stateLog, ElementsAre("closed"));
}

} // namespace
} // namespace corvina::test
