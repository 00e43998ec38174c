// The control as a picture: drawing, metafiles, advises, hit tests.

#include "Picture.h"
#include "TestControl.h"
#include "ViewSink.h"

using namespace corvina;
using namespace corvina::test;

namespace {

class View : public ControlBaseTest {
protected:
    HRESULT draw(HDC dc, DWORD aspect, const RECTL* bounds) {
        return as<IViewObject>()->Draw(aspect, -1, nullptr, nullptr, nullptr, dc, bounds, nullptr,
                                       nullptr, 0);
    }
};

TEST_F(View, is_drawn_inside_the_given_bounds) {
    const Picture picture({60, 60});
    const RECTL bounds{10, 10, 50, 50};
    EXPECT_EQ(S_OK, draw(picture.dc(), DVASPECT_CONTENT, &bounds));
    EXPECT_EQ(RGB(255, 255, 255), picture.at(5, 5));
    EXPECT_EQ(RGB(0, 0, 0), picture.at(12, 12));
    EXPECT_EQ(RGB(255, 255, 255), picture.at(55, 55));
}

TEST_F(View, a_drawing_without_bounds_or_context_is_refused) {
    const RECTL bounds{0, 0, 10, 10};
    const ScreenContext screen(::GetDC(nullptr));
    EXPECT_EQ(E_INVALIDARG, draw(screen.get(), DVASPECT_CONTENT, nullptr));
    EXPECT_EQ(E_INVALIDARG, draw(nullptr, DVASPECT_CONTENT, &bounds));
    EXPECT_EQ(DV_E_DVASPECT, draw(screen.get(), DVASPECT_ICON, &bounds));
}

TEST_F(View, a_drawing_that_throws_is_an_error_to_the_host_and_leaves_its_context_as_it_was) {
    control->throwWhenDrawn = true;
    const RECTL bounds{0, 0, 10, 10};
    const MemoryContext dc(::CreateCompatibleDC(nullptr));
    EXPECT_EQ(E_OUTOFMEMORY, draw(dc.get(), DVASPECT_CONTENT, &bounds));
    EXPECT_EQ(1, ::SaveDC(dc.get()));
}

TEST_F(View, view_and_data_listeners_are_notified_of_a_new_picture) {
    ViewSink sink;
    as<IViewObject>()->SetAdvise(DVASPECT_CONTENT, 0, &sink);
    FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
    DWORD connection = 0;
    EXPECT_EQ(S_OK, as<IDataObject>()->DAdvise(&format, ADVF_NODATA, &sink, &connection));
    control->base().pictureChanged();
    EXPECT_EQ(1, sink.views);
    EXPECT_EQ(1, sink.data);
    EXPECT_EQ(S_OK, as<IDataObject>()->DUnadvise(connection));
    as<IViewObject>()->SetAdvise(0, 0, nullptr);
    control->base().pictureChanged();
    EXPECT_EQ(1, sink.views);
}

TEST_F(View, an_advise_for_one_change_ends_after_it) {
    ViewSink sink;
    as<IViewObject>()->SetAdvise(DVASPECT_CONTENT, ADVF_ONLYONCE, &sink);
    control->base().pictureChanged();
    control->base().pictureChanged();
    EXPECT_EQ(1, sink.views);
}

TEST_F(View, an_advise_may_ask_for_a_first_call_at_once) {
    ViewSink sink;
    as<IViewObject>()->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST, &sink);
    EXPECT_EQ(1, sink.views);
    ComPtr<IAdviseSink> got;
    DWORD aspects = 0;
    EXPECT_EQ(S_OK, as<IViewObject>()->GetAdvise(&aspects, nullptr, got.put()));
    EXPECT_EQ(&sink, got.get());
    EXPECT_EQ(static_cast<DWORD>(DVASPECT_CONTENT), aspects);
    got.reset();
    as<IViewObject>()->SetAdvise(0, 0, nullptr);
}

TEST_F(View, closing_notifies_who_was_advised) {
    ViewSink sink;
    DWORD connection = 0;
    EXPECT_EQ(S_OK, as<IOleObject>()->Advise(&sink, &connection));
    EXPECT_EQ(S_OK, as<IOleObject>()->Close(OLECLOSE_NOSAVE));
    EXPECT_EQ(1, sink.closed);
    EXPECT_EQ(S_OK, as<IOleObject>()->Unadvise(connection));
}

