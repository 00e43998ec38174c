#pragma once

// One way in which the bytes of a source become PCM. The converter holds one while it runs.

#include <cstdint>
#include <optional>
#include <span>

namespace corvina {

struct ConvertedBytes {
    std::uint32_t used = 0;     // of the source
    std::uint32_t produced = 0; // of the output
};

class Conversion {
public:
    virtual ~Conversion() = default;

    // The bytes of the source that become that many bytes of output; nothing if that cannot be
    // said.
    [[nodiscard]] virtual std::optional<std::uint32_t> sourceBytes(std::uint32_t outputBytes) = 0;
    // Converts as many whole blocks as there are and the output holds; nothing on failure.
    // first, last: the first bytes of the stream, the last ones.
    [[nodiscard]] virtual std::optional<ConvertedBytes> convert(std::span<std::uint8_t> source,
                                                                std::span<std::uint8_t> output,
                                                                bool first, bool last) noexcept = 0;
};

} // namespace corvina
