#include "PlayerEvents.h"

#include <utility>

namespace corvina::app {

namespace {

// Dispatch ids of the event interface, as published in the type library.
constexpr DISPID donePlayId = 1;
constexpr DISPID errId = 2;
constexpr DISPID endedId = 3;
constexpr DISPID stateChangedId = 4;
constexpr DISPID positionChangedId = 5;
constexpr DISPID nextStartedId = 6;

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
    if (!arguments)
        return E_INVALIDARG;
    try {
        return dispatch(member, *arguments);
    } catch (...) {
        return E_UNEXPECTED;
    }
}

HRESULT PlayerEvents::dispatch(DISPID member, const DISPPARAMS& arguments) const {
    if (member == donePlayId) {
        if (handlers_.donePlay)
            handlers_.donePlay();
        return S_OK;
    }
    if (member == errId)
        return onErr(arguments);
    if (member < endedId || member > nextStartedId)
        return DISP_E_MEMBERNOTFOUND;
    if (arguments.cArgs != 1)
        return DISP_E_BADPARAMCOUNT;
    const VARIANT& argument = arguments.rgvarg[0];
    const auto raise = [](const auto& handler, const auto& value) {
        if (handler)
            handler(value);
    };
    if (member == endedId)
        raise(handlers_.ended, static_cast<PlayEndReason>(numberOf(argument)));
    else if (member == stateChangedId)
        raise(handlers_.stateChanged, static_cast<PlayState>(numberOf(argument)));
    else if (member == positionChangedId)
        raise(handlers_.positionChanged, numberOf(argument));
    else
        raise(handlers_.nextStarted, textOf(argument));
    return S_OK;
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
