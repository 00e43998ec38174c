#include "ConsoleScreen.h"

#include "Unicode.h"

namespace corvina::app {

namespace {

bool isTerminal(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

} // namespace

ConsoleScreen::ConsoleScreen()
    : output_(GetStdHandle(STD_OUTPUT_HANDLE)), errors_(GetStdHandle(STD_ERROR_HANDLE)),
      terminal_(isTerminal(output_)) {}

ConsoleScreen::~ConsoleScreen() {
    clearStatus();
}

void ConsoleScreen::write(HANDLE output, std::wstring_view text) {
    DWORD written = 0;
    if (isTerminal(output)) {
        WriteConsoleW(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    } else {
        const std::string bytes = toUtf8(text);
        WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    }
}

void ConsoleScreen::line(std::wstring_view text) {
    clearStatus();
    write(output_, std::wstring(text) + L"\n");
}

void ConsoleScreen::errorLine(std::wstring_view text) {
    clearStatus();
    write(errors_, std::wstring(text) + L"\n");
}

void ConsoleScreen::status(std::wstring_view text) {
    if (!terminal_ || text == shown_)
        return;
    std::wstring line = L"\r" + std::wstring(text);
    if (shown_.size() > text.size()) // blot out the rest of a longer one
        line.append(shown_.size() - text.size(), L' ');
    write(output_, line);
    shown_ = text;
}

void ConsoleScreen::clearStatus() {
    if (shown_.empty())
        return;
    status({});
    write(output_, L"\r");
}

std::size_t ConsoleScreen::statusColumns() const {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!terminal_ || !GetConsoleScreenBufferInfo(output_, &info))
        return 0;
    // The last column stays free: a terminal may begin a new line after writing to it.
    const int columns = info.srWindow.Right - info.srWindow.Left;
    return columns > 0 ? static_cast<std::size_t>(columns) : 0;
}

} // namespace corvina::app
