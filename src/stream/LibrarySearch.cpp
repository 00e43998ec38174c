#include "stream/LibrarySearch.h"

#include "com/Module.h"
#include "platform/AnsiText.h"
#include "platform/ErrorBoxes.h"
#include "platform/FileApi.h"
#include "platform/ModulePath.h"

namespace corvina {
namespace {

// The folder of a module, the host's program if it is null, with a backslash at its end; empty if
// the system does not give it.
std::wstring folderOf(HMODULE module) {
    const std::wstring path = modulePath(module);
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

// With a backslash at its end.
std::wstring currentFolder() {
    std::wstring path(::GetCurrentDirectoryW(0, nullptr), L'\0');
    const DWORD length = ::GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data());
    path.resize(length < path.size() ? length : 0);
    if (!path.empty() && path.back() != L'\\')
        path += L'\\';
    return path;
}

// Whether the system's search by name could end in the current folder. That is often a folder of
// music files of unknown origin, in which somebody may have laid a library under the name of a
// decoder, or of one that a decoder needs.
bool reachesCurrentFolder() {
    const std::wstring folder = currentFolder();
    if (folder.empty())
        return true;
    if (::CompareStringOrdinal(folder.c_str(), -1, folderOf(nullptr).c_str(), -1, TRUE) ==
        CSTR_EQUAL)
        return false; // searched in any case, before all others
    WIN32_FIND_DATAW found{};
    const ListingHandle listing(systemFileApi,
                                ::FindFirstFileW((folder + L"*.dll").c_str(), &found));
    return static_cast<bool>(listing);
}

LibraryHandle loadByName(const LibraryApi& api, const std::wstring& name, bool withCare) {
    if (!withCare)
        return {api, api.loadLibrary(toAnsi(name).text.c_str())};
    // The program's and the system's folders, for what the library needs as well.
    return {api, api.loadLibraryFile(name.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS)};
}

} // namespace

LibraryHandle loadOptionalLibrary(const LibraryApi& api, const std::wstring& name) {
    const NoErrorBoxes quiet;
    if (name.find_first_of(L"\\/:") != std::wstring::npos)
        return loadByName(api, name, false);
    const bool withCare = reachesCurrentFolder();
    if (const std::wstring folder = folderOf(thisModule().handle()); !folder.empty()) {
        // The libraries that it needs in turn are then looked for beside it as well.
        const DWORD flags =
            withCare ? LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS
                     : LOAD_WITH_ALTERED_SEARCH_PATH;
        LibraryHandle beside(api, api.loadLibraryFile((folder + name).c_str(), nullptr, flags));
        if (beside)
            return beside;
    }
    return loadByName(api, name, withCare);
}

LibraryHandle loadSystemLibrary(const LibraryApi& api, const std::wstring& name) {
    const NoErrorBoxes quiet;
    return loadByName(api, name, reachesCurrentFolder());
}

} // namespace corvina
