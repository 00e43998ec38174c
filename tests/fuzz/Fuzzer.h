#pragma once

// Runs a target with inputs that grow out of those that reached something new. An input that
// crashes, hangs or breaks a promise is printed as a recipe and ends the program.

#include "fuzz/FuzzTarget.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corvina::fuzz {

struct FuzzOptions {
    double seconds = 2;
    std::uint64_t runs = 0; // as many at most; 0 for no such limit
    unsigned seed = 1;
    std::vector<Bytes> corpus; // besides the target's seeds
};

struct FuzzReport {
    std::uint64_t runs = 0;
    std::size_t places = 0;   // of the code that were reached
    std::size_t features = 0; // places, by orders of magnitude of visits
    std::vector<Bytes> corpus;
};

// For the whole program, once: what happens on a crash and on a hang.
void watchForCrashes();

// Runs one input.
void runOnce(const FuzzTarget& target, const Bytes& input);

[[nodiscard]] FuzzReport fuzz(const FuzzTarget& target, const FuzzOptions& options);

// As few and short inputs as reach the same.
[[nodiscard]] std::vector<Bytes> minimised(const FuzzTarget& target, std::vector<Bytes> corpus);

} // namespace corvina::fuzz
