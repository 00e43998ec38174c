// Plays a WAV file and waits for its end:  corvina-example FILE
//
// The whole of what a C++ host needs: create the control, initialise it, start, handle messages
// until it is done. Corvina.h is generated from the type library's source; with Visual Studio
// `#import "Corvina.ocx"` does as well. For the events see app/PlayerEvents.h.

#include <windows.h>

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

long play(_cPlayer& player, const wchar_t* file) {
    constexpr long waveMapper = -1;
    constexpr long bufferSize = 0; // without effect
    long result = 0;
    player.Init(&result);
    const BSTR name = SysAllocString(file);
    player.PlayStart(name, waveMapper, bufferSize, &result);
    SysFreeString(name);
    if (result == 0)
        handleMessagesUntilDone(player);
    long ignored = 0;
    player.DeInit(&ignored);
    return result;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::puts("usage: corvina-example FILE");
        return 2;
    }
    wchar_t file[MAX_PATH];
    MultiByteToWideChar(CP_ACP, 0, arguments[1], -1, file, MAX_PATH);

    CoInitialize(nullptr);
    _cPlayer* player = nullptr;
    if (FAILED(CoCreateInstance(__uuidof(cPlayer), nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(_cPlayer), reinterpret_cast<void**>(&player)))) {
        std::puts("Corvina.ocx is not registered: run regsvr32 Corvina.ocx.");
        return 1;
    }
    const long result = play(*player, file);
    player->Release();
    CoUninitialize();
    if (result != 0)
        std::printf("could not be played, result %ld\n", result);
    return static_cast<int>(result);
}
