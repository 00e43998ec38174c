#include "com/RecordCall.h"

#include "com/ComPtr.h"
#include "com/Guard.h"
#include "com/Variant.h"

#include <algorithm>
#include <oleauto.h>
#include <vector>

namespace corvina {
namespace {

// Owns the description of one method.
class Method {
public:
    Method(ITypeInfo& info, DISPID id, WORD flags) : info_(&info) {
        TYPEATTR* type = nullptr;
        if (FAILED(info.GetTypeAttr(&type)))
            return;
        const UINT count = type->cFuncs;
        info.ReleaseTypeAttr(type);
        for (UINT i = 0; i < count && !function_; ++i) {
            if (FAILED(info.GetFuncDesc(i, &function_)))
                function_ = nullptr;
            else if (function_->memid != id || !(function_->invkind & flags))
                release();
        }
    }
    Method(const Method&) = delete;
    Method& operator=(const Method&) = delete;
    ~Method() { release(); }

    explicit operator bool() const noexcept { return function_ != nullptr; }
    const FUNCDESC* operator->() const noexcept { return function_; }

private:
    void release() noexcept {
        if (function_)
            info_->ReleaseFuncDesc(function_);
        function_ = nullptr;
    }

    ComPtr<ITypeInfo> info_;
    FUNCDESC* function_ = nullptr;
};

// The record that a parameter points to; false for any other parameter.
bool isRecord(ITypeInfo& info, const TYPEDESC& parameter, GUID& guid) {
    if (parameter.vt != VT_PTR || parameter.lptdesc->vt != VT_USERDEFINED)
        return false;
    ComPtr<ITypeInfo> record;
    TYPEATTR* type = nullptr;
    if (FAILED(info.GetRefTypeInfo(parameter.lptdesc->hreftype, record.put())) ||
        FAILED(record->GetTypeAttr(&type)))
        return false;
    const bool found = type->typekind == TKIND_RECORD;
    guid = type->guid;
    record->ReleaseTypeAttr(type);
    return found;
}

// An argument behind the reference that a script passes for every variable.
VARIANT& plain(VARIANT& argument) {
    return V_VT(&argument) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(&argument)
               ? *V_VARIANTREF(&argument)
               : argument;
}

HRESULT recordAddress(const VARIANT& argument, REFGUID guid, Variant& value) {
    if ((V_VT(&argument) & ~VT_BYREF) != VT_RECORD)
        return DISP_E_TYPEMISMATCH;
    if (!V_RECORDINFO(&argument) || !V_RECORD(&argument))
        return E_INVALIDARG;
    GUID given;
    if (FAILED(V_RECORDINFO(&argument)->GetGuid(&given)) || given != guid)
        return DISP_E_TYPEMISMATCH;
    V_VT(&value) = VT_BYREF | VT_VOID;
    V_BYREF(&value) = V_RECORD(&argument);
    return S_OK;
}

HRESULT describeFailure(HRESULT failure, EXCEPINFO* exception) {
    if (!exception)
        return DISP_E_EXCEPTION;
    *exception = EXCEPINFO{};
    exception->scode = failure;
    ComPtr<IErrorInfo> error;
    if (::GetErrorInfo(0, error.put()) == S_OK) {
        error->GetSource(&exception->bstrSource);
        error->GetDescription(&exception->bstrDescription);
    }
    return DISP_E_EXCEPTION;
}

// The arguments of one call, in the order of the declaration, as DispCallFunc takes them.
struct Arguments {
    explicit Arguments(std::size_t count) : values(count), types(count), pointers(count) {}

    void add(std::size_t index) {
        types[index] = V_VT(&values[index]);
        pointers[index] = &values[index];
    }

