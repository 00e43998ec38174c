#include "window/RecentMenu.h"

#include "window/Commands.h"

namespace corvina::app {

void RecentMenu::fill(const std::vector<std::wstring>& files) {
    while (DeleteMenu(menu_, 0, MF_BYPOSITION)) {
    }
    files_ = files;
    for (std::size_t index = 0; index < files_.size(); ++index) {
        // An ampersand would underline the letter behind it.
        std::wstring text = std::to_wstring(index + 1) + L"  ";
        for (const wchar_t letter : files_[index])
            text.append(letter == L'&' ? 2 : 1, letter);
        AppendMenuW(menu_, MF_STRING, CMD_RECENT + index, text.c_str());
    }
    if (files_.empty())
        AppendMenuW(menu_, MF_STRING | MF_GRAYED, CMD_NO_RECENT, L"No recent file");
}

std::wstring RecentMenu::fileOf(int command) const {
    const auto index = static_cast<std::size_t>(command - CMD_RECENT);
    return command >= CMD_RECENT && index < files_.size() ? files_[index] : std::wstring();
}

} // namespace corvina::app
