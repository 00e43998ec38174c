#include "com/ClassParts.h"

#include "com/TypeLibrary.h"

#include <algorithm>

namespace corvina {

HRESULT ClassInfoPart::GetClassInfo(ITypeInfo** result) {
    return enterFilling(result, [&] {
        ComPtr<ITypeInfo> info;
        const HRESULT loaded = loadModuleTypeInfo(clsid_, info);
        *result = info.detach();
        return loaded;
    });
}

HRESULT ClassInfoPart::GetGUID(DWORD kind, GUID* result) {
    return enterFilling(result, [&] {
        if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID)
            return E_INVALIDARG;
        *result = events_;
        return S_OK;
    });
}

HRESULT ErrorInfoPart::InterfaceSupportsErrorInfo(REFIID iid) {
    return std::find(interfaces_.begin(), interfaces_.end(), iid) != interfaces_.end() ? S_OK
                                                                                       : S_FALSE;
}

} // namespace corvina
