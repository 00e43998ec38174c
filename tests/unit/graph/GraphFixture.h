#pragma once

// A graph painted onto a canvas, which can be looked at point by point.

#include "graph/AudioGraph.h"
#include "support/Colors.h"
#include "support/SampleBlocks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace corvina::test {

// A graph painted onto a canvas of its size.
class Graph : public testing::Test {
protected:
    Graph() { resize({400, 200}); }

    void resize(SIZE size) {
        size_ = size;
        ASSERT_TRUE(canvas_.resize(size));
        canvas_.clear(white);
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
        // The picture's own memory: to ask for each pixel takes a second for a large picture.
        ::GdiFlush();
        DIBSECTION section{};
        ::GetObjectW(::GetCurrentObject(canvas_.dc(), OBJ_BITMAP), sizeof section, &section);
        const auto* const first = static_cast<const RGBQUAD*>(section.dsBm.bmBits);
        return static_cast<int>(
            std::count_if(first, first + size_.cx * size_.cy, [color](const RGBQUAD& pixel) {
                return RGB(pixel.rgbRed, pixel.rgbGreen, pixel.rgbBlue) == color;
            }));
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

} // namespace corvina::test
