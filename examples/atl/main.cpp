// Plays an audio file with a picture of the sound:  corvina-atl-example FILE
//
// Each control sits in a window of the class AtlAxWin, the container of the Active Template Library
// that Windows brings along as atl.dll: the window's text names the control. The graph follows the
// player by itself. The program ends with the file, or when its window is closed.
//
// The smart pointers are those that `#import "Corvina.ocx" raw_interfaces_only` makes with Visual
// Studio.

#include <windows.h>

#include <comdef.h>
#include <shellapi.h>

#include <Corvina.h>

#include <cstdio>
#include <cstring>

_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));
_COM_SMARTPTR_TYPEDEF(_cPlayer, __uuidof(_cPlayer));
_COM_SMARTPTR_TYPEDEF(_cAudioGraph, __uuidof(_cAudioGraph));

namespace {

constexpr int failed = 1;

// The two functions of atl.dll that a program needs.
class Containers {
public:
    Containers() {
        const HMODULE atl = LoadLibraryExW(L"atl.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        if (!atl)
            _com_issue_error(HRESULT_FROM_WIN32(GetLastError()));
        load(atl, "AtlAxWinInit", init_);
        load(atl, "AtlAxGetControl", getControl_);
        if (!init_())
            _com_issue_error(E_FAIL);
    }

    // A container in the window with a new control of the class that has this name.
    IUnknownPtr make(HWND parent, const wchar_t* control, RECT place) const {
        const HWND container = CreateWindowExW(
            0, L"AtlAxWin", control, WS_CHILD | WS_VISIBLE, place.left, place.top,
            place.right - place.left, place.bottom - place.top, parent, nullptr, nullptr, nullptr);
        IUnknownPtr made;
        _com_util::CheckError(container ? getControl_(container, &made) : E_FAIL);
        return made;
    }

private:
    template <typename Function>
    static void load(HMODULE library, const char* name, Function& function) {
        const FARPROC found = GetProcAddress(library, name);
        if (!found)
            _com_issue_error(HRESULT_FROM_WIN32(GetLastError()));
        std::memcpy(&function, &found, sizeof function);
    }

    BOOL(WINAPI* init_)() = nullptr;
    HRESULT(WINAPI* getControl_)(HWND, IUnknown**) = nullptr;
};

HWND makeWindow() {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"CorvinaExample";
    RegisterClassExW(&windowClass);
    return CreateWindowExW(0, windowClass.lpszClassName, L"Corvina",
                           WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, 460,
                           220, nullptr, nullptr, windowClass.hInstance, nullptr);
}

// The controls live by messages: they carry the sound and the pictures.
void handleMessagesUntilDone(const _cPlayerPtr& player, HWND window) {
    VARIANT_BOOL playing = VARIANT_TRUE;
    while (IsWindow(window) && SUCCEEDED(player->IsPlaying(&playing)) && playing != VARIANT_FALSE) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

int play(const wchar_t* file) {
    const Containers containers;
    const HWND window = makeWindow();
    // The player is invisible at run time; its container only gives it a place to live.
    const _cPlayerPtr player = containers.make(window, L"Corvina.cPlayer", {0, 0, 0, 0});
    const _cAudioGraphPtr graph =
        containers.make(window, L"Corvina.cAudioGraph", {10, 10, 430, 160});
    long result = 0;
    _com_util::CheckError(player->Init(&result));
    _com_util::CheckError(graph->put_Bands(100));
    _com_util::CheckError(graph->putref_Player(player));
    ShowWindow(window, SW_SHOWNOACTIVATE);

    constexpr long waveMapper = -1;
    constexpr long bufferSize = 0; // without effect
    _com_util::CheckError(player->PlayStart(_bstr_t(file), waveMapper, bufferSize, &result));
    if (result == 0) {
        handleMessagesUntilDone(player, window);
        std::puts("done");
    } else {
        std::printf("could not be played, result %ld\n", result);
    }
    long ignored = 0;
    player->DeInit(&ignored);
    DestroyWindow(window);
    return result == 0 ? 0 : failed;
}

} // namespace

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!arguments || count != 2) {
        std::puts("usage: corvina-atl-example FILE");
        return 2;
    }
    CoInitialize(nullptr);
    int result = failed;
    try {
        result = play(arguments[1]);
    } catch (const _com_error& error) {
        std::printf("error %08lx: is Corvina.ocx registered (regsvr32)?\n",
                    static_cast<unsigned long>(error.Error()));
    }
    CoUninitialize();
    LocalFree(arguments);
    return result;
}
