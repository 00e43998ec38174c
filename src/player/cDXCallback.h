#pragma once

// A client of sound-card notifications, declared for a kind of output that the player does not
// have. Nothing uses it. It is empty on purpose, and kept because it was declared.

#include <cstdint>
#include <vector>

namespace corvina {

class cDXCallback {
public:
    void OnEvent(std::int32_t eventId) noexcept { static_cast<void>(eventId); }
    [[nodiscard]] const std::vector<std::int32_t>& MyEvents() const noexcept { return myEvents_; }

private:
    std::vector<std::int32_t> myEvents_;
};

} // namespace corvina
