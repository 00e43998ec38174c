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
    std::function<void(const std::wstring&)> onErr;
    std::function<void()> onDonePlay;

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

    [[nodiscard]] long countOf(const std::wstring& event) const {
        return static_cast<long>(std::count(events.begin(), events.end(), event));
    }
};

} // namespace corvina::test
