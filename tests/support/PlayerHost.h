#pragma once

// A host of the registered player control, as a C++ program is one: created through COM, its events
// logged in the order in which they come. One thread, which must pump messages (MessagePump.h).

#include "PlayerClient.h"
#include "support/MessagePump.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace corvina::test {

struct LoggedEvent {
    std::wstring name; // "Err" or "DonePlay"
    std::wstring function;
    long number = 0;
    std::wstring description;
    friend bool operator==(const LoggedEvent&, const LoggedEvent&) = default;
};
std::ostream& operator<<(std::ostream& out, const LoggedEvent& event);

// What every playback ends with, whatever ended it: the control resets its device once more after
// that was closed and reports the result, then raises DonePlay.
[[nodiscard]] std::vector<LoggedEvent> endOfPlayback();

class PlayerHost {
public:
    using OnEvent = std::function<void(const LoggedEvent&)>;

    // Creates and initialises the control.
    explicit PlayerHost(OnEvent onEvent = {});
    ~PlayerHost();
    PlayerHost(const PlayerHost&) = delete;
    PlayerHost& operator=(const PlayerHost&) = delete;

    // The interface, or null after release().
    [[nodiscard]] _cPlayer* control() const noexcept { return player_.GetInterfacePtr(); }

    long start(const std::wstring& file, long device = -1);
    long stop();
    long pause();
    long goOn();
    long seek(long seconds);
    [[nodiscard]] long position();
    [[nodiscard]] double duration();
    [[nodiscard]] bool isPlaying();

    // Lets go of the control without DeInit; its events still arrive while it lives.
    void release();

    [[nodiscard]] const std::vector<LoggedEvent>& events() const noexcept { return events_; }
    [[nodiscard]] std::size_t donePlays() const;
    // Whether DonePlay has come that many times before the deadline.
    [[nodiscard]] bool waitForDone(std::size_t times = 1, std::chrono::milliseconds deadline = 30s);

private:
    void log(const LoggedEvent& event);

    OnEvent onEvent_;
    std::vector<LoggedEvent> events_;
    app::_cPlayerPtr player_;
    app::IConnectionPointPtr point_;
    app::PlayerEvents* sink_;
    DWORD connection_ = 0;
};

} // namespace corvina::test
