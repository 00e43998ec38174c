#pragma once

// The player's window over both controls: list, transport, seek bar, sound, live graph, device,
// tags.
//
// It shows a queue that it does not own and must not outlive. One thread.

#include "Options.h"
#include "PlayQueue.h"
#include "window/DeviceChoice.h"
#include "window/DiscMenu.h"
#include "window/GraphChoices.h"
#include "window/GraphView.h"
#include "window/PlayerControls.h"
#include "window/QueueView.h"
#include "window/RecentMenu.h"
#include "window/Settings.h"
#include "window/SoundControls.h"

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
    void onNoticed(const std::wstring& words);
    void onProgress();
    void onStateChanged();

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam);
    void onCommand(int command, int notification);
    bool carryOut(int command);
    bool carryOutForList(int command);
    void onNotification(int control, int notification);
    void onSlider(HWND slider, int request);
    bool onMediaKey(int key);
    void onMenuOpens(HMENU menu);
    void layOut();
    // Makes the window as large as it has to be.
    void enlarge();
    [[nodiscard]] SIZE leastSize() const;
    void close();

    void addTracks(std::vector<Track> tracks, bool replace);
    // Files, folders and lists that the user chose.
    void openPaths(const std::vector<std::wstring>& paths, bool replace);
    void moveTrack(std::size_t from, std::size_t to);
    void moveSelected(int lines);
    LRESULT onDrag(LPARAM information);
    // Switches shuffle, repeat or loop, and takes all over into the queue and the menu.
    void toggle(bool Settings::*mode);
    void showModes();
    void playSelected();
    void playOrPause();

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
    std::unique_ptr<GraphChoices> graphChoices_;
    std::unique_ptr<SoundControls> sound_;
    std::unique_ptr<DeviceChoice> devices_;
    std::unique_ptr<QueueView> view_;
    std::wstring audioPatterns_; // of the files that can be played
    bool open_ = true;
    bool usesMouse_ = false; // since the last key
};

} // namespace corvina::app
