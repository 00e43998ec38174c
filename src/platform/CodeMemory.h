#pragma once

// Memory for small pieces of generated machine code.
//
// No address is ever writable and executable at once: the pages are mapped twice, once to be
// written and once to be run. Changing the protection of one mapping before and after each use
// would cost fifty times as much as the call that the code makes.
//
// A piece is taken for one use and goes back to a pool that serves all threads; a use inside
// another use gets a piece of its own. Raises bad_alloc where the system gives no more memory.

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvina {

class CodePiece {
public:
    static constexpr std::size_t size = 256; // bytes

    CodePiece();
    ~CodePiece();
    CodePiece(const CodePiece&) = delete;
    CodePiece& operator=(const CodePiece&) = delete;

    // Copies the code, at most size bytes, to the start of the piece.
    void write(std::span<const std::uint8_t> code) noexcept;

    // Where the code runs.
    [[nodiscard]] const std::uint8_t* entry() const noexcept { return entry_; }

private:
    std::uint8_t* writable_ = nullptr;
    const std::uint8_t* entry_ = nullptr;
};

} // namespace corvina
