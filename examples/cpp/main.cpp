// Plays a WAV file and waits for its end:  corvina-example FILE
//
// The whole of what a C++ host needs: create the control, initialise it, start, handle messages
// until it is done. Corvina.h is generated from the type library's source; with Visual Studio
// `#import "Corvina.ocx"` does as well. For the events see app/PlayerEvents.h.

#include <windows.h>

#include <shellapi.h>

#include <Corvina.h>

#include <cstdio>

namespace {

// The control is filled and emptied by messages to its window: while nothing handles them, nothing
// is heard.
void handleMessagesUntilDone(_cPlayer& player) {
    VARIANT_BOOL playing = VARIANT_TRUE;
    while (SUCCEEDED(player.IsPlaying(&playing)) && playing != VARIANT_FALSE) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

// Shows the words of an error that a member raised.
void showError() {
    IErrorInfo* error = nullptr;
    BSTR words = nullptr;
    if (GetErrorInfo(0, &error) == S_OK) {
        error->GetDescription(&words);
        error->Release();
    }
    std::printf("error: %ls\n", words ? words : L"unknown");
    SysFreeString(words);
}

int play(_cPlayer& player, const wchar_t* file) {
    constexpr long waveMapper = -1;
    constexpr long bufferSize = 0; // without effect
    constexpr int failed = 1;
    long result = 0;
    HRESULT outcome = player.Init(&result);
    if (SUCCEEDED(outcome)) {
        const BSTR name = SysAllocString(file);
        outcome = player.PlayStart(name, waveMapper, bufferSize, &result);
        SysFreeString(name);
    }
    if (FAILED(outcome)) {
        showError();
    } else if (result != 0) {
        std::printf("could not be played, result %ld\n", result);
    } else {
        handleMessagesUntilDone(player);
        std::puts("done");
    }
    long ignored = 0;
    player.DeInit(&ignored);
    return SUCCEEDED(outcome) && result == 0 ? 0 : failed;
}

} // namespace

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!arguments || count != 2) {
        std::puts("usage: corvina-example FILE");
        return 2;
    }

    CoInitialize(nullptr);
    _cPlayer* player = nullptr;
    if (FAILED(CoCreateInstance(__uuidof(cPlayer), nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(_cPlayer), reinterpret_cast<void**>(&player)))) {
        std::puts("Corvina.ocx is not registered: run regsvr32 Corvina.ocx.");
        return 1;
    }
    const int result = play(*player, arguments[1]);
    player->Release();
    CoUninitialize();
    LocalFree(arguments);
    return result;
}
