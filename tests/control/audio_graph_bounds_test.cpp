// The graph drawn into containers' own coordinates: axes that point upwards, bounds that begin with
// any corner, bounds without area and beyond every device.

#include "GraphControlFixture.h"
#include "runtime/OutOfMemory.h"

#include <limits>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr SIZE size{200, 100};

class GraphBounds : public GraphControl {
protected:
    void SetUp() override {
        GraphControl::SetUp();
        takeTone();
        display();
    }
    HRESULT draw(HDC dc, const RECT& bounds) {
        const RECTL given{bounds.left, bounds.top, bounds.right, bounds.bottom};
        return as<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc, &given,
                                       nullptr, nullptr, 0);
    }
    // The four ways to name the same rectangle by two of its corners.
    static std::vector<RECT> corners(const RECT& r) {
        return {r,
                {r.left, r.bottom, r.right, r.top},
                {r.right, r.top, r.left, r.bottom},
                {r.right, r.bottom, r.left, r.top}};
    }
    static void mapUpwards(HDC dc, int mode) {
        ::SetMapMode(dc, mode);
        if (mode == MM_ANISOTROPIC) {
            ::SetWindowExtEx(dc, 3, 3, nullptr);
            ::SetViewportExtEx(dc, 1, -1, nullptr);
        }
    }
};

TEST_F(GraphBounds, the_picture_is_upright_in_every_mapping_and_from_every_corner) {
    const Picture expected = drawn(size);
    ASSERT_GT(expected.count(green), 0);
    for (const int mode : {MM_TEXT, MM_HIMETRIC, MM_LOMETRIC, MM_TWIPS, MM_ANISOTROPIC}) {
        Picture probe(size);
        mapUpwards(probe.dc(), mode);
        RECT logical{0, 0, size.cx, size.cy};
        ::DPtoLP(probe.dc(), reinterpret_cast<POINT*>(&logical), 2);
        for (const RECT& bounds : corners(logical)) {
            SCOPED_TRACE(mode);
            const Picture picture(size);
            mapUpwards(picture.dc(), mode);
            EXPECT_EQ(S_OK, draw(picture.dc(), bounds));
            ::SetMapMode(picture.dc(), MM_TEXT);
            EXPECT_LE(picture.differences(expected), size.cx + size.cy); // a rounded edge
        }
    }
}

TEST_F(GraphBounds, ole_draw_shows_it_upright) {
    const Picture expected = drawn(size);
    const Picture picture(size);
    mapUpwards(picture.dc(), MM_HIMETRIC);
    RECT logical{0, 0, size.cx, size.cy};
    ::DPtoLP(picture.dc(), reinterpret_cast<POINT*>(&logical), 2);
    EXPECT_EQ(S_OK, ::OleDraw(as<IUnknown>().get(), DVASPECT_CONTENT, picture.dc(), &logical));
    ::SetMapMode(picture.dc(), MM_TEXT);
    EXPECT_LE(picture.differences(expected), size.cx + size.cy);
}

TEST_F(GraphBounds, a_containers_metafile_whose_axis_points_upwards_holds_it_upright) {
    for (const bool fromBottom : {false, true}) {
        SCOPED_TRACE(fromBottom);
        const HDC recording = ::CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
        mapUpwards(recording, MM_HIMETRIC);
        RECT bounds{0, 0, 6000, -3000};
        if (fromBottom)
            std::swap(bounds.top, bounds.bottom);
        EXPECT_EQ(S_OK, draw(recording, bounds));
        const EnhancedMetafile file(::CloseEnhMetaFile(recording));
        const Picture picture(size);
        const RECT all{0, 0, size.cx, size.cy};
        ::PlayEnhMetaFile(picture.dc(), file.get(), &all);
        // The sound fills band 10 up to the top; its neighbours stand at the bottom alone.
        int above = 0, below = 0;
        for (int x = 0; x < size.cx; ++x) {
            above += picture.at(x, 10) == green;
            below += picture.at(x, size.cy - 2) == green;
        }
        EXPECT_GT(below, above);
    }
}

TEST_F(GraphBounds, bounds_without_area_draw_nothing) {
    const Picture picture(size), untouched(size);
    for (const RECT& bounds : {RECT{5, 5, 5, 50}, RECT{5, 5, 50, 5}, RECT{7, 7, 7, 7}})
        EXPECT_EQ(S_OK, draw(picture.dc(), bounds));
    EXPECT_EQ(0, picture.differences(untouched));
}

TEST_F(GraphBounds, bounds_beyond_every_device_cost_nothing) {
    constexpr LONG least = std::numeric_limits<LONG>::min(),
                   most = std::numeric_limits<LONG>::max();
    const Picture picture(size);
    const ULONGLONG begun = ::GetTickCount64();
    for (const auto style : {AMPLITUDE_STYLE, FREQUENCY_STYLE})
        for (const RECT& bounds :
             {RECT{least, least, most, most}, RECT{0, 0, most, most}, RECT{least, 0, 0, 10},
              RECT{0, 0, 1 << 27, 1 << 27}, RECT{-(1 << 27), -(1 << 27), 1 << 27, 1 << 27},
              RECT{0, 0, 30000, 30000}, RECT{1000000, 0, 1000100, 100},
              RECT{most, 0, least, 100}}) {
            graph->put_GraphStyle(style);
            display();
            EXPECT_EQ(S_OK, draw(picture.dc(), bounds));
        }
    EXPECT_LT(::GetTickCount64() - begun, 4000u);
}

TEST_F(GraphBounds, extents_beyond_every_device_cost_nothing) {
    const Picture picture(size);
    const ULONGLONG begun = ::GetTickCount64();
    for (const LONG side : {0L, 1L, 100000L, 10000000L, std::numeric_limits<LONG>::max()})
        for (const auto style : {AMPLITUDE_STYLE, FREQUENCY_STYLE}) {
            SIZEL extent{side, side};
            EXPECT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &extent));
            graph->put_GraphStyle(style);
            display();
            EXPECT_EQ(S_OK, draw(picture.dc(), {0, 0, size.cx, size.cy}));
            FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
            STGMEDIUM medium{};
            if (SUCCEEDED(as<IDataObject>()->GetData(&format, &medium)))
                ::ReleaseStgMedium(&medium);
        }
    EXPECT_LT(::GetTickCount64() - begun, 4000u);
}

} // namespace
