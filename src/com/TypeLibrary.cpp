#include "com/TypeLibrary.h"

#include "com/Module.h"

#include <iterator>
#include <oleauto.h>

namespace corvina {

HRESULT loadModuleTypeLibrary(ComPtr<ITypeLib>& library) noexcept {
    wchar_t path[MAX_PATH * 4];
    const DWORD length =
        ::GetModuleFileNameW(thisModule().handle(), path, static_cast<DWORD>(std::size(path)));
    if (length == 0 || length >= std::size(path))
        return TYPE_E_CANTLOADLIBRARY;
    return ::LoadTypeLibEx(path, REGKIND_NONE, library.put());
}

HRESULT loadModuleTypeInfo(REFGUID guid, ComPtr<ITypeInfo>& info) noexcept {
    ComPtr<ITypeLib> library;
    const HRESULT result = loadModuleTypeLibrary(library);
    return FAILED(result) ? result : library->GetTypeInfoOfGuid(guid, info.put());
}

} // namespace corvina