TEST_F(View, an_enhanced_metafile_has_the_controls_size) {
    FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
    STGMEDIUM medium{};
    ASSERT_EQ(S_OK, as<IDataObject>()->GetData(&format, &medium));
    ENHMETAHEADER header{};
    ASSERT_NE(0u, ::GetEnhMetaFileHeader(medium.hEnhMetaFile, sizeof header, &header));
    SIZEL size{};
    as<IOleObject>()->GetExtent(DVASPECT_CONTENT, &size);
    EXPECT_EQ(size.cx, header.rclFrame.right - header.rclFrame.left);
    EXPECT_EQ(size.cy, header.rclFrame.bottom - header.rclFrame.top);
    EXPECT_GT(header.nRecords, 2u);
    ::ReleaseStgMedium(&medium);
}

// A screen of 597 x 336 millimetres with 2560 x 1440 pixels, whose logical inch has 96 of them.
TEST_F(View, a_metafile_goes_by_the_physical_size_of_the_device) {
    const SIZE pixels = devicePixels({5970, 3360}, {{597, 336}, {2560, 1440}});
    EXPECT_EQ(256, pixels.cx);
    EXPECT_EQ(144, pixels.cy);
}

TEST_F(View, an_enhanced_metafile_is_filled_to_its_edges) {
    FORMATETC format{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
    SIZEL size{30000, 20000};
    ASSERT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &size));
    STGMEDIUM medium{};
    ASSERT_EQ(S_OK, as<IDataObject>()->GetData(&format, &medium));
    ENHMETAHEADER header{};
    ASSERT_NE(0u, ::GetEnhMetaFileHeader(medium.hEnhMetaFile, sizeof header, &header));
    const SIZE pixels =
        devicePixels({size.cx, size.cy}, {{header.szlMillimeters.cx, header.szlMillimeters.cy},
                                          {header.szlDevice.cx, header.szlDevice.cy}});
    EXPECT_NEAR(pixels.cx, header.rclBounds.right, 2);
    EXPECT_NEAR(pixels.cy, header.rclBounds.bottom, 2);
    ::ReleaseStgMedium(&medium);
}

TEST_F(View, a_plain_metafile_comes_with_its_size) {
    FORMATETC format{CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT};
    STGMEDIUM medium{};
    ASSERT_EQ(S_OK, as<IDataObject>()->GetData(&format, &medium));
    const auto* picture = static_cast<const METAFILEPICT*>(::GlobalLock(medium.hMetaFilePict));
    EXPECT_EQ(MM_ANISOTROPIC, picture->mm);
    SIZEL size{};
    as<IOleObject>()->GetExtent(DVASPECT_CONTENT, &size);
    EXPECT_EQ(size.cx, picture->xExt);
    EXPECT_NE(nullptr, picture->hMF);
    ::GlobalUnlock(medium.hMetaFilePict);
    ::ReleaseStgMedium(&medium);
}

