#pragma once

// The site of a form, with what a form says about itself: design or run time, background, units.

#include "com/Implements.h"

#include <oaidl.h>
#include <ocidl.h>
#include <olectl.h>
#include <vector>

namespace corvina::test {

// A container whose units are twentieths of a point, as forms have them.
class FormSite final : public Implements<IOleClientSite, IDispatch, IOleControlSite> {
public:
    bool designing = false;
    std::vector<WPARAM> keys; // that the control left to it, of which it uses the Tab key
    OLE_COLOR background = RGB(10, 20, 30);
    VARTYPE backgroundType = VT_UI4; // a script's large numbers are VT_R8

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
            V_UI4(result) = background;
            return ::VariantChangeType(result, result, 0, backgroundType);
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
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message, DWORD) override {
        keys.push_back(message->wParam);
        return message->wParam == VK_TAB ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return E_NOTIMPL; }
};

} // namespace corvina::test
