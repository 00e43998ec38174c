// corvina-play: plays audio files through the registered Corvina controls, in a window or on the
// terminal.

#include "ConsoleScreen.h"
#include "DecoderLibraries.h"
#include "ErrorWords.h"
#include "FileReport.h"
#include "Interrupt.h"
#include "Options.h"
#include "PlayerClient.h"
#include "Session.h"
#include "UnixPaths.h"

#include <shellapi.h>

#include <memory>

namespace corvina::app {

namespace {

std::vector<std::wstring> commandLine() {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> texts(
        CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
    return texts ? std::vector<std::wstring>(texts.get() + 1, texts.get() + count)
                 : std::vector<std::wstring>();
}

// The apartment in which the control lives.
class Apartment {
public:
    Apartment() {
        if (const HRESULT code = CoInitialize(nullptr); FAILED(code))
            _com_issue_error(code);
    }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

// A program started from the desktop gets a console window of its own, which nobody wants. A
// terminal that a person uses has no such window, or another program in it.
void leaveOwnConsole() {
    DWORD processes[2];
    if (GetConsoleProcessList(processes, 2) == 1 && IsWindowVisible(GetConsoleWindow()))
        FreeConsole();
}

void listDevices(ConsoleScreen& screen) {
    PlayerClient player({});
    screen.line(L"-1  the system's choice");
    for (const OutputDevice& device : player.devices())
        screen.line((device.index < 10 ? L" " : L"") + std::to_wstring(device.index) + L"  " +
                    device.name + L" (" + std::to_wstring(device.channels) + L" channels)");
}

long showInfo(ConsoleScreen& screen, const std::wstring& file) {
    PlayerClient player(
        {{}, [&screen](const ErrorEvent& event) { screen.errorLine(describe(event)); }});
    long result = 0;
    try {
        result = player.open(file);
    } catch (const _com_error& error) {
        screen.errorLine(describe(error));
        result = comFailure;
    }
    if (result != 0) {
        if (const std::wstring words = missingLibraryWords(result, file); !words.empty())
            screen.errorLine(words);
        screen.errorLine(L"  " + file);
        return result;
    }
    for (const std::wstring& line : reportFile(player, file, player.durationMs()))
        screen.line(line);
    return 0;
}

int run(ConsoleScreen& screen) {
    const ParsedOptions parsed =
        parseOptions(commandLine(), runsUnderWine() ? PathStyle::unix : PathStyle::windows);
    if (!parsed.options) {
        const std::wstring text = parsed.text.substr(0, parsed.text.find_last_not_of(L'\n') + 1);
        parsed.exitCode == 0 ? screen.line(text) : screen.errorLine(text);
        return parsed.exitCode;
    }
    const Options& options = *parsed.options;
    try {
        const Apartment apartment;
        const Interrupt interrupt;
        if (options.listDevices)
            listDevices(screen);
        if (!options.infoFile.empty())
            if (const long result = showInfo(screen, options.infoFile); result != 0)
                return static_cast<int>(result);
        if (options.files.empty() && (options.listDevices || !options.infoFile.empty()))
            return 0;
        if (!options.consoleOnly)
            leaveOwnConsole();
        return static_cast<int>(Session(options, screen, interrupt).run());
    } catch (const _com_error& error) {
        screen.errorLine(describe(error));
        return comFailure;
    }
}

} // namespace

} // namespace corvina::app

int main() {
    // Nothing is ever loaded from the current folder, which may be one of music files of unknown
    // origin.
    SetDllDirectoryW(L"");
    corvina::app::ConsoleScreen screen;
    return corvina::app::run(screen);
}
