// What a container tells a control about itself: design or run time, background, units.

#include "Support.h"

#include "com/Implements.h"

using namespace corvina;
using namespace corvina::test;

namespace {

// A container whose units are twentieths of a point, as forms have them.
class Form final : public Implements<IOleClientSite, IDispatch, IOleControlSite> {
public:
    bool designing = false;

    HRESULT STDMETHODCALLTYPE SaveObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id == DISPID_AMBIENT_USERMODE) {
            V_VT(result) = VT_BOOL;
            V_BOOL(result) = designing ? VARIANT_FALSE : VARIANT_TRUE;
        } else if (id == DISPID_AMBIENT_BACKCOLOR) {
            V_VT(result) = VT_UI4;
            V_UI4(result) = RGB(10, 20, 30);
        } else {
            return DISP_E_MEMBERNOTFOUND;
        }
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL* himetric, POINTF* container,
                                              DWORD flags) override {
        if (!(flags & XFORMCOORDS_CONTAINERTOHIMETRIC))
            return E_NOTIMPL;
        // 1440 units and 2540 hundredths of a millimetre to the inch.
        himetric->x = static_cast<LONG>(container->x * 2540 / 1440);
        himetric->y = static_cast<LONG>(container->y * 2540 / 1440);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return E_NOTIMPL; }
};

// The player in a form, drawn into a bitmap of 32 x 32 pixels.
class Ambient : public ApartmentTest {
protected:
    static constexpr int side = 32;

    void SetUp() override {
        ApartmentTest::SetUp();
        object = create<IOleObject>(CLSID_cPlayer);
        object->SetClientSite(form.get());
        screen = ::GetDC(nullptr);
        dc = ::CreateCompatibleDC(screen);
        bitmap = ::CreateCompatibleBitmap(screen, side, side);
        old = ::SelectObject(dc, bitmap);
    }
    void TearDown() override {
        ::SelectObject(dc, old);
        ::DeleteObject(bitmap);
        ::DeleteDC(dc);
        ::ReleaseDC(nullptr, screen);
        object->SetClientSite(nullptr);
        object.reset();
        form.reset();
        ApartmentTest::TearDown();
    }

    // How many pixels are not of the form's background.
    int drawnPixels() {
        const RECTL bounds{0, 0, side, side};
        EXPECT_EQ(S_OK,
                  object.query<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr,
                                                    dc, &bounds, nullptr, nullptr, 0));
        int count = 0;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                count += ::GetPixel(dc, x, y) != RGB(10, 20, 30);
        return count;
    }

    ComPtr<Form> form = makeCom<Form>();
    ComPtr<IOleObject> object;
    HDC screen = nullptr;
    HDC dc = nullptr;
    HBITMAP bitmap = nullptr;
    HGDIOBJ old = nullptr;
};

TEST_F(Ambient, at_run_time_the_player_shows_only_the_containers_background) {
    EXPECT_EQ(0, drawnPixels());
}

TEST_F(Ambient, at_design_time_the_player_shows_a_glyph) {
    form->designing = true;
    EXPECT_GT(drawnPixels(), side);
}

TEST_F(Ambient, the_player_has_512_by_512_of_its_containers_own_units) {
    SIZEL size{};
    EXPECT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &size));
    EXPECT_EQ(512 * 2540 / 1440, size.cx);
    EXPECT_EQ(512 * 2540 / 1440, size.cy);
}

TEST_F(Ambient, the_properties_verb_says_that_there_are_no_pages) {
    EXPECT_EQ(OLEOBJ_S_CANNOT_DOVERB_NOW,
              object->DoVerb(OLEIVERB_PROPERTIES, nullptr, form.get(), 0, nullptr, nullptr));
}

} // namespace
