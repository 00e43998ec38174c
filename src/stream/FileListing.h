#pragma once

// Whether a directory listing of a name finds a file. Wildcards match as they do in any listing. A
// directory is no file; an empty name, one that the ANSI code page cannot spell and one that holds
// a character of code 0 find nothing.

#include "platform/FileApi.h"

#include <string>

namespace corvina {

[[nodiscard]] bool isFileListed(const std::wstring& name, const FileApi& files = systemFileApi);

} // namespace corvina
