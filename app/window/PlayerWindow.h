#pragma once

// The player's window over both controls: list, transport, seek bar, live graph, device, tags.
//
// It shows a queue that it does not own and must not outlive. One thread.

#include "Options.h"
#include "PlayQueue.h"
#include "window/DeviceChoice.h"
#include "window/DiscMenu.h"
#include "window/GraphView.h"
#include "window/PlayerControls.h"
#include "window/QueueView.h"
#include "window/RecentMenu.h"
#include "window/Settings.h"

#include <memory>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::app {

class PlayerWindow {
public:
    PlayerWindow(PlayQueue& queue, const Options& options);
    ~PlayerWindow();
    PlayerWindow(const PlayerWindow&) = delete;
    PlayerWindow& operator=(const PlayerWindow&) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return open_; }
    [[nodiscard]] HWND handle() const noexcept { return window_; }

    // Whether the message was a key for this window.
    [[nodiscard]] bool translate(MSG& message);

    // To be called from the queue's handlers.
    void onStarted();
    void onEnded();
    void onFailed(const std::wstring& words);

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam);
    void onCommand(int command, int notification);
    void onTimer();
    void close();

    void addFiles(std::vector<std::wstring> files, bool replace);
    // Files, folders and lists that the user chose.
    void openPaths(const std::vector<std::wstring>& paths, bool replace);
    void moveFile(std::size_t from, std::size_t to);
    void moveSelected(int lines);
    LRESULT onDrag(LPARAM information);
    // Takes shuffle and repeat over into the queue and the menu.
    void showModes();
    void playSelected();
    void playOrPause();
    void setGraphStyle(AudioGraphStyle style);
    void changeColor(DWORD Settings::*color);
    void applyColors();

    [[nodiscard]] RECT firstPlace() const;

    PlayQueue& queue_;
    Settings settings_;
    const bool forPicture_; // nobody uses the window, and it saves no settings
    HWND window_ = nullptr;
    HACCEL keys_;
    DiscMenu discs_{nullptr};
    RecentMenu recent_{nullptr};
    UINT dragMessage_ = 0;
    std::unique_ptr<PlayerControls> controls_;
    std::unique_ptr<GraphView> graph_;
    std::unique_ptr<DeviceChoice> devices_;
    std::unique_ptr<QueueView> view_;
    bool open_ = true;
    bool closeWanted_ = false; // while the graph draws
};

} // namespace corvina::app
