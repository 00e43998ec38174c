#include "graph/AudioGraph.h"
#include "graph/Painting.h"
#include "support/FreeGdiObjects.h"
#include "support/SampleBlocks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace corvina {
namespace {

using test::sineBlock;

constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF green = RGB(0, 255, 0);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 255);
constexpr COLORREF white = RGB(255, 255, 255);
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

// Plays records as they were recorded, without the scaling of a whole metafile.
int CALLBACK playRecord(HDC, HANDLETABLE* table, const ENHMETARECORD* record, int handles,
                        LPARAM target) {
    return ::PlayEnhMetaFileRecord(reinterpret_cast<HDC>(target), table, record,
                                   static_cast<UINT>(handles));
}

// A graph painted onto a canvas of its size.
class Graph : public testing::Test {
protected:
    Graph() { resize({400, 200}); }

    void resize(SIZE size) {
        size_ = size;
        ASSERT_TRUE(canvas_.resize(size));
        canvas_.BackColor(white);
        canvas_.Cls();
    }
    void take(std::vector<std::int16_t> samples) {
        samples.resize(512);
        graph_.takeSamples(samples.data());
    }
    void display() {
        graph_.display(settings_, size_, [] {});
        paint();
    }
    void paint() { graph_.paint(canvas_.dc(), {0, 0, size_.cx, size_.cy}, size_); }

    [[nodiscard]] COLORREF pixel(int x, int y) const { return ::GetPixel(canvas_.dc(), x, y); }
    [[nodiscard]] int count(COLORREF color) const {
        int found = 0;
        for (int y = 0; y < size_.cy; ++y)
            for (int x = 0; x < size_.cx; ++x)
                found += pixel(x, y) == color;
        return found;
    }
    // Pixels of that colour in a column, from the bottom upwards without a gap.
    [[nodiscard]] int barHeight(int x, COLORREF color) const {
        int height = 0;
        while (height < size_.cy && pixel(x, size_.cy - 1 - height) == color)
            ++height;
        return height;
    }

    AudioGraph graph_;
    GraphSettings settings_;
    Surface canvas_;
    SIZE size_{};
};

TEST_F(Graph, shows_its_background_before_anything_is_displayed) {
    paint();
    EXPECT_EQ(count(black), 400 * 200);
}

TEST_F(Graph, silence_shows_no_bar) {
    display();
    EXPECT_EQ(count(black), 400 * 200);
}

TEST_F(Graph, a_band_at_full_level_is_a_bar_from_the_bottom_to_the_top) {
    take(sineBlock(53, 32767)); // band 10
    display();
    for (int x = 40; x < 43; ++x)
        EXPECT_EQ(barHeight(x, green), 200) << x;
}

TEST_F(Graph, bars_are_as_wide_and_as_far_apart_as_the_settings_say) {
    take(sineBlock(53, 32767));
    settings_.bandsWidth = 5;
    settings_.bandsSpace = 2;
    display();
    EXPECT_NE(pixel(69, 199), green);
    for (int x = 70; x < 75; ++x)
        EXPECT_EQ(barHeight(x, green), 200) << x;
    EXPECT_NE(pixel(75, 199), green);
    EXPECT_NE(pixel(76, 199), green);
}

TEST_F(Graph, every_bar_is_as_high_as_its_level) {
    take(sineBlock(53, 900));
    display();
    BandLevels expected;
    expected.update(test::bufferOf(sineBlock(53, 900)), 50);
    int lit = 0;
    for (std::size_t band = 0; band < 50; ++band) {
        const double level = expected.levels()[band];
        const int height = barHeight(static_cast<int>(4 * band), green);
        EXPECT_NEAR(height, level * 200, 0.5 + 1e-9) << band;
        lit += height > 0 && height < 200;
    }
    EXPECT_GT(lit, 1);
}

TEST_F(Graph, a_bar_falls_by_seven_hundredths_of_the_height_at_each_display) {
    take(sineBlock(53, 32767));
    display();
    take({});
    for (int picture = 1; picture <= 15; ++picture) {
        display();
        EXPECT_NEAR(barHeight(40, green), std::max(200 - 14 * picture, 0), 1) << picture;
    }
    EXPECT_EQ(barHeight(40, green), 0);
}

TEST_F(Graph, bars_fall_only_when_they_are_displayed) {
    take(sineBlock(53, 32767));
    display();
    take({});
    paint();
    paint();
    EXPECT_EQ(barHeight(40, green), 200);
}

