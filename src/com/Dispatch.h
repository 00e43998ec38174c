#pragma once

// Late binding for a dual interface through the module's type library.
//
//   class Clock final : public Implements<Dispatch<IClock>> { ... };
//
// A class with several dual interfaces dispatches each by its own description; the first one in its
// list is the one that a query for IDispatch returns.

#include "com/ComPtr.h"
#include "com/Implements.h"

#include <oaidl.h>

namespace corvina {

// The description of one dual interface, loaded when it is first asked for.
class DispatchInfo {
public:
    explicit DispatchInfo(REFIID iid) noexcept : iid_(iid) {}

    HRESULT typeInfo(UINT index, ITypeInfo** result) noexcept;
    HRESULT idsOfNames(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) noexcept;
    // object: the interface described. It is kept alive during the call.
    HRESULT invoke(IUnknown* object, DISPID id, REFIID reserved, WORD flags, DISPPARAMS* arguments,
                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) noexcept;

private:
    HRESULT load() noexcept;

    const IID& iid_;
    ComPtr<ITypeInfo> info_;
};

template <typename Interface>
class Dispatch : public Interface {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count)
            return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** result) override {
        return dispatchInfo_.typeInfo(index, result);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        return dispatchInfo_.idsOfNames(reserved, names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID, WORD flags,
                                     DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                     UINT* badArgument) override {
        return dispatchInfo_.invoke(static_cast<Interface*>(this), id, reserved, flags, arguments,
                                    result, exception, badArgument);
    }

private:
    DispatchInfo dispatchInfo_{__uuidof(Interface)};
};

template <typename Interface>
struct InterfaceIds<Dispatch<Interface>> {
    static bool contain(REFIID iid) noexcept {
        return iid == __uuidof(Interface) || iid == IID_IDispatch;
    }
};

} // namespace corvina
