#pragma once

// The libraries that decode a kind of file, for telling in words which one is missing.

#include <string>

namespace corvina::app {

// For a file that the control answered with this result (comFailure where it raised an error): the
// first of its kind's libraries that cannot be loaded, in a sentence. Empty where the result is no
// failure to open, or no library is missing. The control must be in use, for its libraries are
// looked for beside it first.
[[nodiscard]] std::wstring missingLibraryWords(long result, const std::wstring& file);

} // namespace corvina::app
