#pragma once

// What can be fuzzed: a function that takes any bytes and lives.
//
//   const FuzzTarget wav{"wav", &useWav, {plainWav(...)}};
//
// A target registers itself when it is constructed, so it is a global of its file. run returns in
// a short time whatever the bytes are, throws nothing and leaves nothing behind. What it expects of
// a result it says with require.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace corvina::fuzz {

using Bytes = std::vector<std::uint8_t>;

class FuzzTarget {
public:
    using Run = void (*)(std::span<const std::uint8_t>);
    // Good inputs to begin with; made when the target is run.
    using Seeds = std::vector<Bytes> (*)();

    FuzzTarget(std::string name, Run run, Seeds seeds, std::size_t longest = 2048);
    FuzzTarget(const FuzzTarget&) = delete;
    FuzzTarget& operator=(const FuzzTarget&) = delete;

    // In the order of their names.
    [[nodiscard]] static std::vector<const FuzzTarget*> all();
    [[nodiscard]] static const FuzzTarget* find(const std::string& name);

    const std::string name;
    const Run run;
    const Seeds seeds;
    const std::size_t longest; // bytes of an input
};

// Ends the run as a crash does unless the condition holds.
void require(bool holds, const char* what);

// Takes values from the front of an input; behind its end everything is 0.
class Taker {
public:
    explicit Taker(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool empty() const { return bytes_.empty(); }
    std::uint8_t byte() { return number<std::uint8_t>(); }
    template <typename Number>
    Number number() {
        Number value = 0;
        const std::span<const std::uint8_t> taken = take(sizeof value);
        std::copy(taken.begin(), taken.end(), reinterpret_cast<std::uint8_t*>(&value));
        return value;
    }
    // At most that many bytes.
    std::span<const std::uint8_t> take(std::size_t count) {
        const std::span<const std::uint8_t> taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }

private:
    std::span<const std::uint8_t> bytes_;
};

} // namespace corvina::fuzz
