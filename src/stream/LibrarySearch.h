#pragma once

// Where optional libraries are looked for. Never in the current folder, unless it is the host
// program's own: while it holds a library, the system's search by name, which goes there too, is
// replaced by one of the program's and the system's folders.

#include "platform/LibraryApi.h"

#include <string>

namespace corvina {

// Loads a library beside the module that holds this code, by its full path, and failing that as the
// system finds it. A name that holds a path is left to the system at once. None if there is no such
// library.
[[nodiscard]] LibraryHandle loadOptionalLibrary(const LibraryApi& api, const std::wstring& name);

// The same for a part of Windows, which does not lie beside this module.
[[nodiscard]] LibraryHandle loadSystemLibrary(const LibraryApi& api, const std::wstring& name);

} // namespace corvina