TEST_F(Graph, colours_and_style_change_at_the_next_display) {
    take(sineBlock(53, 32767));
    display();
    settings_.backgroundColor = blue;
    settings_.freqColor = red;
    paint();
    EXPECT_EQ(pixel(40, 100), green);
    EXPECT_EQ(pixel(399, 0), black);
    display();
    EXPECT_EQ(pixel(40, 100), red);
    EXPECT_EQ(pixel(399, 0), blue);
}

TEST_F(Graph, the_waveform_has_its_own_colour_on_the_background) {
    settings_ = {.style = GraphStyle::amplitude, .backgroundColor = blue, .amplitudeColor = red};
    display();
    EXPECT_EQ(count(red), 400);
    EXPECT_EQ(count(blue), 400 * 199);
    for (int x = 0; x < 400; ++x)
        EXPECT_EQ(pixel(x, 100), red) << x;
}

TEST_F(Graph, the_waveform_passes_through_its_corners) {
    settings_.style = GraphStyle::amplitude;
    std::vector<std::int16_t> samples(511, -16384);
    std::fill(samples.begin() + 100, samples.end(), std::int16_t{16384});
    take(samples);
    display();
    EXPECT_EQ(pixel(20, 51), green);
    EXPECT_EQ(pixel(98, 51), green);
    EXPECT_EQ(pixel(100, 149), green);
    EXPECT_EQ(pixel(399, 149), green);
    EXPECT_EQ(pixel(20, 149), black);
    EXPECT_EQ(pixel(200, 51), black);
}

TEST_F(Graph, the_right_half_of_the_waveform_falls_beyond_the_edge) {
    settings_.style = GraphStyle::amplitude;
    std::vector<std::int16_t> samples(511, 0);
    samples[398] = samples[399] = 32767;                                   // column 199, at x = 398
    std::fill(samples.begin() + 410, samples.end(), std::int16_t{-32767}); // from x = 410 on
    take(samples);
    display();
    EXPECT_EQ(pixel(398, 198), green);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 400; ++x)
            ASSERT_EQ(pixel(x, y), black) << x << ", " << y;
}

TEST_F(Graph, the_level_follows_the_spectrum_in_both_styles) {
    for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency}) {
        AudioGraph graph;
        auto samples = sineBlock(20, 32767);
        samples.resize(512);
        graph.takeSamples(samples.data());
        EXPECT_EQ(graph.level(), 0);
        graph.display({.style = style}, size_, [] {});
        BandLevels bands;
        bands.update(test::bufferOf(sineBlock(20, 32767)), 50);
        EXPECT_EQ(graph.level(), bands.loudness());
        EXPECT_GT(graph.level(), 0);
    }
}

TEST_F(Graph, bands_go_on_falling_while_the_waveform_is_shown) {
    take(sineBlock(53, 32767));
    display();
    take({});
    settings_.style = GraphStyle::amplitude;
    for (int picture = 0; picture < 4; ++picture)
        display();
    settings_.style = GraphStyle::frequency;
    display();
    EXPECT_NEAR(barHeight(40, green), 200 - 5 * 14, 1);
}

TEST_F(Graph, clearing_leaves_only_the_background) {
    for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency}) {
        settings_.style = style;
        take(sineBlock(53, 32767));
        display();
        graph_.clear(settings_);
        paint();
        EXPECT_EQ(count(black), 400 * 200);
    }
}

TEST_F(Graph, clearing_keeps_samples_and_levels) {
    take(sineBlock(53, 32767));
    display();
    graph_.clear(settings_);
    display();
    EXPECT_EQ(barHeight(40, green), 200);
}

TEST_F(Graph, a_border_is_a_line_around_the_picture) {
    settings_.border = true;
    take(sineBlock(53, 32767));
    display();
    const COLORREF line = ::GetSysColor(COLOR_3DSHADOW);
    for (int x = 0; x < 400; ++x) {
        EXPECT_EQ(pixel(x, 0), line);
        EXPECT_EQ(pixel(x, 199), line);
    }
    for (int y = 0; y < 200; ++y) {
        EXPECT_EQ(pixel(0, y), line);
        EXPECT_EQ(pixel(399, y), line);
    }
    EXPECT_EQ(count(line), 2 * 400 + 2 * 198);
    EXPECT_EQ(pixel(41, 1), green);
    EXPECT_EQ(pixel(41, 198), green);
    EXPECT_NE(pixel(40, 100), green);
}

