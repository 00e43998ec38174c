// Where a control draws: device contexts with coordinates of every kind, and metafiles.

#include "HostSite.h"
#include "Picture.h"
#include "ViewSink.h"
#include "control/UprightDrawing.h"
#include "support/FreeGdiObjects.h"

using namespace corvina;
using namespace corvina::test;

namespace {

// The bounds of a drawing in the order left, top, right, bottom; none if nothing is drawn.
std::vector<LONG> boundsOf(HDC dc, const RECT& given) {
    const UprightDrawing drawing(dc, given);
    if (!drawing.bounds())
        return {};
    const RECT& bounds = *drawing.bounds();
    return {bounds.left, bounds.top, bounds.right, bounds.bottom};
}

using Numbers = std::vector<LONG>;

class Drawing : public ::testing::Test {
protected:
    HDC dc() const { return picture.dc(); }
    void scale(int x, int y) {
        ::SetMapMode(dc(), MM_ANISOTROPIC);
        ::SetWindowExtEx(dc(), 1, 1, nullptr);
        ::SetViewportExtEx(dc(), x, y, nullptr);
    }
    void transform(FLOAT m11, FLOAT m12, FLOAT m21, FLOAT m22) {
        ::SetGraphicsMode(dc(), GM_ADVANCED);
        const XFORM given{m11, m12, m21, m22, 0, 0};
        ASSERT_TRUE(::SetWorldTransform(dc(), &given));
    }

