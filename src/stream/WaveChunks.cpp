#include "stream/WaveChunks.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace corvina {
namespace {

constexpr std::int64_t lastPosition = std::numeric_limits<std::int32_t>::max();
// A damaged file may be one long row of empty chunks.
constexpr int mostChunks = 65536;

struct ChunkHeader {
    char id[4];
    std::uint32_t size;

    [[nodiscard]] bool is(const char* name) const noexcept {
        return std::memcmp(id, name, sizeof id) == 0;
    }
};

// The lengths that do not fit their 32-bit fields.
struct LongLengths {
    std::uint64_t riff;
    std::uint64_t data;
    std::uint64_t samples;
};

template <typename Record>
bool readAt(const FileAccess& access, const FileRecord& file, std::int64_t position,
            Record& record) {
    constexpr auto bytes = static_cast<std::int32_t>(sizeof record);
    return position <= lastPosition &&
           access.setPosition(file, static_cast<std::int32_t>(position),
                              MoveMethod::fromBeginning) == position &&
           access.read(file, &record, bytes) == bytes;
}

RiffChunk chunkAt(std::int64_t position, std::uint64_t size) {
    const auto most = static_cast<std::uint64_t>(lastPosition - position);
    return {.offset = static_cast<std::int32_t>(position),
            .size = static_cast<std::int32_t>(std::min(size, most))};
}

} // namespace

std::optional<WaveChunks> readWaveChunks(const FileAccess& access, const FileRecord& file) {
    struct {
        ChunkHeader header;
        char form[4];
    } riff{};
    if (!readAt(access, file, 0, riff) || std::memcmp(riff.form, "WAVE", sizeof riff.form) != 0)
        return std::nullopt;
    WaveChunks chunks{.is64 = riff.header.is("RF64") || riff.header.is("BW64")};
    if (!chunks.is64 && !riff.header.is("RIFF"))
        return std::nullopt;
    chunks.isOpenEnded = riff.header.size >= leastUnknownLength;

    LongLengths lengths{};
    std::int64_t position = sizeof riff;
    ChunkHeader chunk{};
    for (int step = 0; step < mostChunks && readAt(access, file, position, chunk); ++step) {
        position += std::int64_t{sizeof chunk};
        std::uint64_t size = chunk.size;
        if (chunk.is("ds64") && chunks.is64)
            (void)readAt(access, file, position, lengths);
        if (chunk.is("data")) {
            if (chunks.is64 && chunk.size == std::numeric_limits<std::uint32_t>::max())
                size = lengths.data;
            // What no field holds is settled by whoever knows the file's length.
            chunks.data = chunks.is64 ? chunkAt(position, size)
                                      : RiffChunk{.offset = static_cast<std::int32_t>(position),
                                                  .size = static_cast<std::int32_t>(chunk.size)};
        } else if (chunk.is("fmt ")) {
            chunks.format = chunkAt(position, size);
        }
        if (chunks.data.offset != 0 && chunks.format.offset != 0)
            return chunks;
        const auto farthest = static_cast<std::uint64_t>(lastPosition);
        if (size > farthest)
            return std::nullopt;
        position += static_cast<std::int64_t>(size + size % 2);
    }
    return std::nullopt;
}

} // namespace corvina
