#include "platform/ModulePath.h"

namespace corvina {

std::wstring modulePath(HMODULE module) {
    constexpr DWORD longestPath = 32768;
    std::wstring path(longestPath, L'\0');
    path.resize(::GetModuleFileNameW(module, path.data(), longestPath));
    path.shrink_to_fit();
    return path;
}

} // namespace corvina
