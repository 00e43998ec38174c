// The ranges of the settings, and what the settings do to the sound on the fake device.

#include "PlaybackFaultsFixture.h"
#include "support/ErrorNumber.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace corvina::test {
namespace {

template <typename Set>
std::wstring refusalOf(Set set) {
    try {
        set();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 380);
        return error.text();
    }
    return L"accepted";
}

TEST(PlaybackSettings, out_of_range_raise_380_with_the_range_in_words_and_change_nothing) {
    PlaybackSettings settings;
    for (const std::int32_t value : {-1, 101, INT32_MIN, INT32_MAX})
        EXPECT_EQ(refusalOf([&] { settings.setVolume(value); }), L"Volume must be from 0 to 100");
    for (const std::int32_t value : {-101, 101})
        EXPECT_EQ(refusalOf([&] { settings.setBalance(value); }),
                  L"Balance must be from -100 to 100");
    for (const float value : {-12.01F, 12.01F, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity()})
        EXPECT_EQ(refusalOf([&] { settings.setBandGain(1, value); }),
                  L"EqualizerGain must be from -12 to 12");
    for (const std::int32_t band : {0, 11, -1})
        for (const auto& refusal : {refusalOf([&] { settings.setBandGain(band, 1.0F); }),
                                    refusalOf([&] { static_cast<void>(settings.bandGain(band)); })})
            EXPECT_EQ(refusal, L"Band must be from 1 to 10");
    EXPECT_EQ(refusalOf([&] { settings.setPositionInterval(-1); }),
              L"PositionInterval must be from 0 to 3600000");
    EXPECT_EQ(settings.options().sound, SoundSettings{});
    EXPECT_EQ(settings.options().positionInterval, 0);
}

TEST(PlaybackSettings, in_range_are_kept) {
    PlaybackSettings settings;
    for (const std::int32_t value : {0, 50, 100}) {
        settings.setVolume(value);
        EXPECT_EQ(settings.options().sound.volume, value);
    }
    settings.setBandGain(10, -12.0F);
    EXPECT_EQ(settings.bandGain(10), -12.0F);
    EXPECT_EQ(settings.bandGain(1), 0.0F);
}

std::vector<std::int16_t> samplesOf(const Bytes& bytes) {
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

class Sound : public Playback {
protected:
    [[nodiscard]] PlaybackSettings& settings() { return host.player.settings(); }
    // The samples that were written, as they are in the device's buffers now, in order.
    static std::vector<std::int16_t> queuedSamples() {
        std::vector<std::int16_t> samples;
        for (const WAVEHDR* header : fakeWave.queued) {
            const auto* data = reinterpret_cast<const std::int16_t*>(header->lpData);
            samples.insert(samples.end(), data, data + header->dwBufferLength / 2);
        }
        return samples;
    }
};

TEST_F(Sound, with_a_volume_before_the_start_is_exact_to_one_step) {
    settings().setVolume(50);
    settings().setBalance(20);
    startAndFill();
    const auto original = samplesOf(script.data);
    const auto heard = samplesOf(fakeWave.written);
    for (std::size_t i = 0; i < heard.size(); ++i) {
        const double gain = i % 2 == 0 ? 0.25 * 0.8 : 0.25;
        ASSERT_NEAR(heard[i], original[i] * gain, 1.0) << i;
    }
}

TEST_F(Sound, with_a_volume_changed_in_mid_play_changes_in_what_is_queued) {
    startAndFill();
    fakeWave.framesBeyond = 500;
    const auto original = queuedSamples();
    settings().setVolume(0);
    host.player.soundChanged();
    const auto changed = queuedSamples();
    const std::size_t fetched = 2 * (500 + 882);
    const std::size_t ramp = 2 * 882;
    ASSERT_TRUE(std::equal(original.begin(), original.begin() + fetched, changed.begin()))
        << "what the device may have fetched is left alone";
    for (std::size_t i = fetched; i < fetched + ramp; ++i) {
        const double part = 1.0 - static_cast<double>((i - fetched) / 2) / 882;
        ASSERT_NEAR(changed[i], original[i] * part, std::fabs(original[i]) * 0.002 + 1) << i;
    }
    for (std::size_t i = fetched + ramp; i < changed.size(); ++i)
        ASSERT_EQ(changed[i], 0) << i;
    fakeWave.written.clear();
    fakeWave.finishOne();
    dispatchWaitingMessages();
    EXPECT_EQ(fakeWave.written, Bytes(buffer)) << "and in what is filled from then on";
}

TEST_F(Sound, that_is_muted_and_comes_back_is_the_original_again) {
    startAndFill();
    const auto original = queuedSamples();
    settings().setMute(true);
    host.player.soundChanged();
    settings().setMute(false);
    host.player.soundChanged();
    EXPECT_EQ(queuedSamples(), original);
    fakeWave.written.clear();
    playOut();
    EXPECT_TRUE(std::equal(fakeWave.written.begin(), fakeWave.written.begin() + 50 * buffer,
                           script.data.begin() + 8 * buffer));
}

TEST_F(Sound, level_is_the_peak_of_what_is_heard) {
    EXPECT_EQ(host.player.Level(1), 0);
    script.data.assign(buffer * 20, 0);
    for (std::size_t i = buffer * 2; i < buffer * 3; i += 4) {
        script.data[i + 1] = 0x40; // left: half of full scale
        script.data[i + 3] = 0x20;
    }
    for (std::size_t i = buffer * 3; i < buffer * 4; i += 4)
        script.data[i + 1] = 0x80; // left: full scale
    startAndFill();
    EXPECT_EQ(host.player.Level(1), 0);
    fakeWave.finishOne();
    fakeWave.finishOne();
    dispatchWaitingMessages();
    EXPECT_EQ(host.player.Level(1), 50);
    EXPECT_EQ(host.player.Level(2), 25);
    fakeWave.finishOne();
    dispatchWaitingMessages();
    EXPECT_EQ(host.player.Level(1), 100);
    for (const std::int32_t channel : {0, 3, -1})
        EXPECT_EQ(refusalOf([&] { static_cast<void>(host.player.Level(channel)); }),
                  L"Channel must be from 1 to 2");
}

} // namespace
} // namespace corvina::test
