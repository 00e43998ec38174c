#pragma once

// Where optional libraries are looked for.

#include "platform/LibraryApi.h"

#include <string>

namespace corvina {

// Loads a library beside the module that holds this code, by its full path, and failing that as the
// system finds it. A name that holds a path is left to the system at once. None if there is no such
// library.
[[nodiscard]] LibraryHandle loadOptionalLibrary(const LibraryApi& api, const std::wstring& name);

} // namespace corvina
