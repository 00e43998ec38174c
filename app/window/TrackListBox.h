#pragma once

// The list of what is queued, whose lines can be dragged to another place.

#include "window/ChildControls.h"

#include <optional>
#include <string>
#include <vector>

namespace corvina::app {

class TrackListBox {
public:
    explicit TrackListBox(const ChildControls& controls);

    [[nodiscard]] HWND window() const noexcept { return list_; }

    // One line for each track. current: the one that plays.
    struct Line {
        std::wstring name;
        std::wstring failure; // why it cannot be played; usually empty
    };
    void setLines(const std::vector<Line>& lines, std::size_t current);
    // Index of the chosen line; -1 for none.
    [[nodiscard]] int selected() const;
    void select(std::size_t index);

    // The reply to a message about a line that is dragged. Once it is dropped, from and to are its
    // old and its new place.
    struct Drop {
        std::size_t from;
        std::size_t to;
    };
    LRESULT dragMessage(LPARAM information, std::optional<Drop>& drop);

private:
    HWND parent_;
    HWND list_;
};

} // namespace corvina::app
