#pragma once

// The type library embedded in this module; never the registered one, which may be another
// version's.

#include "com/ComPtr.h"

#include <oaidl.h>

namespace corvina {

// Null, with the reason in the result, if the module holds no such library or description.
[[nodiscard]] HRESULT loadModuleTypeLibrary(ComPtr<ITypeLib>& library) noexcept;
[[nodiscard]] HRESULT loadModuleTypeInfo(REFGUID guid, ComPtr<ITypeInfo>& info) noexcept;

} // namespace corvina
