#include "window/FileChoice.h"

#include <cwchar>

#include <commdlg.h>
#include <shellapi.h>

namespace corvina::app {

namespace {

constexpr const wchar_t* kinds =
    L"Audio files\0*.wav;*.mp3;*.wma;*.wmv;*.ogg;*.ape;*.au;*.snd;*.aiff;*.aifc;*.aif;*.voc;*.vox;"
    L"*.cda\0All files\0*.*\0";

} // namespace

std::vector<std::wstring> chooseFiles(HWND owner) {
    // One name, or a folder and the names in it, each behind the other with a zero between.
    std::vector<wchar_t> names(64 * 1024);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = kinds;
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
