#pragma once

// A host of the player without COM: a window, the client that carries its messages to the player,
// and a record of the events.

#include "player/Player.h"
#include "support/HiddenWindow.h"
#include "support/MessagePump.h"
#include "support/SubclassClient.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace corvina::test {

class BarePlayer final : public PlayerEvents {
public:
    explicit BarePlayer(const PlayerPlatform& platform = {}, cCallback* observer = nullptr)
        : player(*this, observer, platform) {}

    // "FunctionName|number|description" for an Err, "DonePlay" for the end.
    std::vector<std::wstring> events;
    // "Ended 0", "State 1", "Position 250", "Next song.wav" in order.
    std::vector<std::wstring> progress;
    std::function<void(const std::wstring&)> onErr;
    std::function<void()> onDonePlay;
    std::function<void(const std::wstring&)> onProgress;

    HiddenWindow window;
    SubclassClient client{[this](HWND, UINT message, WPARAM, LPARAM) {
        player.handleMessage(message);
        return 0L;
    }};
    Player player;

    std::int32_t init() { return player.Init(window.handle(), client); }

    void Err(const std::wstring& functionName, std::int32_t number,
             const std::wstring& description) noexcept override {
        events.push_back(functionName + L"|" + std::to_wstring(number) + L"|" + description);
        if (onErr)
            onErr(functionName);
    }
    void DonePlay() noexcept override {
        events.emplace_back(L"DonePlay");
        if (onDonePlay)
            onDonePlay();
    }

    void Ended(PlayEndReason reason) noexcept override {
        report(L"Ended " + std::to_wstring(reason));
    }
    void StateChanged(PlayState state) noexcept override {
        report(L"State " + std::to_wstring(state));
    }
    void PositionChanged(std::int32_t milliseconds) noexcept override {
        report(L"Position " + std::to_wstring(milliseconds));
    }
    void NextStarted(const std::wstring& file) noexcept override {
        report(L"Next " + file.substr(file.find_last_of(L'\\') + 1));
    }

    [[nodiscard]] long countOf(const std::wstring& event) const {
        return static_cast<long>(std::count(events.begin(), events.end(), event));
    }

private:
    void report(const std::wstring& event) {
        progress.push_back(event);
        if (onProgress)
            onProgress(event);
    }
};

} // namespace corvina::test
