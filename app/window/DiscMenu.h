#pragma once

// The menu of CD drives and their tracks. It is filled anew each time it opens, because discs come
// and go.

#include "Discs.h"

#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

class DiscMenu {
public:
    // menu: the popup to fill; it must outlive this object.
    explicit DiscMenu(HMENU menu) noexcept : menu_(menu) {}

    [[nodiscard]] bool is(HMENU menu) const noexcept { return menu == menu_; }
    void fill();
    // The track files that a command of this menu stands for; none for any other command.
    [[nodiscard]] std::vector<std::wstring> tracksOf(int command) const;

private:
    void addDrive(std::size_t index);

    HMENU menu_;
    std::vector<DiscDrive> drives_;
};

} // namespace corvina::app
