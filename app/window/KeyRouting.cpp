#include "window/KeyRouting.h"

#include <cwchar>
#include <iterator>

#include <commctrl.h>

namespace corvina::app {

bool belongsToFocus(const MSG& message) {
    if (message.message != WM_KEYDOWN || GetKeyState(VK_CONTROL) < 0)
        return false;
    wchar_t kind[32] = L"";
    GetClassNameW(message.hwnd, kind, static_cast<int>(std::size(kind)));
    const auto is = [&kind](const wchar_t* name) { return _wcsicmp(kind, name) == 0; };
    const WPARAM key = message.wParam;
    const bool upOrDown = key == VK_UP || key == VK_DOWN;
    if (is(L"COMBOBOX") || is(L"ComboLBox")) // in an open list Enter chooses
        return upOrDown || key == VK_RETURN || (key >= L'A' && key <= L'Z');
    if (is(TRACKBAR_CLASSW))
        return upOrDown || key == VK_LEFT || key == VK_RIGHT;
    if (is(L"LISTBOX"))
        return upOrDown;
    return is(L"BUTTON") && key == VK_SPACE;
}

} // namespace corvina::app
