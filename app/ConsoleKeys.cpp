#include "ConsoleKeys.h"

namespace corvina::app {

namespace {

std::optional<Key> meaningOf(const KEY_EVENT_RECORD& event) {
    switch (event.wVirtualKeyCode) {
    case VK_LEFT:
        return Key::back;
    case VK_RIGHT:
        return Key::forward;
    case VK_UP:
        return Key::louder;
    case VK_DOWN:
        return Key::quieter;
    default:
        break;
    }
    switch (event.uChar.UnicodeChar) {
    case L' ':
        return Key::pause;
    case L'n':
    case L'N':
        return Key::next;
    case L'p':
    case L'P':
        return Key::previous;
    case L'h':
    case L'H':
        return Key::shuffle;
    case L'r':
    case L'R':
        return Key::repeat;
    case L'l':
    case L'L':
        return Key::loop;
    case L'+':
        return Key::louder;
    case L'-':
        return Key::quieter;
    case L'm':
    case L'M':
        return Key::mute;
    case L's':
    case L'S':
        return Key::stop;
    case L'q':
    case L'Q':
        return Key::quit;
    default:
        return std::nullopt;
    }
}

} // namespace

ConsoleKeys::ConsoleKeys() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    if (GetConsoleMode(input, &oldMode_) && SetConsoleMode(input, ENABLE_PROCESSED_INPUT))
        input_ = input;
}

ConsoleKeys::~ConsoleKeys() {
    if (input_)
        SetConsoleMode(input_, oldMode_);
}

std::optional<Key> ConsoleKeys::next() {
    DWORD waiting = 0;
    while (input_ && GetNumberOfConsoleInputEvents(input_, &waiting) && waiting > 0) {
        INPUT_RECORD record{};
        DWORD read = 0;
        if (!ReadConsoleInputW(input_, &record, 1, &read) || read == 0)
            break;
        if (record.EventType != KEY_EVENT || !record.Event.KeyEvent.bKeyDown)
            continue;
        if (const std::optional<Key> key = meaningOf(record.Event.KeyEvent))
            return key;
    }
    return std::nullopt;
}

} // namespace corvina::app
