#include "stream/LibrarySearch.h"

#include "com/Module.h"
#include "platform/AnsiText.h"
#include "platform/ErrorBoxes.h"

namespace corvina {
namespace {

// The folder of this module with a backslash at its end; empty if the system does not give it.
std::wstring moduleFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(thisModule().handle(), path.data(),
                                                  static_cast<DWORD>(path.size()));
        if (length == 0)
            return {};
        if (length < path.size()) {
            path.resize(length);
            return path.substr(0, path.find_last_of(L'\\') + 1);
        }
        path.resize(path.size() * 2);
    }
}

} // namespace

LibraryHandle loadOptionalLibrary(const LibraryApi& api, const std::wstring& name) {
    const bool hasPath = name.find_first_of(L"\\/:") != std::wstring::npos;
    const std::wstring folder = hasPath ? std::wstring() : moduleFolder();
    const NoErrorBoxes quiet;
    if (!folder.empty()) {
        // The libraries that it needs in turn are then looked for beside it as well.
        LibraryHandle beside(api, api.loadLibraryFile((folder + name).c_str(), nullptr,
                                                      LOAD_WITH_ALTERED_SEARCH_PATH));
        if (beside)
            return beside;
    }
    return {api, api.loadLibrary(toAnsi(name).text.c_str())};
}

} // namespace corvina
