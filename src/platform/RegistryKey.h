#pragma once

// The owner of an open key of the registry.

#include "platform/UniqueHandle.h"

#include <windows.h>

namespace corvina {

struct RegistryKeyTraits {
    using Handle = HKEY;
    static constexpr Handle none = nullptr;
    static void close(Handle key) noexcept { ::RegCloseKey(key); }
};
using RegistryKey = UniqueHandle<RegistryKeyTraits>;

} // namespace corvina
