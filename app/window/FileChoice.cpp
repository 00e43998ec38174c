#include "window/FileChoice.h"

#include "FileLists.h"

#include <cwchar>

#include <commdlg.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

namespace corvina::app {

std::wstring kindsOfFiles(const std::wstring& audioPatterns) {
    std::wstring kinds;
    const std::wstring lists = fileListPatterns();
    for (const std::wstring& text :
         {std::wstring(L"Audio files and lists"), audioPatterns + L";" + lists,
          std::wstring(L"Lists"), lists, std::wstring(L"All files"), std::wstring(L"*.*")})
        kinds.append(text).push_back(L'\0');
    return kinds;
}

std::vector<std::wstring> chooseFiles(HWND owner, const std::wstring& audioPatterns) {
    // One name, or a folder and the names in it, each behind the other with a zero between.
    std::vector<wchar_t> names(64 * 1024);
    const std::wstring kinds = kindsOfFiles(audioPatterns);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = kinds.c_str();
    dialog.lpstrFile = names.data();
    dialog.nMaxFile = static_cast<DWORD>(names.size());
    dialog.Flags = OFN_EXPLORER | OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY |
                   OFN_NOCHANGEDIR;
    if (!GetOpenFileNameW(&dialog))
        return {};
    const std::wstring first = names.data();
    const wchar_t* name = names.data() + first.size() + 1;
    if (*name == L'\0')
        return {first};
    std::vector<std::wstring> files;
    for (; *name != L'\0'; name += std::wcslen(name) + 1)
        files.push_back(first + L"\\" + name);
    return files;
}

std::wstring chooseFolder(HWND owner) {
    BROWSEINFOW dialog{};
    dialog.hwndOwner = owner;
    dialog.lpszTitle = L"A folder of music";
    dialog.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    const PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&dialog);
    wchar_t path[MAX_PATH] = L"";
    if (chosen && !SHGetPathFromIDListW(chosen, path))
        path[0] = L'\0';
    CoTaskMemFree(chosen);
    return path;
}

std::optional<COLORREF> chooseColor(HWND owner, COLORREF present) {
    static COLORREF custom[16];
    CHOOSECOLORW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.rgbResult = present;
    dialog.lpCustColors = custom;
    dialog.Flags = CC_RGBINIT | CC_FULLOPEN;
    if (!ChooseColorW(&dialog))
        return std::nullopt;
    return dialog.rgbResult;
}

std::vector<std::wstring> takeDroppedFiles(HANDLE drop) {
    const auto handle = static_cast<HDROP>(drop);
    std::vector<std::wstring> files(DragQueryFileW(handle, 0xffffffff, nullptr, 0));
    for (UINT index = 0; index < files.size(); ++index) {
        std::wstring& file = files[index];
        file.resize(DragQueryFileW(handle, index, nullptr, 0));
        DragQueryFileW(handle, index, file.data(), static_cast<UINT>(file.size() + 1));
    }
    DragFinish(handle);
    return files;
}

} // namespace corvina::app
