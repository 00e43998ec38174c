#pragma once

// What a COM object says about its class and its errors.

#include "com/Part.h"

#include <initializer_list>
#include <ocidl.h>
#include <vector>

namespace corvina {

template <>
struct InterfaceIds<IProvideClassInfo2> {
    static bool contain(REFIID iid) noexcept {
        return iid == IID_IProvideClassInfo2 || iid == IID_IProvideClassInfo;
    }
};

class ClassInfoPart final : public Part<IProvideClassInfo2> {
public:
    ClassInfoPart(IUnknown& outer, REFCLSID clsid, REFIID events) noexcept
        : Part(outer), clsid_(clsid), events_(events) {}

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** result) override;
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* result) override;

private:
    const CLSID& clsid_;
    const IID& events_;
};

// Every run-time error of the given interfaces comes with error information.
class ErrorInfoPart final : public Part<ISupportErrorInfo> {
public:
    ErrorInfoPart(IUnknown& outer, std::initializer_list<IID> interfaces)
        : Part(outer), interfaces_(interfaces) {}

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

private:
    std::vector<IID> interfaces_;
};

} // namespace corvina
