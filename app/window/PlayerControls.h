#pragma once

// The child controls of the player window: their places and contents. What they do is decided in
// PlayerWindow.h.

#include "Owners.h"

#include <optional>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

class PlayerControls {
public:
    explicit PlayerControls(HWND parent);
    PlayerControls(const PlayerControls&) = delete;
    PlayerControls& operator=(const PlayerControls&) = delete;

    // Lays all out in the parent's client area; returns the place left for the graph.
    RECT layOut();
    // Pixels of a length that is given for 96 dots an inch.
    [[nodiscard]] int scaled(int length) const noexcept;

    void setHeadline(const std::wstring& title, const std::wstring& details);
    void setTime(const std::wstring& text);
    void setPlaying(bool playing);
    void setMessage(const std::wstring& text);

    // One line for each file. current: the file that plays.
    struct FileLine {
        std::wstring name;
        std::wstring failure; // why it cannot be played; usually empty
    };
    void setFiles(const std::vector<FileLine>& files, std::size_t current);
    // Index of the chosen line; -1 for none.
    [[nodiscard]] int selectedFile() const;
    void selectFile(std::size_t index);

    // The reply to a message about a line of the list that is dragged. Once it is dropped, from and
    // to are its old and its new place.
    struct Drop {
        std::size_t from;
        std::size_t to;
    };
    LRESULT dragMessage(LPARAM information, std::optional<Drop>& drop);

    void setDevices(const std::vector<std::wstring>& names, int selected);
    [[nodiscard]] int selectedDevice() const;
    // Then letters choose an entry instead of being commands.
    [[nodiscard]] bool deviceHasFocus() const;

    void setSeekRange(long seconds);
    void setSeekPosition(long second);
    [[nodiscard]] long seekPosition() const;
    [[nodiscard]] bool isSeekBar(HWND window) const noexcept { return window == seek_; }

private:
    HWND add(DWORD extendedStyle, const wchar_t* kind, const wchar_t* text, DWORD style, int id);
    static void place(HWND control, int left, int top, int width, int height);
    // The buttons and, beside or below them, the devices; returns the height they take.
    int layOutButtons(int left, int top, int width);

    HWND parent_;
    int dpi_;
    Font font_;
    Font boldFont_;
    HWND title_, details_, time_, seek_, previous_, play_, stop_, next_, device_, list_, message_;
};

} // namespace corvina::app
