#include "fuzz/Coverage.h"

#include <array>
#include <bit>

namespace corvina::fuzz::coverage {
namespace {

// By the lower bits of the address: far more than the instrumented code is long.
constexpr std::size_t slots = std::size_t{1} << 20;

std::array<std::uint8_t, slots> visits;
std::array<std::uint8_t, slots> known; // a bit for each order of magnitude
std::array<std::uint32_t, slots> touched;
std::size_t touchedCount = 0;
std::size_t placeCount = 0;
std::size_t featureCount = 0;
std::uintptr_t upperBits = 0;

std::array<Comparison, 512> comparisons;
std::size_t nextComparison = 0;

void visit(std::uintptr_t address) {
    upperBits = address & ~(slots - 1);
    const std::size_t slot = address & (slots - 1);
    std::uint8_t& count = visits[slot];
    if (count == 0)
        touched[touchedCount++] = static_cast<std::uint32_t>(slot);
    if (count < 255)
        ++count;
}

void compare(std::uint64_t a, std::uint64_t b, std::uint8_t bytes) {
    if (a == b)
        return;
    comparisons[nextComparison++ % comparisons.size()] = {static_cast<std::uint32_t>(a),
                                                          static_cast<std::uint32_t>(b), bytes};
}

} // namespace

void begin() {
    for (std::size_t index = 0; index < touchedCount; ++index)
        visits[touched[index]] = 0;
    touchedCount = 0;
}

std::size_t learn() {
    std::size_t fresh = 0;
    for (std::size_t index = 0; index < touchedCount; ++index) {
        const std::size_t slot = touched[index];
        const auto order = static_cast<std::uint8_t>(
            std::uint8_t{1} << (std::bit_width(unsigned{visits[slot]}) - 1));
        if (known[slot] == 0)
            ++placeCount;
        if ((known[slot] & order) == 0)
            ++fresh;
        known[slot] = static_cast<std::uint8_t>(known[slot] | order);
    }
    featureCount += fresh;
    return fresh;
}

std::size_t places() {
    return placeCount;
}

std::size_t features() {
    return featureCount;
}

std::vector<std::uintptr_t> addresses() {
    std::vector<std::uintptr_t> result;
    for (std::size_t slot = 0; slot < slots; ++slot)
        if (known[slot] != 0)
            result.push_back(upperBits | slot);
    return result;
}

void forgetAll() {
    begin();
    known.fill(0);
    placeCount = featureCount = 0;
}

const Comparison& comparison(std::size_t random) {
    return comparisons[random % comparisons.size()];
}

} // namespace corvina::fuzz::coverage

// The hooks. The first number of a comparison is the constant if there is one.
extern "C" {

void __sanitizer_cov_trace_pc() {
    corvina::fuzz::coverage::visit(reinterpret_cast<std::uintptr_t>(__builtin_return_address(0)));
}
void __sanitizer_cov_trace_cmp1(std::uint8_t a, std::uint8_t b) {
    corvina::fuzz::coverage::compare(a, b, 1);
}
void __sanitizer_cov_trace_cmp2(std::uint16_t a, std::uint16_t b) {
    corvina::fuzz::coverage::compare(a, b, 2);
}
void __sanitizer_cov_trace_cmp4(std::uint32_t a, std::uint32_t b) {
    corvina::fuzz::coverage::compare(a, b, 4);
}
void __sanitizer_cov_trace_cmp8(std::uint64_t a, std::uint64_t b) {
    corvina::fuzz::coverage::compare(a, b, 4);
}
void __sanitizer_cov_trace_const_cmp1(std::uint8_t a, std::uint8_t b) {
    corvina::fuzz::coverage::compare(b, a, 1);
}
void __sanitizer_cov_trace_const_cmp2(std::uint16_t a, std::uint16_t b) {
    corvina::fuzz::coverage::compare(b, a, 2);
}
void __sanitizer_cov_trace_const_cmp4(std::uint32_t a, std::uint32_t b) {
    corvina::fuzz::coverage::compare(b, a, 4);
}
void __sanitizer_cov_trace_const_cmp8(std::uint64_t a, std::uint64_t b) {
    corvina::fuzz::coverage::compare(b, a, 4);
}
void __sanitizer_cov_trace_cmpf(float, float) {}
void __sanitizer_cov_trace_cmpd(double, double) {}
void __sanitizer_cov_trace_switch(std::uint64_t value, const std::uint64_t* cases) {
    for (std::uint64_t index = 0; index < cases[0]; ++index)
        corvina::fuzz::coverage::compare(value, cases[2 + index],
                                         cases[1] <= 8 ? 1 : (cases[1] <= 16 ? 2 : 4));
}
}
