#include "graph/Surface.h"
#include "support/Colors.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(Surface, is_empty_at_first) {
    const Surface surface;
    EXPECT_TRUE(surface.empty());
    EXPECT_EQ(surface.dc(), nullptr);
    EXPECT_EQ(surface.width(), 0);
    EXPECT_EQ(surface.height(), 0);
}

TEST(Surface, can_be_drawn_on_up_to_its_last_pixel) {
    Surface surface;
    ASSERT_TRUE(surface.resize({30, 20}));
    EXPECT_EQ(surface.width(), 30);
    EXPECT_EQ(surface.height(), 20);
    surface.clear(red);
    EXPECT_EQ(::GetPixel(surface.dc(), 0, 0), red);
    EXPECT_EQ(::GetPixel(surface.dc(), 29, 19), red);
    EXPECT_EQ(::GetPixel(surface.dc(), 30, 19), CLR_INVALID);
    EXPECT_EQ(::GetPixel(surface.dc(), 29, 20), CLR_INVALID);
}

TEST(Surface, of_the_same_size_again_keeps_its_picture) {
    Surface surface;
    ASSERT_TRUE(surface.resize({30, 20}));
    surface.clear(red);
    ASSERT_TRUE(surface.resize({30, 20}));
    EXPECT_EQ(::GetPixel(surface.dc(), 29, 19), red);
}

TEST(Surface, takes_another_width_or_another_height) {
    Surface surface;
    for (const SIZE size : {SIZE{30, 20}, SIZE{31, 20}, SIZE{31, 21}, SIZE{30, 21}}) {
        ASSERT_TRUE(surface.resize(size));
        EXPECT_EQ(surface.width(), size.cx);
        EXPECT_EQ(surface.height(), size.cy);
        surface.clear(red);
        EXPECT_EQ(::GetPixel(surface.dc(), size.cx - 1, size.cy - 1), red);
        EXPECT_EQ(::GetPixel(surface.dc(), size.cx, size.cy - 1), CLR_INVALID);
    }
}

TEST(Surface, without_area_or_beyond_the_limit_is_empty_and_works_again_later) {
    constexpr LONG highestSide = 4096;
    static_assert(LONGLONG{highestSide} * highestSide == Surface::highestPixelCount);
    Surface surface;
    for (const SIZE size : {SIZE{0, 20}, SIZE{30, 0}, SIZE{-1, 20}, SIZE{30, -1}, SIZE{0, 0},
                            SIZE{highestSide + 1, highestSide}, SIZE{-5000, -5000}}) {
        ASSERT_TRUE(surface.resize({30, 20}));
        EXPECT_FALSE(surface.resize(size)) << size.cx << ' ' << size.cy;
        EXPECT_TRUE(surface.empty());
        EXPECT_EQ(surface.dc(), nullptr);
        EXPECT_EQ(surface.width(), 0);
        EXPECT_EQ(surface.height(), 0);
        surface.clear(red);
    }
    EXPECT_TRUE(surface.resize({highestSide, highestSide}));
}

} // namespace
} // namespace corvina::test
