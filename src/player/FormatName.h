#pragma once

#include "platform/FileApi.h"

#include <string>

namespace corvina {

// The format of an opened file in words, by what it holds; only files that do not say it themselves
// are named by their extension.
[[nodiscard]] std::wstring formatName(const std::wstring& file,
                                      const FileApi& files = systemFileApi);

} // namespace corvina
