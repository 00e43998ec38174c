#include "com/RecordCall.h"

#include "com/ComPtr.h"
#include "com/Guard.h"

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

// Owns a VARIANT.
struct Value : VARIANT {
    Value() noexcept : VARIANT{} { ::VariantInit(this); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { ::VariantClear(this); }
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

HRESULT recordAddress(const VARIANT& argument, REFGUID guid, Value& value) {
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

HRESULT call(ITypeInfo& info, IUnknown* object, const Method& method, const DISPPARAMS& arguments,
             VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
    const auto parameters = static_cast<UINT>(method->cParams);
    const bool answers =
        parameters > 0 &&
        (method->lprgelemdescParam[parameters - 1].paramdesc.wParamFlags & PARAMFLAG_FRETVAL);
    const UINT inputs = answers ? parameters - 1 : parameters;
    if (arguments.cNamedArgs > 0)
        return DISP_E_NONAMEDARGS;
    if (arguments.cArgs != inputs)
        return DISP_E_BADPARAMCOUNT;

    std::vector<Value> values(parameters);
    std::vector<VARTYPE> types(parameters);
    std::vector<VARIANT*> pointers(parameters);
    bool anyRecord = false;
    for (UINT i = 0; i < inputs; ++i) {
        const UINT place = inputs - 1 - i; // arguments come last first
        VARIANT& argument = plain(arguments.rgvarg[place]);
        const TYPEDESC& type = method->lprgelemdescParam[i].tdesc;
        GUID record;
        HRESULT ready;
        if (isRecord(info, type, record)) {
            anyRecord = true;
            ready = recordAddress(argument, record, values[i]);
        } else {
            ready = ::VariantChangeType(&values[i], &argument, 0, type.vt);
        }
        if (FAILED(ready)) {
            if (badArgument)
                *badArgument = place;
            return ready;
        }
        types[i] = V_VT(&values[i]);
        pointers[i] = &values[i];
    }
    if (!anyRecord)
        return E_NOTIMPL;

    Value answer;
    if (answers) {
        V_VT(&answer) = method->lprgelemdescParam[inputs].tdesc.lptdesc->vt;
        V_VT(&values[inputs]) = types[inputs] = static_cast<VARTYPE>(VT_BYREF | V_VT(&answer));
        V_BYREF(&values[inputs]) = &V_BYREF(&answer);
        pointers[inputs] = &values[inputs];
    }
    Value status;
    const HRESULT called =
        ::DispCallFunc(object, static_cast<ULONG_PTR>(method->oVft), CC_STDCALL, VT_ERROR,
                       parameters, types.data(), pointers.data(), &status);
    if (FAILED(called))
        return called;
    if (FAILED(V_ERROR(&status)))
        return describeFailure(V_ERROR(&status), exception);
    return result ? ::VariantCopy(result, &answer) : S_OK;
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
