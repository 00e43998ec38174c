#pragma once

// Changes inputs at random, and puts the numbers that the code compared with where others stood.

#include "fuzz/FuzzTarget.h"

#include <random>

namespace corvina::fuzz {

class Mutator {
public:
    explicit Mutator(unsigned seed) : random_(seed) {}

    // other: an input to take pieces from. The result is no longer than that many bytes.
    [[nodiscard]] Bytes mutated(Bytes input, const Bytes& other, std::size_t longest);
    [[nodiscard]] std::size_t below(std::size_t limit) {
        return limit == 0 ? 0 : random_() % limit;
    }

private:
    void change(Bytes& input, const Bytes& other);
    void changeByte(Bytes& input);
    void changeNumber(Bytes& input);
    void replaceCompared(Bytes& input);
    void remove(Bytes& input);
    void insert(Bytes& input, const Bytes& other);
    void overwrite(Bytes& input, const Bytes& other);

    std::mt19937 random_;
};

} // namespace corvina::fuzz
