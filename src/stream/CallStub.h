#pragma once

// The machine code through which cDLL calls an export with 32-bit arguments.
//
// The code is run as a window procedure: on entry the stack holds a return address and four
// window-procedure arguments, and the value it leaves in eax is the result.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace corvina {

struct CallStub {
    static constexpr std::size_t maxArguments = 44;

    std::array<std::uint8_t, 236> bytes{};
    std::size_t length = 0; // of the code at the start of bytes

    [[nodiscard]] std::span<const std::uint8_t> code() const noexcept {
        return std::span(bytes).first(length);
    }
};

// For an export that removes its arguments itself. address is where the code will lie: the call in
// it is relative. More than maxArguments arguments raise Subscript out of range.
[[nodiscard]] CallStub makeStdcallStub(std::uint32_t address, std::uint32_t target,
                                       std::span<const std::int32_t> arguments);

// For an export that leaves its arguments on the stack.
[[nodiscard]] CallStub makeCdeclStub(std::uint32_t target, std::span<const std::int32_t> arguments);

} // namespace corvina
