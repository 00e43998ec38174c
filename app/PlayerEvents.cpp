#include "PlayerEvents.h"

#include <utility>

namespace corvina::app {

namespace {

// Dispatch ids of the event interface, as published in the type library.
constexpr DISPID donePlayId = 1;
constexpr DISPID errId = 2;

std::wstring textOf(const VARIANT& value) {
    return value.vt == VT_BSTR ? std::wstring(value.bstrVal, SysStringLen(value.bstrVal))
                               : std::wstring();
}

long numberOf(const VARIANT& value) {
    return value.vt == (VT_I4 | VT_BYREF) ? *value.plVal : value.vt == VT_I4 ? value.lVal : 0;
}

} // namespace

PlayerEvents::PlayerEvents(PlayerHandlers handlers) : handlers_(std::move(handlers)) {}

HRESULT PlayerEvents::QueryInterface(REFIID iid, void** result) {
    if (!result)
        return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(__cPlayer);
    *result = known ? static_cast<IDispatch*>(this) : nullptr;
    if (!known)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG PlayerEvents::AddRef() {
    return ++references_;
}

ULONG PlayerEvents::Release() {
    const ULONG left = --references_;
    if (left == 0)
        delete this;
    return left;
}

HRESULT PlayerEvents::GetTypeInfoCount(UINT* count) {
    if (!count)
        return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT PlayerEvents::GetTypeInfo(UINT, LCID, ITypeInfo**) {
    return E_NOTIMPL;
}

HRESULT PlayerEvents::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    return E_NOTIMPL;
}

HRESULT PlayerEvents::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                             EXCEPINFO*, UINT*) {
    try {
        switch (member) {
        case donePlayId:
            if (handlers_.donePlay)
                handlers_.donePlay();
            return S_OK;
        case errId:
            return arguments ? onErr(*arguments) : E_INVALIDARG;
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    } catch (...) {
        return E_UNEXPECTED;
    }
}

HRESULT PlayerEvents::onErr(const DISPPARAMS& arguments) const {
    if (arguments.cArgs != 3)
        return DISP_E_BADPARAMCOUNT;
    if (handlers_.err) // arguments come last first
        handlers_.err({textOf(arguments.rgvarg[2]), numberOf(arguments.rgvarg[1]),
                       textOf(arguments.rgvarg[0])});
    return S_OK;
}

} // namespace corvina::app
