// What the registered player's members return before, during and after a playback.

#include "PlayerMembersFixture.h"

#include <cmath>
#include <cstring>
#include <numbers>

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

// A quarter of full scale at 1000 Hz, in both channels.
std::wstring quietTone(TempFolder& folder) {
    std::vector<std::int16_t> samples;
    for (int frame = 0; frame < 3 * 44100; ++frame)
        samples.insert(samples.end(), 2,
                       static_cast<std::int16_t>(
                           std::lround(8192 * std::sin(2 * std::numbers::pi * frame / 44.1))));
    Bytes bytes(samples.size() * sizeof(std::int16_t));
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return folder.write(L"quiet.wav", plainWav(pcm(44100, 2, 16), bytes));
}

TEST_F(PlayerMembers, settings_change_what_plays) {
    const auto level = [&](long channel) {
        EXPECT_EQ(S_OK, player_->get_Level(channel, &result_));
        return result_;
    };
    ASSERT_EQ(0, start(quietTone(folder_)));
    EXPECT_TRUE(pumpUntil([&] { return level(1) == 25 && level(2) == 25; }));
    EXPECT_EQ(S_OK, player_->put_EqualizerGain(6, 12));
    EXPECT_TRUE(pumpUntil([&] { return level(1) > 80 && level(2) > 80; }));
    EXPECT_EQ(S_OK, player_->put_Balance(-100));
    EXPECT_TRUE(pumpUntil([&] { return level(1) > 80 && level(2) == 0; }));
    EXPECT_EQ(S_OK, player_->put_Volume(0));
    EXPECT_TRUE(pumpUntil([&] { return level(1) == 0; }));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayStop));
    EXPECT_TRUE(playsOut());
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
