#include "com/Dispatch.h"

#include "com/RecordCall.h"
#include "com/TypeLibrary.h"

#include <oleauto.h>

namespace corvina {
namespace {

// An object of any interface, or a pointer to a named one.
bool isObject(const TYPEDESC& type) noexcept {
    return type.vt == VT_DISPATCH || (type.vt == VT_PTR && type.lptdesc->vt == VT_USERDEFINED);
}

// As the dispatch view of an interface describes a member: with its result as what it returns.
bool returnsObject(const FUNCDESC& function) noexcept {
    return function.cParams == 0 && isObject(function.elemdescFunc.tdesc);
}

// Whether the member is a property without arguments that holds an object.
bool isObjectProperty(ITypeInfo& info, DISPID id) noexcept {
    bool found = false;
    FUNCDESC* function = nullptr;
    for (UINT index = 0; !found && SUCCEEDED(info.GetFuncDesc(index, &function)); ++index) {
        found = function->memid == id && function->invkind == INVOKE_PROPERTYGET &&
                returnsObject(*function);
        info.ReleaseFuncDesc(function);
    }
    return found;
}

} // namespace

HRESULT DispatchInfo::load() noexcept {
    return info_ ? S_OK : loadModuleTypeInfo(iid_, info_);
}

HRESULT DispatchInfo::typeInfo(UINT index, ITypeInfo** result) noexcept {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    if (index != 0)
        return DISP_E_BADINDEX;
    const HRESULT loaded = load();
    if (SUCCEEDED(loaded))
        *result = ComPtr<ITypeInfo>(info_).detach();
    return loaded;
}

HRESULT DispatchInfo::idsOfNames(REFIID reserved, LPOLESTR* names, UINT count,
                                 DISPID* ids) noexcept {
    if (reserved != IID_NULL)
        return DISP_E_UNKNOWNINTERFACE;
    if (!names || !ids)
        return E_POINTER;
    if (count == 0)
        return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) {
        ids[i] = DISPID_UNKNOWN;
        if (!names[i])
            return E_INVALIDARG;
    }
    const HRESULT loaded = load();
    return FAILED(loaded) ? loaded : info_->GetIDsOfNames(names, count, ids);
}

HRESULT DispatchInfo::invoke(IUnknown* object, DISPID id, REFIID reserved, WORD flags,
                             DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                             UINT* badArgument) noexcept {
    if (reserved != IID_NULL)
        return DISP_E_UNKNOWNINTERFACE;
    if (!arguments || (arguments->cArgs > 0 && !arguments->rgvarg) ||
        (arguments->cNamedArgs > 0 && !arguments->rgdispidNamedArgs) ||
        arguments->cNamedArgs > arguments->cArgs)
        return E_INVALIDARG;
    const HRESULT loaded = load();
    if (FAILED(loaded))
        return loaded;

    const ComPtr<IUnknown> alive(object);
    const ComPtr<ITypeInfo> info(info_);
    // The arguments would go to the default member of the object. No object here has one that takes
    // any, and some platforms ask for it without an object as well.
    if ((flags & DISPATCH_PROPERTYGET) != 0 && arguments->cArgs > 0 &&
        isObjectProperty(*info.get(), id))
        return DISP_E_BADPARAMCOUNT;
    ::SetErrorInfo(0, nullptr);
    const HRESULT called =
        info->Invoke(object, id, flags, arguments, result, exception, badArgument);
    // Not every platform's own dispatch knows records; the method itself has not been called then.
    return called == E_NOTIMPL ? callWithRecords(*info.get(), object, id, flags, *arguments, result,
                                                 exception, badArgument)
                               : called;
}

} // namespace corvina
