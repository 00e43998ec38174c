#pragma once

// The libraries that decode a kind of file, to say in words which one is missing.

#include <string>

namespace corvina::app {

// For a file for which the control returned this result (comFailure if it raised an error): the
// first library of the file's kind that cannot be loaded, in a sentence. Empty if the result is no
// failure to open, or if no library is missing or another one reads such files too. The control
// must be loaded: its libraries are looked for beside it first.
[[nodiscard]] std::wstring missingLibraryWords(long result, const std::wstring& file);

} // namespace corvina::app
