#pragma once

// The terminal, or the pipe or file that stands in for it.
//
// On a terminal a status line stays below the printed lines and is rewritten in place; into a pipe
// or file, as UTF-8, only the lines go. One thread.

#include <windows.h>

#include <string>
#include <string_view>

namespace corvina::app {

class ConsoleScreen {
public:
    ConsoleScreen();
    ~ConsoleScreen();
    ConsoleScreen(const ConsoleScreen&) = delete;
    ConsoleScreen& operator=(const ConsoleScreen&) = delete;

    void line(std::wstring_view text);
    // A line about what went wrong goes to standard error.
    void errorLine(std::wstring_view text);

    void status(std::wstring_view text);
    void clearStatus();
    // Columns that a status line may have; 0 if none is shown.
    [[nodiscard]] std::size_t statusColumns() const;

private:
    static void write(HANDLE output, std::wstring_view text);

    HANDLE output_;
    HANDLE errors_;
    bool terminal_;
    std::wstring shown_; // the status on the screen
};

} // namespace corvina::app
