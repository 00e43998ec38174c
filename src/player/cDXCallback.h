#pragma once

// A client of sound-card notifications that was declared for a kind of output the player does not
// have. Nothing uses it; it is kept empty, as declared, for the code that may.

#include <cstdint>
#include <vector>

namespace corvina {

class cDXCallback {
public:
    void OnEvent(std::int32_t eventid) noexcept { static_cast<void>(eventid); }
    [[nodiscard]] const std::vector<std::int32_t>& MyEvents() const noexcept { return myEvents_; }

private:
    std::vector<std::int32_t> myEvents_;
};

} // namespace corvina