    std::vector<Variant> values;
    std::vector<VARTYPE> types;
    std::vector<VARIANT*> pointers;
};

// For each parameter the place of its argument: the named ones come first and say which parameter
// they are for, the others come last first.
HRESULT findArguments(const DISPPARAMS& given, UINT inputs, std::vector<UINT>& places) {
    constexpr UINT none = static_cast<UINT>(-1);
    if (given.cArgs > inputs)
        return DISP_E_BADPARAMCOUNT;
    places.assign(inputs, none);
    const UINT positional = given.cArgs - given.cNamedArgs;
    for (UINT i = 0; i < positional; ++i)
        places[i] = given.cArgs - 1 - i;
    for (UINT place = 0; place < given.cNamedArgs; ++place) {
        const auto parameter = static_cast<UINT>(given.rgdispidNamedArgs[place]);
        if (parameter >= inputs || places[parameter] != none)
            return DISP_E_PARAMNOTFOUND;
        places[parameter] = place;
    }
    return std::ranges::count(places, none) == 0 ? S_OK : DISP_E_BADPARAMCOUNT;
}

// E_NOTIMPL if none of the parameters is a record.
HRESULT convert(ITypeInfo& info, const Method& method, UINT inputs, const DISPPARAMS& given,
                Arguments& arguments, UINT* badArgument) {
    std::vector<UINT> places;
    if (const HRESULT found = findArguments(given, inputs, places); FAILED(found))
        return found;
    bool anyRecord = false;
    for (UINT i = 0; i < inputs; ++i) {
        const UINT place = places[i];
        VARIANT& argument = plain(given.rgvarg[place]);
        const TYPEDESC& type = method->lprgelemdescParam[i].tdesc;
        GUID record;
        const bool takesRecord = isRecord(info, type, record);
        anyRecord = anyRecord || takesRecord;
        const HRESULT ready =
            takesRecord ? recordAddress(argument, record, arguments.values[i])
                        : ::VariantChangeType(&arguments.values[i], &argument, 0, type.vt);
        if (FAILED(ready)) {
            if (badArgument)
                *badArgument = place;
            return ready;
        }
        arguments.add(i);
    }
    return anyRecord ? S_OK : E_NOTIMPL;
}

HRESULT call(ITypeInfo& info, IUnknown* object, const Method& method, const DISPPARAMS& given,
             VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
    const auto parameters = static_cast<UINT>(method->cParams);
    const bool returns =
        parameters > 0 &&
        (method->lprgelemdescParam[parameters - 1].paramdesc.wParamFlags & PARAMFLAG_FRETVAL);
    const UINT inputs = returns ? parameters - 1 : parameters;
    Arguments arguments(parameters);
    if (const HRESULT ready = convert(info, method, inputs, given, arguments, badArgument);
        FAILED(ready))
        return ready;
    Variant returned;
    if (returns) {
        VARIANT& last = arguments.values[inputs];
        V_VT(&returned) = method->lprgelemdescParam[inputs].tdesc.lptdesc->vt;
        V_VT(&last) = static_cast<VARTYPE>(VT_BYREF | V_VT(&returned));
        V_BYREF(&last) = &V_BYREF(&returned);
        arguments.add(inputs);
    }
    Variant status;
    const HRESULT called =
        ::DispCallFunc(object, static_cast<ULONG_PTR>(method->oVft), CC_STDCALL, VT_ERROR,
                       parameters, arguments.types.data(), arguments.pointers.data(), &status);
    if (FAILED(called))
        return called;
    if (FAILED(V_ERROR(&status)))
        return describeFailure(V_ERROR(&status), exception);
    return result ? ::VariantCopy(result, &returned) : S_OK;
}

} // namespace

HRESULT callWithRecords(ITypeInfo& info, IUnknown* object, DISPID id, WORD flags,
                        const DISPPARAMS& arguments, VARIANT* result, EXCEPINFO* exception,
                        UINT* badArgument) noexcept {
    if (result)
        ::VariantInit(result);
    return guarded(IID_NULL, L"", [&]() -> HRESULT {
        // The dispatch view of a dual interface hides results; its other half is the vtable.
        HREFTYPE half = 0;
        ComPtr<ITypeInfo> table;
        if (FAILED(info.GetRefTypeOfImplType(static_cast<UINT>(-1), &half)) ||
            FAILED(info.GetRefTypeInfo(half, table.put())))
            return E_NOTIMPL;
        const Method method(*table.get(), id, flags);
        return method
                   ? call(*table.get(), object, method, arguments, result, exception, badArgument)
                   : E_NOTIMPL;
    });
}

} // namespace corvina
