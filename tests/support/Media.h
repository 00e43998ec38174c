#pragma once

// Where the test programs find the media that tests/media/make-media made. They run in
// build/mingw/tests; the path is relative because a Windows program cannot use an absolute Unix
// path.

#include <string>

namespace corvina::test {

[[nodiscard]] inline std::wstring mediaFile(const std::wstring& name) {
    return L"..\\..\\media\\" + name;
}

} // namespace corvina::test
