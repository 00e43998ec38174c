#pragma once

// Memory for small pieces of generated machine code.
//
// No address is ever writable and executable at once: the pages are mapped twice, once to be
// written and once to be run. Changing the protection of one mapping before and after each use
// would cost fifty times as much as the call that the code makes.
//
// A piece is taken for one use and then given back. A use inside another use, or on another thread,
// gets a piece of its own. Throws bad_alloc if 256 pieces are in use or the system gives no memory.

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvina {

class CodePiece {
public:
    static constexpr std::size_t size = 256; // bytes

    // Uses with the same number usually get the same piece, which still holds the code of the last
    // use.
    explicit CodePiece(std::uint32_t use);
    ~CodePiece();
    CodePiece(const CodePiece&) = delete;
    CodePiece& operator=(const CodePiece&) = delete;

    // Puts the code, at most size bytes, at the start of the piece.
    void write(std::span<const std::uint8_t> code) noexcept;

    // The address at which the code can be called.
    [[nodiscard]] const std::uint8_t* entry() const noexcept;

private:
    std::size_t index_;
};

} // namespace corvina
