#pragma once

// What a COM object tells about its class and its errors.

#include "com/Part.h"

#include <initializer_list>
#include <ocidl.h>
#include <vector>

namespace corvina {

template <>
struct AnswersTo<IProvideClassInfo2> {
    static bool matches(REFIID iid) noexcept {
        return iid == IID_IProvideClassInfo2 || iid == IID_IProvideClassInfo;
    }
};

class ClassInfoPart final : public Part<IProvideClassInfo2> {
public:
    ClassInfoPart(IUnknown& whole, REFCLSID clsid, REFIID events) noexcept
        : Part(whole), clsid_(clsid), events_(events) {}

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** result) override;
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* result) override;

private:
    const CLSID& clsid_;
    const IID& events_;
};

// Every run-time error of the given interfaces comes with error information.
class ErrorInfoPart final : public Part<ISupportErrorInfo> {
public:
    ErrorInfoPart(IUnknown& whole, std::initializer_list<IID> interfaces)
        : Part(whole), interfaces_(interfaces) {}

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

private:
    std::vector<IID> interfaces_;
};

} // namespace corvina
