#pragma once

// The control as a picture: drawing into any device context, and notifying whoever shows it that it
// has changed.

#include "com/Part.h"
#include "control/ControlExtent.h"
#include "control/ControlHooks.h"

#include <ocidl.h>

namespace corvina {

template <>
struct InterfaceIds<IViewObjectEx> {
    static bool contain(REFIID iid) noexcept {
        return iid == IID_IViewObjectEx || iid == IID_IViewObject2 || iid == IID_IViewObject;
    }
};

class ViewPart final : public Part<IViewObjectEx> {
public:
    ViewPart(IUnknown& outer, const ControlExtent& extent, ControlHooks& hooks) noexcept
        : Part(outer), extent_(extent), hooks_(hooks) {}

    void notifyChanged() noexcept;

    HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* aspectInfo,
                                   DVTARGETDEVICE* device, HDC targetDc, HDC dc, LPCRECTL bounds,
                                   LPCRECTL windowBounds,
                                   BOOL(STDMETHODCALLTYPE* mayContinue)(ULONG_PTR),
                                   ULONG_PTR argument) override;
    HRESULT STDMETHODCALLTYPE GetColorSet(DWORD aspect, LONG index, void* aspectInfo,
                                          DVTARGETDEVICE* device, HDC targetDc,
                                          LOGPALETTE** result) override;
    HRESULT STDMETHODCALLTYPE Freeze(DWORD aspect, LONG index, void* aspectInfo,
                                     DWORD* key) override;
    HRESULT STDMETHODCALLTYPE Unfreeze(DWORD key) override;
    HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
    HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device,
                                        SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE GetRect(DWORD aspect, LPRECTL rect) override;
    HRESULT STDMETHODCALLTYPE GetViewStatus(DWORD* status) override;
    HRESULT STDMETHODCALLTYPE QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT location,
                                            LONG closeHint, DWORD* result) override;
    HRESULT STDMETHODCALLTYPE QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT location,
                                           LONG closeHint, DWORD* result) override;
    HRESULT STDMETHODCALLTYPE GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* device,
                                               HDC targetDc, DVEXTENTINFO* info,
                                               SIZEL* size) override;

private:
    const ControlExtent& extent_;
    ControlHooks& hooks_;
    ComPtr<IAdviseSink> sink_;
    DWORD aspects_ = 0;
    DWORD flags_ = 0;
};

} // namespace corvina
