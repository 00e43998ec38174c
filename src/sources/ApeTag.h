#pragma once

// The APE tag at the end of a file.

#include "stream/FileAccess.h"
#include "stream/StrmTags.h"

#include <string>

namespace corvina {

// Adds the text items of the tag whose footer ends the file, in their order, each key and value up
// to its first character of code 0, byte by byte in the ANSI code page. Adds nothing if there is
// no such footer; a tag that is damaged, or larger than any text needs, gives the items before the
// damage or none.
void readApeTag(const FileAccess& access, const std::wstring& path, StrmTags& tags);

} // namespace corvina
