#include "com/ClassParts.h"

#include "com/TypeLibrary.h"

#include <algorithm>

namespace corvina {

HRESULT ClassInfoPart::GetClassInfo(ITypeInfo** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    ComPtr<ITypeInfo> info;
    const HRESULT loaded = loadModuleTypeInfo(clsid_, info);
    *result = info.detach();
    return loaded;
}

HRESULT ClassInfoPart::GetGUID(DWORD kind, GUID* result) {
    if (!result)
        return E_POINTER;
    *result = GUID_NULL;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID)
        return E_INVALIDARG;
    *result = events_;
    return S_OK;
}

HRESULT ErrorInfoPart::InterfaceSupportsErrorInfo(REFIID iid) {
    return std::find(interfaces_.begin(), interfaces_.end(), iid) != interfaces_.end() ? S_OK
                                                                                       : S_FALSE;
}

} // namespace corvina
