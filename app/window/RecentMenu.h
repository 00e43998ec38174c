#pragma once

// The menu of the files, folders and lists that were opened last.

#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

class RecentMenu {
public:
    // menu: the popup to fill; it must outlive this object.
    explicit RecentMenu(HMENU menu) noexcept : menu_(menu) {}

    [[nodiscard]] bool is(HMENU menu) const noexcept { return menu == menu_; }
    void fill(const std::vector<std::wstring>& files);
    // The file that a command of this menu stands for; empty for any other command.
    [[nodiscard]] std::wstring fileOf(int command) const;

private:
    HMENU menu_;
    std::vector<std::wstring> files_;
};

} // namespace corvina::app
