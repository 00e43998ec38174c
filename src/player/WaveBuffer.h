#pragma once

// One slot of the output ring: the device's buffer header together with the samples it points at.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>
#include <windows.h>

#include <mmsystem.h>

namespace corvina {

struct WaveBuffer {
    WAVEHDR header{};
    std::vector<std::int16_t> data;
    std::int32_t dataAddress = 0; // the same as header.lpData

    WaveBuffer() = default;
    // The device knows the header and the samples by their addresses.
    WaveBuffer(const WaveBuffer&) = delete;
    WaveBuffer& operator=(const WaveBuffer&) = delete;

    // Gives the slot its samples, all silent.
    void allocate(std::size_t bytes, std::size_t index) {
        data.assign(bytes / sizeof(std::int16_t), 0);
        dataAddress = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(data.data()));
        header = {};
        header.lpData = reinterpret_cast<LPSTR>(data.data());
        header.dwBufferLength = static_cast<DWORD>(bytes);
        header.dwUser = index;
    }
};

// Nine records of which eight are played. The ninth is never given samples, prepared or queued; it
// exists because stopping unprepares it in place of the others.
inline constexpr std::size_t playedBuffers = 8;
inline constexpr std::size_t spareBuffer = 8;
using WaveRing = std::array<WaveBuffer, 9>;

} // namespace corvina
