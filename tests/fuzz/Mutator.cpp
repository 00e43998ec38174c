#include "fuzz/Mutator.h"

#include "fuzz/Coverage.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace corvina::fuzz {
namespace {

constexpr std::uint32_t telling[] = {
    0,      1,       2,          3,          4,          8,          15,
    16,     31,      32,         64,         99,         100,        127,
    128,    170,     255,        256,        2352,       0x7FFF,     0x8000,
    0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFE, 0xFFFFFFFF};

void store(Bytes& input, std::size_t at, std::uint32_t value, std::size_t width, bool bigEndian) {
    for (std::size_t index = 0; index < width && at + index < input.size(); ++index) {
        const std::size_t shift = 8 * (bigEndian ? width - 1 - index : index);
        input[at + index] = static_cast<std::uint8_t>(value >> shift);
    }
}

std::ptrdiff_t offset(std::size_t at) {
    return static_cast<std::ptrdiff_t>(at);
}

} // namespace

Bytes Mutator::mutated(Bytes input, const Bytes& other, std::size_t longest) {
    const std::size_t changes = std::size_t{1} << below(5);
    for (std::size_t count = 0; count < changes; ++count)
        change(input, other);
    input.resize(std::min(input.size(), longest));
    return input;
}

void Mutator::change(Bytes& input, const Bytes& other) {
    switch (below(12)) {
    case 0:
    case 1:
    case 2:
        return changeByte(input);
    case 3:
    case 4:
    case 5:
        return changeNumber(input);
    case 6:
    case 7:
        return replaceCompared(input);
    case 8:
        return remove(input);
    case 9:
        return insert(input, other);
    case 10:
        return overwrite(input, other);
    default:
        return overwrite(input, Bytes(input));
    }
}

void Mutator::changeByte(Bytes& input) {
    if (input.empty())
        return;
    std::uint8_t& byte = input[below(input.size())];
    byte = below(2) ? static_cast<std::uint8_t>(byte ^ (1u << below(8)))
                    : static_cast<std::uint8_t>(below(256));
}

void Mutator::changeNumber(Bytes& input) {
    if (input.empty())
        return;
    constexpr std::size_t widths[] = {1, 2, 4, 4};
    const std::size_t width = widths[below(std::size(widths))];
    const std::size_t at = below(input.size());
    std::uint32_t value = telling[below(std::size(telling))];
    if (below(3) == 0) { // a little more or less than what is there
        value = 0;
        std::memcpy(&value, input.data() + at, std::min<std::size_t>(4, input.size() - at));
        value += static_cast<std::uint32_t>(below(33)) - 16;
    }
    store(input, at, value, width, below(4) == 0);
}

void Mutator::replaceCompared(Bytes& input) {
    const coverage::Comparison& compared = coverage::comparison(random_());
    if (compared.bytes == 0 || input.empty())
        return;
    const bool bigEndian = below(4) == 0;
    Bytes found(compared.bytes);
    store(found, 0, compared.found, compared.bytes, bigEndian);
    const auto from = input.begin() + offset(below(input.size()));
    auto place = std::search(from, input.end(), found.begin(), found.end());
    if (place == input.end())
        place = std::search(input.begin(), input.end(), found.begin(), found.end());
    if (place == input.end())
        return;
    store(input, static_cast<std::size_t>(place - input.begin()), compared.wanted, compared.bytes,
          bigEndian);
}

void Mutator::remove(Bytes& input) {
    if (input.empty())
        return;
    const std::size_t at = below(input.size());
    const std::size_t count =
        std::min(input.size() - at, below(4) ? 1 + below(16) : 1 + below(input.size()));
    input.erase(input.begin() + offset(at), input.begin() + offset(at + count));
}

void Mutator::insert(Bytes& input, const Bytes& other) {
    const std::size_t at = below(input.size() + 1);
    Bytes piece(1 + below(16), static_cast<std::uint8_t>(below(2) ? 0 : below(256)));
    if (!other.empty() && below(2)) {
        const std::size_t from = below(other.size());
        const std::size_t count = 1 + below(other.size() - from);
        piece.assign(other.begin() + offset(from), other.begin() + offset(from + count));
    }
    input.insert(input.begin() + offset(at), piece.begin(), piece.end());
}

void Mutator::overwrite(Bytes& input, const Bytes& other) {
    if (input.empty() || other.empty())
        return;
    const std::size_t from = below(other.size());
    const std::size_t at = below(input.size());
    const std::size_t count = 1 + below(std::min(other.size() - from, input.size() - at));
    std::copy_n(other.begin() + offset(from), count, input.begin() + offset(at));
}

} // namespace corvina::fuzz
