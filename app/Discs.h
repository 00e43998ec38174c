#pragma once

// The audio discs in the CD drives of this machine, as the track files that the control plays.

#include <string>
#include <vector>

namespace corvina::app {

struct DiscDrive {
    std::wstring name;                // "D:"
    std::vector<std::wstring> tracks; // paths in the order of the disc; none without an audio disc
};

// Every CD drive, in the order of the letters. A drive may take seconds to reply. The system shows
// no message about an empty one.
[[nodiscard]] std::vector<DiscDrive> listDiscDrives();

} // namespace corvina::app
