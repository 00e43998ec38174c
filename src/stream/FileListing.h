#pragma once

// Whether a directory listing of a name finds a file. Wildcards match as they do in any listing. A
// directory is no file; an empty name, one that holds a character of code 0 and the name of a
// device find nothing.

#include "platform/FileApi.h"

#include <string>

namespace corvina {

[[nodiscard]] bool isFileListed(const std::wstring& path, const FileApi& files = systemFileApi);

} // namespace corvina
