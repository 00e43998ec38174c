#pragma once

// A cell of the corpus: a file, what an independent decoder made of it, and how near to that the
// control must come.

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace corvina::test {

using Samples = std::vector<std::int16_t>;

struct Cell {
    std::string name; // of the file
    std::size_t rate = 0;
    std::size_t channels = 0;
    std::string judge; // see tests/corpus/make-corpus
    // Why it is known not to play right, or to be sought right, as yet; empty for the others.
    std::string knownPlaying;
    std::string knownSeeking;

    [[nodiscard]] std::wstring path() const;
    // With that many channels: the file's own, or two.
    [[nodiscard]] Samples expected(std::size_t heardChannels) const;
};
std::ostream& operator<<(std::ostream& out, const Cell& cell);

// All cells that tests/corpus/make-corpus made, with the reasons of tests/corpus/known.txt.
[[nodiscard]] std::vector<Cell> allCells();

// What is wrong with the sound of that many channels; empty if nothing is. It may be a block longer
// or, if it is not to be exact, shorter; then its last block may be anything.
[[nodiscard]] std::string difference(const Cell& cell, std::size_t channels,
                                     const Samples& expected, const Samples& heard,
                                     std::size_t block);

// The same behind a seek: the sound may begin up to 30 ms early or late.
[[nodiscard]] std::string differenceBehindSeek(const Cell& cell, std::size_t channels,
                                               const Samples& expected, const Samples& heard,
                                               std::size_t block);

} // namespace corvina::test
