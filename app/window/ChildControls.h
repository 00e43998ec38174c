#pragma once

// Makes the child controls of the player window, with its font and sizes, and lays them out.

#include "Owners.h"

#include <span>
#include <string>
#include <windows.h>

namespace corvina::app {

class ChildControls {
public:
    // Of the window that the controls are made in.
    explicit ChildControls(HWND parent);
    ChildControls(const ChildControls&) = delete;
    ChildControls& operator=(const ChildControls&) = delete;

    HWND add(const wchar_t* kind, const wchar_t* text, DWORD style, int id = 0,
             DWORD extendedStyle = 0) const;
    HWND addLabel(const wchar_t* text, DWORD style = 0) const;
    // A slider, whose name only screen readers say.
    HWND addSlider(const wchar_t* name, DWORD style, int id, int least, int most) const;

    [[nodiscard]] HWND parent() const noexcept { return parent_; }
    [[nodiscard]] HFONT boldFont() const noexcept { return boldFont_.get(); }
    // Pixels of a length that is given for 96 dots an inch.
    [[nodiscard]] int scaled(int length) const noexcept;

private:
    HWND parent_;
    int dpi_;
    Font font_;
    Font boldFont_;
};

// Gives a control the name that screen readers say.
void setAccessibleName(HWND control, const std::wstring& name);

// Sets a control's text, without flicker if it is the same.
void setText(HWND control, const std::wstring& text);

// Moves a control; a negative size counts as none.
void place(HWND control, int left, int top, int width, int height);

// A control in a row: its least width and the one it should have.
struct RowItem {
    HWND window;
    int least;
    int wanted;
    int height;
    int listHeight = 0; // of a list that opens below it
};

// Lays controls out from left to right, in as many rows as they need, and the last one of each row
// to the right end if all have what they want. Returns the height of the rows.
int layOutRows(std::span<const RowItem> items, int left, int top, int width, int gap);

} // namespace corvina::app
