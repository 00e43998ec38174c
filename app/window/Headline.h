#pragma once

// What plays, in words: cover, title and format.

#include "window/ChildControls.h"
#include "window/CoverView.h"

#include <string>

namespace corvina::app {

class Headline {
public:
    explicit Headline(const ChildControls& controls);

    void setText(const std::wstring& title, const std::wstring& details);
    void setCover(IPicturePtr picture) { cover_.show(std::move(picture)); }
    [[nodiscard]] const CoverView& cover() const noexcept { return cover_; }
    // Returns the height it takes.
    int layOut(int left, int top, int width);

private:
    const ChildControls& controls_;
    CoverView cover_;
    HWND title_;
    HWND details_;
};

} // namespace corvina::app
