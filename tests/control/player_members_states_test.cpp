// What the registered player's members return before, during and after a playback.

#include "PlayerMembersFixture.h"

using namespace corvina;
using namespace corvina::test;

namespace {

TEST_F(PlayerMembers, DonePlay_is_true_but_from_the_start_to_the_end_of_a_playback) {
    EXPECT_TRUE(truthOf(&_cPlayer::DonePlay));
    ASSERT_EQ(0, start(tone(shortSound)));
    EXPECT_FALSE(truthOf(&_cPlayer::DonePlay));
    dispatchWaitingMessages();
    EXPECT_FALSE(truthOf(&_cPlayer::DonePlay));
    ASSERT_TRUE(playsOut());
    EXPECT_TRUE(truthOf(&_cPlayer::DonePlay));
}

// All of the sound is queued, and the source at its end.
TEST_F(PlayerMembers, while_the_last_buffers_play_the_control_still_plays) {
    const std::wstring file = tone(shortSound);
    ASSERT_EQ(0, start(file));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayPause));
    dispatchWaitingMessages();
    EXPECT_TRUE(truthOf(&_cPlayer::IsPlaying));
    EXPECT_TRUE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_FALSE(truthOf(&_cPlayer::DonePlay));
    EXPECT_NE(0, of<long>(&_cPlayer::get_AudioDataOut));
    EXPECT_EQ(-201, start(file));
    EXPECT_EQ(0, seek(0));
    EXPECT_EQ(44100, of<long>(&_cPlayer::get_Info_Samplerate));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayUnPause));
    EXPECT_FALSE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_TRUE(playsOut());
}

TEST_F(PlayerMembers, a_start_while_paused_is_refused_and_leaves_the_pause) {
    const std::wstring file = tone(40 * 8000);
    ASSERT_EQ(0, start(file));
    dispatchWaitingMessages();
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayPause));
    EXPECT_EQ(-201, start(file));
    EXPECT_EQ(-201, start(L"none.wav")) << "before the file is looked for";
    EXPECT_TRUE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_TRUE(truthOf(&_cPlayer::IsPlaying));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayStop));
    EXPECT_TRUE(playsOut());
}

TEST_F(PlayerMembers, after_the_end_the_device_is_closed_and_the_control_says_so) {
    const std::wstring file = tone(shortSound);
    ASSERT_EQ(0, start(file));
    ASSERT_TRUE(playsOut());
    dispatchWaitingMessages();
    EXPECT_EQ(MMSYSERR_INVALHANDLE, static_cast<MMRESULT>(of<long>(&_cPlayer::PlayPause)));
    EXPECT_EQ(MMSYSERR_INVALHANDLE, static_cast<MMRESULT>(of<long>(&_cPlayer::PlayUnPause)));
    EXPECT_FALSE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayStop));
    EXPECT_EQ(0, seek(0));
    EXPECT_EQ(0, seek(1000)) << "out of range is not reported";
    EXPECT_FALSE(truthOf(&_cPlayer::IsPlaying));
    EXPECT_TRUE(truthOf(&_cPlayer::DonePlay));
    EXPECT_NE(0, of<long>(&_cPlayer::get_AudioDataOut)) << "the last block stays";
    EXPECT_EQ(0, start(file));
    EXPECT_TRUE(playsOut());
}

} // namespace