TEST_F(Graph, is_drawn_anew_at_another_size) {
    take(sineBlock(53, 32767));
    display();
    resize({500, 300});
    paint();
    EXPECT_EQ(barHeight(40, green), 300);
    EXPECT_EQ(count(white), 0);
}

TEST_F(Graph, the_waveform_is_drawn_anew_at_another_size) {
    settings_.style = GraphStyle::amplitude;
    take(std::vector<std::int16_t>(511, 16384));
    display();
    resize({100, 50});
    paint();
    EXPECT_EQ(pixel(50, 37), green); // 23 * 0.5 + 25 = 36.5004
}

TEST_F(Graph, a_larger_frame_shows_the_whole_picture_enlarged) {
    take(sineBlock(53, 32767));
    display();
    Surface paper;
    ASSERT_TRUE(paper.resize({820, 620}));
    graph_.paint(paper.dc(), {10, 20, 810, 620}, size_);
    EXPECT_EQ(::GetPixel(paper.dc(), 10 + 80, 20), green);
    EXPECT_EQ(::GetPixel(paper.dc(), 10 + 85, 619), green);
    EXPECT_NE(::GetPixel(paper.dc(), 10 + 86, 300), green);
}

TEST_F(Graph, a_metafile_played_back_shows_the_same_picture) {
    for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency})
        for (const bool border : {false, true}) {
            settings_.style = style;
            settings_.border = border;
            take(sineBlock(53, 20000));
            display();
            const HDC recording = ::CreateEnhMetaFileW(canvas_.dc(), nullptr, nullptr, nullptr);
            graph_.paint(recording, {0, 0, 400, 200}, size_);
            const HENHMETAFILE metafile = ::CloseEnhMetaFile(recording);
            ENHMETAHEADER header{};
            ::GetEnhMetaFileHeader(metafile, sizeof header, &header);
            // A picture of lines and areas, not of the surface's pixels.
            EXPECT_LT(header.nBytes, 60000U);
            Surface played;
            ASSERT_TRUE(played.resize(size_));
            played.BackColor(white);
            played.Cls();
            ::EnumEnhMetaFile(nullptr, metafile, &playRecord, played.dc(), nullptr);
            ::DeleteEnhMetaFile(metafile);
            int different = 0;
            for (int y = 0; y < 200; ++y)
                for (int x = 0; x < 400; ++x)
                    different += ::GetPixel(played.dc(), x, y) != pixel(x, y);
            EXPECT_EQ(different, 0);
        }
}

TEST_F(Graph, nothing_is_drawn_outside_the_frame) {
    settings_.style = GraphStyle::amplitude;
    take(std::vector<std::int16_t>(511, 16384));
    display();
    Surface paper;
    ASSERT_TRUE(paper.resize({600, 400}));
    paper.BackColor(white);
    paper.Cls();
    graph_.paint(paper.dc(), {100, 100, 300, 200}, size_);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 600; ++x)
            if (x < 100 || x >= 300 || y < 100 || y >= 200) {
                ASSERT_EQ(::GetPixel(paper.dc(), x, y), white) << x << ", " << y;
            }
}

TEST_F(Graph, any_number_and_size_of_bands_is_drawn_or_left_out) {
    take(sineBlock(53, 32767));
    for (const std::int32_t bands : {0, -1, 1, 1024, 1025, highest, lowest})
        for (const std::int32_t width : {0, -1, 3, 1025, highest, lowest})
            for (const std::int32_t space : {0, -1, -3, 1025, highest, lowest}) {
                settings_.bands = bands;
                settings_.bandsWidth = width;
                settings_.bandsSpace = space;
                display();
                if (bands <= 0 || width <= 0) {
                    EXPECT_EQ(count(black), 400 * 200) << bands << ' ' << width << ' ' << space;
                }
            }
}

TEST_F(Graph, any_size_is_displayed) {
    take(sineBlock(53, 32767));
    for (const SIZE size : {SIZE{0, 0}, SIZE{1, 1}, SIZE{2, 2}, SIZE{0, 200}, SIZE{400, 0},
                            SIZE{32767, 1}, SIZE{1, 32767}, SIZE{32767, 32767}, SIZE{-1, -1},
                            SIZE{highest, highest}, SIZE{lowest, lowest}})
        for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency})
            for (const bool border : {false, true}) {
                settings_.style = style;
                settings_.border = border;
                graph_.display(settings_, size, [] {});
                graph_.paint(canvas_.dc(), {0, 0, 400, 200}, size);
            }
    size_ = {400, 200};
    settings_ = {};
    display();
    EXPECT_EQ(barHeight(40, green), 200);
}

