#pragma once

// Where the file of a loaded module lies. Throws std::bad_alloc alone.

#include <string>
#include <windows.h>

namespace corvina {

// The path of a module, of the host's program if it is null; empty if there is no such module.
[[nodiscard]] std::wstring modulePath(HMODULE module);

} // namespace corvina
