#pragma once

// Shows a block of 16-bit samples to an observer as an array by reference, without a copy. The
// descriptor is fixed and locked: nobody can free or resize the samples through it.

#include <cstddef>
#include <cstdint>
#include <oaidl.h>
#include <windows.h>

namespace corvina {

class SampleArray {
public:
    // The descriptor of that many samples, index base 0; good until the next call.
    [[nodiscard]] SAFEARRAY* view(std::int16_t* samples, std::size_t count) noexcept;
    // After an observer had it by reference: frees an array that it put in the descriptor's place.
    void takeBack(SAFEARRAY* returned) noexcept;

private:
    // An array that knows its element type keeps it in the 32 bits before its descriptor.
    struct {
        std::uint32_t reserved[3];
        std::uint32_t elementType;
        SAFEARRAY descriptor;
    } block_{};
};

} // namespace corvina
