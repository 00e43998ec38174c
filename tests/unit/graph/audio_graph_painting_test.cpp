// The graph painted at other sizes, into other frames and into a metafile, and the place of a bar.

#include "GraphFixture.h"
#include "graph/Painting.h"
#include "support/ExhaustedMemory.h"
#include "support/FreeGdiObjects.h"
#include "support/Limits.h"

namespace corvina::test {
namespace {

// Plays records as they were recorded, without the scaling of a whole metafile.
int CALLBACK playRecord(HDC, HANDLETABLE* table, const ENHMETARECORD* record, int handles,
                        LPARAM target) {
    return ::PlayEnhMetaFileRecord(reinterpret_cast<HDC>(target), table, record,
                                   static_cast<UINT>(handles));
}

TEST_F(Graph, is_drawn_anew_at_another_size) {
    take(sineBlock(53, 32767));
    display();
    resize({500, 300});
    paint();
    EXPECT_EQ(barHeight(40, green), 300);
    EXPECT_EQ(count(white), 0);
}

TEST_F(Graph, is_drawn_anew_if_only_its_width_or_its_height_is_another) {
    settings_.backgroundColor = blue;
    take(sineBlock(53, 32767));
    display();
    for (const SIZE size : {SIZE{500, 200}, SIZE{500, 300}}) {
        resize(size);
        paint();
        EXPECT_EQ(barHeight(40, green), size.cy);
        EXPECT_EQ(count(green) + count(blue), size.cx * size.cy);
        EXPECT_EQ(pixel(499, 0), blue);
    }
}

TEST_F(Graph, has_only_the_new_background_at_another_size_once_it_was_cleared) {
    take(sineBlock(53, 32767));
    for (const auto style : {GraphStyle::amplitude, GraphStyle::frequency}) {
        settings_.style = style;
        settings_.backgroundColor = black;
        display();
        settings_.backgroundColor = blue;
        graph_.clear(settings_);
        resize({300, 150});
        paint();
        EXPECT_EQ(count(blue), 300 * 150);
        resize({400, 200});
    }
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
            played.clear(white);
            ::EnumEnhMetaFile(nullptr, metafile, &playRecord, played.dc(), nullptr);
            ::DeleteEnhMetaFile(metafile);
            int different = 0;
            for (int y = 0; y < 200; ++y)
                for (int x = 0; x < 400; ++x)
                    different += ::GetPixel(played.dc(), x, y) != pixel(x, y);
            EXPECT_EQ(different, 0);
        }
}

TEST_F(Graph, a_plain_metafile_holds_lines_and_areas_and_no_pixels) {
    take(sineBlock(53, 20000));
    display();
    const HDC recording = ::CreateMetaFileW(nullptr);
    graph_.paint(recording, {0, 0, 400, 200}, size_);
    const HMETAFILE metafile = ::CloseMetaFile(recording);
    EXPECT_LT(::GetMetaFileBitsEx(metafile, 0, nullptr), 30000U);
    ::DeleteMetaFile(metafile);
}

TEST_F(Graph, a_painting_that_finds_no_memory_leaves_the_context_as_it_was) {
    settings_.style = GraphStyle::amplitude;
    display();
    // A metafile's picture is drawn, not copied.
    const HDC recording = ::CreateEnhMetaFileW(canvas_.dc(), nullptr, nullptr, nullptr);
    EXPECT_THROW(
        {
            const ExhaustedMemory exhausted;
            graph_.paint(recording, {0, 0, 400, 200}, size_);
        },
        std::bad_alloc);
    EXPECT_EQ(::SaveDC(recording), 1);
    ::DeleteEnhMetaFile(::CloseEnhMetaFile(recording));
}

TEST_F(Graph, a_plain_metafile_played_back_leaves_the_states_that_were_saved_before) {
    display();
    const HDC recording = ::CreateMetaFileW(nullptr);
    graph_.paint(recording, {0, 0, 400, 200}, size_);
    const HMETAFILE metafile = ::CloseMetaFile(recording);
    ASSERT_EQ(::SaveDC(canvas_.dc()), 1);
    ASSERT_EQ(::SaveDC(canvas_.dc()), 2);
    EXPECT_TRUE(::PlayMetaFile(canvas_.dc(), metafile));
    EXPECT_EQ(::SaveDC(canvas_.dc()), 3);
    ::RestoreDC(canvas_.dc(), 1);
    ::DeleteMetaFile(metafile);
}

TEST_F(Graph, nothing_is_drawn_outside_the_frame) {
    settings_.style = GraphStyle::amplitude;
    take(std::vector<std::int16_t>(511, 16384));
    display();
    Surface paper;
    ASSERT_TRUE(paper.resize({600, 400}));
    paper.clear(white);
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

TEST_F(Graph, without_bands_there_is_no_bar_whatever_was_shown_before) {
    take(sineBlock(3, 32767)); // in band 0
    display();
    ASSERT_GT(barHeight(0, green), 0);
    for (const std::int32_t bands : {0, -1, lowest}) {
        settings_.bands = bands;
        display();
        EXPECT_EQ(count(black), 400 * 200) << bands;
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
    const std::size_t before = freeGdiObjects();
    draw();
    EXPECT_EQ(freeGdiObjects(), before);
    EXPECT_GT(before, 1000U);
}

TEST(PictureFrame, spreads_a_picture_of_a_single_pixel_over_its_bounds) {
    const Frame frame({10, 20, 110, 70}, {1, 1});
    EXPECT_EQ(frame.at(0, 0).x, 10);
    EXPECT_EQ(frame.at(0, 0).y, 20);
    EXPECT_EQ(frame.at(1, 1).x, 110);
    EXPECT_EQ(frame.at(1, 1).y, 70);
    EXPECT_EQ(frame.lineWidth(), 100);
}

// Plain metafiles hold the lower 16 bits of what lies outside the picture.
TEST(Bars, reach_no_further_than_their_picture_in_a_metafile_either) {
    const GraphSettings settings{.bandsSpace = -131072, .bandsWidth = 65636, .freqColor = green};
    const std::vector<std::vector<double>> levels = {{1.0}, {0.0, 1.0}};
    for (std::size_t bar = 0; bar < levels.size(); ++bar) {
        const HDC recording = ::CreateMetaFileW(nullptr);
        paintBars(recording, Frame({400, 50}), levels[bar], settings);
        const HMETAFILE metafile = ::CloseMetaFile(recording);
        Surface played;
        ASSERT_TRUE(played.resize({400, 50}));
        played.clear(white);
        ::PlayMetaFile(played.dc(), metafile);
        ::DeleteMetaFile(metafile);
        // The first from 0 to 65636, the second from -65436 to 200.
        const int right = bar == 0 ? 400 : 200;
        for (int x = 0; x < 400; ++x)
            EXPECT_EQ(::GetPixel(played.dc(), x, 25), x < right ? green : white) << bar << ' ' << x;
    }
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
} // namespace corvina::test