TEST_F(Graph, a_picture_too_large_for_memory_is_still_painted) {
    take(sineBlock(53, 32767));
    graph_.display(settings_, {32767, 32767}, [] {});
    graph_.paint(canvas_.dc(), {0, 0, 32767, 32767}, {32767, 32767});
    EXPECT_EQ(pixel(40, 100), green);
    EXPECT_EQ(pixel(43, 100), black);
}

TEST_F(Graph, a_display_within_a_display_does_nothing) {
    take(sineBlock(53, 32767));
    settings_.style = GraphStyle::amplitude;
    int columns = 0;
    graph_.display(settings_, size_, [&] {
        ++columns;
        graph_.display(settings_, size_, [&] { ADD_FAILURE(); });
    });
    EXPECT_EQ(columns, 401);
    graph_.display(settings_, size_, [&] { ++columns; });
    EXPECT_EQ(columns, 802);
}

TEST_F(Graph, everything_else_may_happen_within_a_display) {
    settings_.style = GraphStyle::amplitude;
    take(sineBlock(53, 32767));
    int columns = 0;
    graph_.display(settings_, size_, [&] {
        switch (columns++ % 4) {
        case 0:
            take(std::vector<std::int16_t>(511, 16384));
            break;
        case 1:
            graph_.clear(settings_);
            break;
        case 2:
            graph_.paint(canvas_.dc(), {0, 0, 77, 33}, {77, 33});
            break;
        default:
            settings_.backgroundColor = blue;
            settings_.border = true;
            break;
        }
    });
    settings_ = {};
    paint();
    EXPECT_EQ(pixel(200, 149), green);
}

TEST_F(Graph, a_picture_painted_within_a_display_is_the_one_before) {
    take(sineBlock(53, 32767));
    display();
    settings_.style = GraphStyle::amplitude;
    graph_.display(settings_, size_, [&] {
        static int columns;
        if (++columns == 200) {
            paint();
            EXPECT_EQ(barHeight(40, green), 200);
        }
    });
}

TEST_F(Graph, a_display_that_fails_can_be_repeated) {
    settings_.style = GraphStyle::amplitude;
    EXPECT_THROW(graph_.display(settings_, size_, [] { throw std::bad_alloc(); }), std::bad_alloc);
    display();
    EXPECT_EQ(count(green), 400);
}

TEST_F(Graph, a_hundred_pictures_leave_no_gdi_object_behind) {
    const auto draw = [&] {
        for (int picture = 0; picture < 100; ++picture) {
            settings_.style = picture % 2 ? GraphStyle::amplitude : GraphStyle::frequency;
            settings_.border = picture % 3 == 0;
            graph_.display(settings_, {100 + picture % 7, 100}, [] {});
            graph_.paint(canvas_.dc(), {0, 0, 50, 50}, {50, 50});
        }
    };
    draw();
    const std::size_t before = test::freeGdiObjects();
    draw();
    EXPECT_EQ(test::freeGdiObjects(), before);
    EXPECT_GT(before, 1000U);
}

TEST(BarRectangle, stands_on_the_lower_edge_with_its_height_rounded) {
    const RECT bar = barRectangle(2, 0.5, {.bandsSpace = 1, .bandsWidth = 3}, 101);
    EXPECT_EQ(bar.left, 8);
    EXPECT_EQ(bar.right, 11);
    EXPECT_EQ(bar.top, 50); // 50.5, half to even
    EXPECT_EQ(bar.bottom, 101);
}

TEST(BarRectangle, full_level_reaches_the_top_and_level_zero_has_no_height) {
    EXPECT_EQ(barRectangle(0, 1.0, {}, 200).top, 0);
    EXPECT_EQ(barRectangle(0, 0.0, {}, 200).top, 200);
}

TEST(BarRectangle, is_empty_where_its_place_overflows) {
    const RECT bar = barRectangle(1000, 1.0, {.bandsSpace = highest, .bandsWidth = highest}, 200);
    EXPECT_TRUE(::IsRectEmpty(&bar));
}

} // namespace
} // namespace corvina
