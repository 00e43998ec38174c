// The player's picture on a form at design time.

#include "player/PlayerGlyph.h"

#include "control/Picture.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

constexpr COLORREF background = RGB(200, 210, 220);
constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF gray = RGB(128, 128, 128);

class Glyph : public ::testing::Test {
protected:
    // Not at the corner of the picture, and neither square nor small.
    static constexpr RECT bounds{10, 20, 90, 80};

    void draw(bool designing) { drawPlayerGlyph(picture.dc(), bounds, background, designing); }
    // The smallest rectangle within the frame around all that is not gray.
    [[nodiscard]] RECT drawn() const {
        RECT around{bounds.right, bounds.bottom, bounds.left, bounds.top};
        for (LONG y = bounds.top + 1; y < bounds.bottom - 1; ++y)
            for (LONG x = bounds.left + 1; x < bounds.right - 1; ++x)
                if (picture.at(x, y) != gray)
                    around = {std::min(around.left, x), std::min(around.top, y),
                              std::max(around.right, x), std::max(around.bottom, y)};
        return around;
    }

    [[nodiscard]] int inside(const RECT& area, COLORREF color) const {
        int found = 0;
        for (LONG y = area.top; y < area.bottom; ++y)
            for (LONG x = area.left; x < area.right; ++x)
                found += picture.at(x, y) == color;
        return found;
    }

    Picture picture{{100, 100}};
};

TEST_F(Glyph, is_nothing_but_the_background_at_run_time) {
    draw(false);
    EXPECT_EQ(picture.count(background), 80 * 60);
    EXPECT_EQ(picture.at(9, 20), white);
    EXPECT_EQ(picture.at(10, 20), background);
    EXPECT_EQ(picture.at(89, 79), background);
}

TEST_F(Glyph, has_a_frame_at_its_bounds_when_a_form_is_designed) {
    draw(true);
    for (const POINT& corner : {POINT{10, 20}, POINT{89, 20}, POINT{10, 79}, POINT{89, 79}})
        EXPECT_EQ(picture.at(corner.x, corner.y), black);
    EXPECT_EQ(picture.at(11, 21), gray);
    EXPECT_EQ(picture.at(9, 20), white);
    EXPECT_EQ(picture.count(background), 0);
}

TEST_F(Glyph, is_in_the_middle_of_its_bounds) {
    draw(true);
    const RECT around = drawn();
    EXPECT_EQ(around.left + around.right, bounds.left + bounds.right);
    EXPECT_EQ(around.top + around.bottom, bounds.top + bounds.bottom);
}

TEST_F(Glyph, is_a_loudspeaker_whose_lower_half_mirrors_the_upper_one) {
    draw(true);
    const RECT around = drawn();
    const LONG middle = (bounds.top + bounds.bottom) / 2;
    // The loudspeaker itself is left of its waves.
    const LONG right = (bounds.left + bounds.right) / 2 + 1;
    for (LONG x = around.left; x <= right; ++x)
        for (LONG away = 1; away <= middle - around.top; ++away)
            ASSERT_EQ(picture.at(x, middle - away), picture.at(x, middle + away))
                << x << ", " << away;
    EXPECT_EQ(picture.at(right - 3, middle), white) << "it is filled";
}

TEST_F(Glyph, fits_into_bounds_that_are_smaller_than_itself) {
    const RECT small{40, 40, 52, 50};
    drawPlayerGlyph(picture.dc(), small, background, true);
    EXPECT_EQ(picture.count(white) - inside(small, white), 100 * 100 - 12 * 10);
}

TEST_F(Glyph, leaves_the_pen_and_the_brush_of_the_host_selected) {
    // Not those that a picture begins with, which the glyph may select as well.
    const HGDIOBJ pen = ::GetStockObject(WHITE_PEN);
    const HGDIOBJ brush = ::GetStockObject(LTGRAY_BRUSH);
    ::SelectObject(picture.dc(), pen);
    ::SelectObject(picture.dc(), brush);
    draw(true);
    EXPECT_EQ(::GetCurrentObject(picture.dc(), OBJ_PEN), pen);
    EXPECT_EQ(::GetCurrentObject(picture.dc(), OBJ_BRUSH), brush);
}

} // namespace
} // namespace corvina::test
