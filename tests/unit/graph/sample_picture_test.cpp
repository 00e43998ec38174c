#include "GraphFixture.h"
#include "graph/SamplePicture.h"

namespace corvina::test {
namespace {

class SamplePicture : public Graph {
protected:
    SamplePicture() { paintSample(); }

    void paintSample() {
        canvas_.clear(white);
        paintSamplePicture(canvas_.dc(), {0, 0, size_.cx, size_.cy}, size_, settings_);
    }
    // The sum of the heights of some of the bars, in pixels.
    [[nodiscard]] int heights(int first, int end) const {
        int sum = 0;
        for (int band = first; band < end; ++band)
            sum += barHeight(4 * band + 1, green);
        return sum;
    }
    // Between the highest and the lowest point of the line in that column.
    [[nodiscard]] int swing(int first, int end) const {
        int top = size_.cy;
        int bottom = 0;
        for (int x = first; x < end; ++x)
            for (int y = 0; y < size_.cy; ++y)
                if (pixel(x, y) == green) {
                    top = std::min(top, y);
                    bottom = std::max(bottom, y);
                }
        return bottom - top;
    }
};

TEST_F(SamplePicture, has_bars_from_the_lowest_to_the_highest_band) {
    for (int tenth = 0; tenth < 5; ++tenth)
        EXPECT_GT(heights(10 * tenth, 10 * tenth + 10), 20) << tenth;
}

TEST_F(SamplePicture, has_lower_bars_at_higher_tones) {
    for (int tenth = 0; tenth < 4; ++tenth)
        EXPECT_GT(heights(10 * tenth, 10 * tenth + 10), heights(10 * tenth + 10, 10 * tenth + 20))
            << tenth;
}

TEST_F(SamplePicture, swells_and_fades_as_a_waveform) {
    settings_.style = GraphStyle::amplitude;
    paintSample();
    EXPECT_LT(swing(0, 20), 40);
    EXPECT_GT(swing(100, 300), 100);
    EXPECT_LT(swing(100, 300), 200);
}

TEST_F(SamplePicture, covers_the_bounds_in_the_background_colour) {
    EXPECT_EQ(count(white), 0);
    EXPECT_GT(count(black), 0);
}

} // namespace
} // namespace corvina::test