TEST_F(View, other_data_is_refused) {
    FORMATETC text{CF_TEXT, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    FORMATETC icon{CF_ENHMETAFILE, nullptr, DVASPECT_ICON, -1, TYMED_ENHMF};
    FORMATETC medium{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    STGMEDIUM got{};
    EXPECT_EQ(DV_E_FORMATETC, as<IDataObject>()->GetData(&text, &got));
    EXPECT_EQ(DV_E_DVASPECT, as<IDataObject>()->GetData(&icon, &got));
    EXPECT_EQ(DV_E_TYMED, as<IDataObject>()->GetData(&medium, &got));
    EXPECT_EQ(E_POINTER, as<IDataObject>()->GetData(nullptr, &got));
    EXPECT_EQ(E_POINTER, as<IDataObject>()->GetData(&icon, nullptr));
}

TEST_F(View, a_metafile_whose_drawing_throws_leaves_nothing_behind) {
    control->throwWhenDrawn = true;
    const auto before = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    for (const CLIPFORMAT kind : {CLIPFORMAT{CF_ENHMETAFILE}, CLIPFORMAT{CF_METAFILEPICT}}) {
        FORMATETC format{kind, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF | TYMED_MFPICT};
        STGMEDIUM got{};
        EXPECT_EQ(E_OUTOFMEMORY, as<IDataObject>()->GetData(&format, &got));
        EXPECT_EQ(static_cast<DWORD>(TYMED_NULL), got.tymed);
    }
    EXPECT_EQ(before, ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS));
}

TEST_F(View, its_formats_are_enumerated) {
    ComPtr<IEnumFORMATETC> formats;
    ASSERT_EQ(S_OK, as<IDataObject>()->EnumFormatEtc(DATADIR_GET, formats.put()));
    FORMATETC found[3]{};
    ULONG count = 0;
    EXPECT_EQ(S_FALSE, formats->Next(3, found, &count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(E_NOTIMPL, as<IDataObject>()->EnumFormatEtc(DATADIR_SET, formats.put()));
}

TEST_F(View, a_point_inside_is_a_hit) {
    const auto view = as<IViewObjectEx>();
    const RECT bounds{10, 10, 20, 20};
    DWORD hit = 0;
    EXPECT_EQ(S_OK, view->QueryHitPoint(DVASPECT_CONTENT, &bounds, {15, 15}, 0, &hit));
    EXPECT_EQ(static_cast<DWORD>(HITRESULT_HIT), hit);
    EXPECT_EQ(S_OK, view->QueryHitPoint(DVASPECT_CONTENT, &bounds, {5, 15}, 0, &hit));
    EXPECT_EQ(static_cast<DWORD>(HITRESULT_OUTSIDE), hit);
    const RECT beside{30, 30, 40, 40};
    EXPECT_EQ(S_OK, view->QueryHitRect(DVASPECT_CONTENT, &bounds, &beside, 0, &hit));
    EXPECT_EQ(static_cast<DWORD>(HITRESULT_OUTSIDE), hit);
    EXPECT_EQ(E_POINTER, view->QueryHitPoint(DVASPECT_CONTENT, nullptr, {0, 0}, 0, &hit));
    EXPECT_EQ(E_POINTER, view->QueryHitRect(DVASPECT_CONTENT, &bounds, nullptr, 0, &hit));
}

TEST_F(View, the_verbs_are_enumerated_with_the_about_box_in_the_menu) {
    ComPtr<IEnumOLEVERB> verbs;
    ASSERT_EQ(S_OK, as<IOleObject>()->EnumVerbs(verbs.put()));
    OLEVERB verb{};
    bool about = false;
    while (verbs->Next(1, &verb, nullptr) == S_OK)
        if (verb.lpszVerbName) {
            about = verb.lVerb == 1 && std::wstring(verb.lpszVerbName) == L"&About...";
            ::CoTaskMemFree(verb.lpszVerbName);
        }
    EXPECT_TRUE(about);
}

TEST_F(View, null_pointers_to_the_object_are_refused) {
    const auto object = as<IOleObject>();
    EXPECT_EQ(E_POINTER, object->GetClientSite(nullptr));
    EXPECT_EQ(E_POINTER, object->GetUserClassID(nullptr));
    EXPECT_EQ(E_POINTER, object->GetUserType(USERCLASSTYPE_FULL, nullptr));
    EXPECT_EQ(E_POINTER, object->GetMiscStatus(DVASPECT_CONTENT, nullptr));
    EXPECT_EQ(E_POINTER, object->EnumVerbs(nullptr));
    EXPECT_EQ(E_POINTER, object->EnumAdvise(nullptr));
    EXPECT_EQ(E_POINTER, object->Advise(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, object->GetMoniker(0, 0, nullptr));
    EXPECT_EQ(E_POINTER, as<IOleControl>()->GetControlInfo(nullptr));
    EXPECT_EQ(E_POINTER, as<IOleInPlaceActiveObject>()->TranslateAccelerator(nullptr));
    EXPECT_EQ(OLE_E_NOCONNECTION, object->Unadvise(77));
}

TEST_F(View, the_control_returns_its_names) {
    wchar_t* type = nullptr;
    EXPECT_EQ(S_OK, as<IOleObject>()->GetUserType(USERCLASSTYPE_FULL, &type));
    EXPECT_STREQ(L"Test control", type);
    ::CoTaskMemFree(type);
    CLSID clsid{};
    EXPECT_EQ(S_OK, as<IOleObject>()->GetUserClassID(&clsid));
    EXPECT_EQ(CLSID_cAudioGraph, clsid);
}

TEST_F(View, a_container_that_adjusts_a_size_is_not_given_the_natural_one) {
    const auto view = as<IViewObjectEx>();
    SIZEL size{};
    DVEXTENTINFO info{sizeof info, DVEXTENT_CONTENT, {5000, 2500}};
    EXPECT_EQ(S_OK, view->GetNaturalExtent(DVASPECT_CONTENT, -1, nullptr, nullptr, &info, &size));
    EXPECT_GT(size.cx, 0);
    info.dwExtentMode = DVEXTENT_INTEGRAL;
    EXPECT_EQ(E_NOTIMPL,
              view->GetNaturalExtent(DVASPECT_CONTENT, -1, nullptr, nullptr, &info, &size));
    EXPECT_EQ(E_POINTER,
              view->GetNaturalExtent(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, &size));
}

} // namespace
