#include "stream/StereoMix.h"

#include <cmath>
#include <gmock/gmock.h>
#include <vector>
#include <windows.h>

#include <ks.h>
#include <ksmedia.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

TEST(StereoMix, six_channels_are_mixed_by_their_places_and_cannot_become_too_loud) {
    const auto weights = stereoWeights(speakersOf(6, KSAUDIO_SPEAKER_5POINT1));
    const double sum = 1 + 2 * std::sqrt(0.5);
    EXPECT_DOUBLE_EQ(weights[0].left, 1 / sum);
    EXPECT_DOUBLE_EQ(weights[0].right, 0);
    EXPECT_DOUBLE_EQ(weights[2].left, std::sqrt(0.5) / sum);
    EXPECT_DOUBLE_EQ(weights[2].right, std::sqrt(0.5) / sum);
    EXPECT_DOUBLE_EQ(weights[3].left, 0);
    EXPECT_DOUBLE_EQ(weights[5].left, 0);
    EXPECT_DOUBLE_EQ(weights[5].right, std::sqrt(0.5) / sum);
}

TEST(StereoMix, without_places_the_usual_order_counts_and_every_number_of_channels_is_mixed) {
    EXPECT_EQ(stereoWeights(speakersOf(6, 0))[3].left, 0);
    for (std::int32_t channels = 3; channels <= 32; ++channels) {
        double left = 0;
        double right = 0;
        for (const StereoWeights& weight : stereoWeights(speakersOf(channels, 0))) {
            left += weight.left;
            right += weight.right;
        }
        EXPECT_LE(left, 1.0000001);
        EXPECT_GT(left, 0.5);
        EXPECT_LE(right, 1.0000001);
        EXPECT_GT(right, 0.5);
    }
}

TEST(StereoMix, speakers_of_one_side_alone_cannot_become_too_loud) {
    for (const bool toLeft : {true, false}) {
        const DWORD mask = toLeft ? SPEAKER_FRONT_LEFT | SPEAKER_BACK_LEFT | SPEAKER_SIDE_LEFT
                                  : SPEAKER_FRONT_RIGHT | SPEAKER_BACK_RIGHT | SPEAKER_SIDE_RIGHT;
        double left = 0;
        double right = 0;
        for (const StereoWeights& weight : stereoWeights(speakersOf(3, mask))) {
            left += weight.left;
            right += weight.right;
        }
        EXPECT_DOUBLE_EQ(toLeft ? left : right, 1);
        EXPECT_EQ(toLeft ? right : left, 0);
    }
}

TEST(StereoMix, without_places_each_number_of_channels_has_its_usual_speakers) {
    constexpr DWORD frontLeft = SPEAKER_FRONT_LEFT;
    constexpr DWORD frontRight = SPEAKER_FRONT_RIGHT;
    EXPECT_THAT(speakersOf(1, 0), ElementsAre(SPEAKER_FRONT_CENTER));
    EXPECT_THAT(speakersOf(3, 0), ElementsAre(frontLeft, frontRight, SPEAKER_FRONT_CENTER));
    EXPECT_THAT(speakersOf(4, 0),
                ElementsAre(frontLeft, frontRight, SPEAKER_BACK_LEFT, SPEAKER_BACK_RIGHT));
    const std::vector<DWORD> nine = speakersOf(9, 0);
    EXPECT_EQ(std::vector(nine.begin(), nine.end() - 1), speakersOf(8, 0));
    EXPECT_EQ(nine.back(), 0u) << "nowhere in particular";
}

TEST(StereoMix, a_speaker_behind_the_middle_is_half_as_loud_on_each_side) {
    const std::vector<DWORD> speakers = speakersOf(7, 0);
    ASSERT_EQ(speakers[4], DWORD{SPEAKER_BACK_CENTER});
    const auto weights = stereoWeights(speakers);
    EXPECT_DOUBLE_EQ(weights[4].left, weights[0].left / 2);
    EXPECT_DOUBLE_EQ(weights[4].right, weights[0].left / 2);
}

} // namespace
} // namespace corvina::test