    const Picture picture{{200, 100}};
};

TEST_F(Drawing, is_in_pixels_whatever_the_units_of_the_context_are) {
    scale(2, 3);
    EXPECT_EQ((Numbers{20, 30, 80, 90}), boundsOf(dc(), {10, 10, 40, 30}));
}

TEST_F(Drawing, has_its_first_corner_above_and_to_the_left) {
    EXPECT_EQ((Numbers{10, 20, 40, 50}), boundsOf(dc(), {40, 50, 10, 20}));
    scale(-1, -1);
    ::SetViewportOrgEx(dc(), 100, 90, nullptr);
    EXPECT_EQ((Numbers{60, 40, 90, 80}), boundsOf(dc(), {10, 10, 40, 50}));
}

TEST_F(Drawing, is_counted_from_the_corner_of_the_device) {
    ::SetWindowOrgEx(dc(), 5, 6, nullptr);
    ::SetViewportOrgEx(dc(), 50, 40, nullptr);
    const RECT given{5, 6, 15, 16};
    {
        const UprightDrawing drawing(dc(), given);
        ASSERT_TRUE(drawing.bounds());
        EXPECT_EQ(50, drawing.bounds()->left);
        EXPECT_EQ(40, drawing.bounds()->top);
        POINT corner{0, 0};
        ::LPtoDP(dc(), &corner, 1);
        EXPECT_EQ(0, corner.x);
        EXPECT_EQ(0, corner.y);
    }
    POINT corner{5, 6};
    ::LPtoDP(dc(), &corner, 1);
    EXPECT_EQ(50, corner.x);
    EXPECT_EQ(40, corner.y);
}

TEST_F(Drawing, in_a_context_that_enlarges_is_in_pixels_too) {
    transform(2, 0, 0, 2);
    const UprightDrawing drawing(dc(), {10, 10, 20, 20});
    ASSERT_TRUE(drawing.bounds());
    EXPECT_EQ(20, drawing.bounds()->left);
    EXPECT_EQ(40, drawing.bounds()->bottom);
    POINT corner{20, 20};
    ::LPtoDP(dc(), &corner, 1);
    EXPECT_EQ(20, corner.x);
}

TEST_F(Drawing, in_a_context_that_rotates_or_shears_keeps_its_own_units) {
    transform(0.8F, 0.6F, -0.6F, 0.8F);
    EXPECT_EQ((Numbers{60, 10, 90, 30}), boundsOf(dc(), {60, 10, 90, 30}));
    transform(2, 0, 0.5F, 2);
    EXPECT_EQ((Numbers{10, 10, 40, 30}), boundsOf(dc(), {10, 10, 40, 30}));
    transform(2, 0.5F, 0, 2);
    EXPECT_EQ((Numbers{10, 10, 40, 30}), boundsOf(dc(), {10, 10, 40, 30}));
}

TEST_F(Drawing, in_a_context_from_right_to_left_keeps_its_own_units) {
    ::SetLayout(dc(), LAYOUT_RTL);
    scale(2, 2);
    const Numbers bounds = boundsOf(dc(), {10, 10, 40, 30});
    ASSERT_EQ(4u, bounds.size());
    EXPECT_EQ(10, std::min(bounds[0], bounds[2]));
    EXPECT_EQ(40, std::max(bounds[0], bounds[2]));
    EXPECT_EQ(10, bounds[1]);
}

TEST_F(Drawing, without_width_or_height_draws_nothing) {
    EXPECT_EQ(Numbers{}, boundsOf(dc(), {10, 10, 10, 30}));
    EXPECT_EQ(Numbers{}, boundsOf(dc(), {10, 10, 30, 10}));
    EXPECT_EQ(Numbers{}, boundsOf(dc(), {500, 10, 600, 30}));
}

TEST_F(Drawing, as_far_away_as_coordinates_may_be_is_still_drawn) {
    constexpr LONG furthest = 1 << 28;
    EXPECT_EQ((Numbers{-furthest, -furthest, furthest, furthest}),
              boundsOf(dc(), {-furthest, -furthest, furthest, furthest}));
    EXPECT_EQ(Numbers{}, boundsOf(dc(), {-furthest - 1, 0, 10, 10}));
    EXPECT_EQ(Numbers{}, boundsOf(dc(), {0, 0, 10, furthest + 1}));
}

TEST_F(Drawing, on_a_metafile_keeps_its_own_units) {
    const HDC plain = ::CreateMetaFileW(nullptr);
    ::SetMapMode(plain, MM_ANISOTROPIC);
    ::SetWindowExtEx(plain, 50, 50, nullptr);
    EXPECT_EQ((Numbers{10, 20, 30, 40}), boundsOf(plain, {10, 20, 30, 40}));
    ::DeleteMetaFile(::CloseMetaFile(plain));
    const HDC enhanced = ::CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    ::SetMapMode(enhanced, MM_ANISOTROPIC);
    ::SetWindowExtEx(enhanced, 1, 1, nullptr);
    ::SetViewportExtEx(enhanced, -2, -2, nullptr);
    EXPECT_EQ((Numbers{30, 40, 10, 20}), boundsOf(enhanced, {10, 20, 30, 40}));
    ::DeleteEnhMetaFile(::CloseEnhMetaFile(enhanced));
}

class Metafiles : public HostedControl {
protected:
    HRESULT get(CLIPFORMAT kind, STGMEDIUM& result) {
        FORMATETC format{kind, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF | TYMED_MFPICT};
        result = {};
        return as<IDataObject>()->GetData(&format, &result);
    }
    void setExtent(SIZE size) {
        SIZEL wanted{size.cx, size.cy};
        ASSERT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &wanted));
    }
    // The least size that is a pixel of the screen, which is what metafiles are measured by.
    static SIZE himetricOfOnePixel() {
        const ScreenContext screen(::GetDC(nullptr));
        const auto side = [&screen](int millimetres, int pixels) -> LONG {
            return ::MulDiv(::GetDeviceCaps(screen.get(), millimetres), 100,
                            ::GetDeviceCaps(screen.get(), pixels));
        };
        return {side(HORZSIZE, HORZRES), side(VERTSIZE, VERTRES)};
    }

    STGMEDIUM medium{};
};

TEST_F(Metafiles, say_of_what_kind_they_are) {
    ASSERT_EQ(S_OK, get(CF_ENHMETAFILE, medium));
    EXPECT_EQ(DWORD{TYMED_ENHMF}, medium.tymed);
    ::ReleaseStgMedium(&medium);
    ASSERT_EQ(S_OK, get(CF_METAFILEPICT, medium));
    EXPECT_EQ(DWORD{TYMED_MFPICT}, medium.tymed);
    ::ReleaseStgMedium(&medium);
}

