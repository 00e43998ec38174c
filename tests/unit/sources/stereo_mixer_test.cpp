// The mix of more than two channels down to stereo.

#include "sources/StereoMixer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mmreg.h>

#include <ksmedia.h>

namespace corvina {
namespace {

using testing::ElementsAre;

std::vector<std::int16_t> mixed(const std::vector<DWORD>& speakers,
                                const std::vector<std::int16_t>& frame) {
    std::vector<std::int16_t> result(2);
    StereoMixer(speakers).apply(frame.data(), result.data(), 1);
    return result;
}

TEST(StereoMixer, the_usual_channels_of_six_are_known_by_their_order) {
    EXPECT_THAT(speakersOf(6),
                ElementsAre(SPEAKER_FRONT_LEFT, SPEAKER_FRONT_RIGHT, SPEAKER_FRONT_CENTER,
                            SPEAKER_LOW_FREQUENCY, SPEAKER_BACK_LEFT, SPEAKER_BACK_RIGHT));
}

TEST(StereoMixer, a_mask_names_the_channels_from_its_lowest_bit) {
    EXPECT_THAT(speakersOf(3, SPEAKER_BACK_CENTER | SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT),
                ElementsAre(SPEAKER_FRONT_LEFT, SPEAKER_FRONT_RIGHT, SPEAKER_BACK_CENTER));
}

TEST(StereoMixer, channels_beyond_the_mask_have_no_speaker) {
    EXPECT_THAT(speakersOf(3, SPEAKER_FRONT_LEFT), ElementsAre(SPEAKER_FRONT_LEFT, 0u, 0u));
    EXPECT_EQ(speakersOf(20).size(), 20u);
}

TEST(StereoMixer, each_channel_goes_to_its_side) {
    const std::vector<DWORD> six = speakersOf(6);
    EXPECT_THAT(mixed(six, {24142, 0, 0, 0, 0, 0}), ElementsAre(10000, 0));
    EXPECT_THAT(mixed(six, {0, 24142, 0, 0, 0, 0}), ElementsAre(0, 10000));
    EXPECT_THAT(mixed(six, {0, 0, 24142, 0, 0, 0}), ElementsAre(7071, 7071));
    EXPECT_THAT(mixed(six, {0, 0, 0, 24142, 0, 0}), ElementsAre(0, 0));
    EXPECT_THAT(mixed(six, {0, 0, 0, 0, 24142, 0}), ElementsAre(7071, 0));
    EXPECT_THAT(mixed(six, {0, 0, 0, 0, 0, 24142}), ElementsAre(0, 7071));
}

TEST(StereoMixer, full_scale_on_all_channels_is_not_wrapped_around) {
    for (std::size_t channels = 1; channels <= 8; ++channels) {
        const std::vector<DWORD> speakers = speakersOf(static_cast<std::int32_t>(channels));
        for (const std::int16_t value : {std::int16_t{32767}, std::int16_t{-32768}}) {
            const std::vector<std::int16_t> result =
                mixed(speakers, std::vector<std::int16_t>(channels, value));
            EXPECT_GT(result[0] * (value / 32767), 20'000) << channels;
            EXPECT_GT(result[1] * (value / 32767), 20'000) << channels;
        }
    }
}

} // namespace
} // namespace corvina