TEST_F(Metafiles, begin_at_the_corner_of_their_frame) {
    ASSERT_EQ(S_OK, get(CF_ENHMETAFILE, medium));
    ENHMETAHEADER header{};
    ASSERT_NE(0u, ::GetEnhMetaFileHeader(medium.hEnhMetaFile, sizeof header, &header));
    EXPECT_EQ(0, header.rclFrame.left);
    EXPECT_EQ(0, header.rclFrame.top);
    EXPECT_EQ(0, header.rclBounds.left);
    EXPECT_EQ(0, header.rclBounds.top);
    ::ReleaseStgMedium(&medium);
}

TEST_F(Metafiles, are_drawn_from_a_single_pixel_on_and_empty_below) {
    for (const auto& [size, drawn] : {std::pair<SIZE, int>{{0, 0}, 0},
                                      {{0, 3000}, 0},
                                      {{3000, 0}, 0},
                                      {himetricOfOnePixel(), 1}}) {
        setExtent(size);
        control->drawn = 0;
        EXPECT_EQ(S_OK, get(CF_ENHMETAFILE, medium));
        EXPECT_EQ(drawn, control->drawn) << size.cx << ' ' << size.cy;
        ::ReleaseStgMedium(&medium);
    }
}

// The parameters of a plain metafile's records, by the record's function.
int CALLBACK noteRecord(HDC, HANDLETABLE*, METARECORD* record, int, LPARAM place) {
    auto& found = *reinterpret_cast<std::map<WORD, std::vector<SHORT>>*>(place);
    const std::size_t words = record->rdSize - 3;
    found[record->rdFunction].assign(reinterpret_cast<const SHORT*>(record->rdParm),
                                     reinterpret_cast<const SHORT*>(record->rdParm) + words);
    return 1;
}

TEST_F(Metafiles, of_the_plain_kind_say_how_they_are_scaled) {
    ASSERT_EQ(S_OK, get(CF_METAFILEPICT, medium));
    const auto* picture = static_cast<const METAFILEPICT*>(::GlobalLock(medium.hMetaFilePict));
    std::map<WORD, std::vector<SHORT>> records;
    ::EnumMetaFile(nullptr, picture->hMF, &noteRecord, reinterpret_cast<LPARAM>(&records));
    ::GlobalUnlock(medium.hMetaFilePict);
    using Words = std::vector<SHORT>;
    EXPECT_EQ(MM_ANISOTROPIC, records[META_SETMAPMODE].at(0));
    EXPECT_EQ((Words{0, 0}), records[META_SETWINDOWORG]);
    EXPECT_EQ((Words{100, 200}), records[META_SETWINDOWEXT]); // the height comes first
    EXPECT_EQ((Words{95, 195, 5, 5}), records[META_RECTANGLE]);
    ::ReleaseStgMedium(&medium);
}

TEST_F(Metafiles, that_could_not_be_drawn_leave_no_object_behind) {
    control->throwWhenDrawn = true;
    for (const CLIPFORMAT kind : {CLIPFORMAT{CF_ENHMETAFILE}, CLIPFORMAT{CF_METAFILEPICT}}) {
        EXPECT_EQ(E_OUTOFMEMORY, get(kind, medium));
        const std::size_t free = freeGdiObjects();
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(E_OUTOFMEMORY, get(kind, medium));
        EXPECT_EQ(free, freeGdiObjects());
    }
}

TEST_F(Metafiles, go_to_a_listener_that_wants_them) {
    ViewSink sink;
    FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
    DWORD connection = 0;
    ASSERT_EQ(S_OK, as<IDataObject>()->DAdvise(&format, 0, &sink, &connection));
    control->base().pictureChanged();
    EXPECT_EQ(1, sink.data);
    EXPECT_EQ(DWORD{TYMED_ENHMF}, sink.medium);
    EXPECT_EQ(S_OK, as<IDataObject>()->DUnadvise(connection));
}

} // namespace
