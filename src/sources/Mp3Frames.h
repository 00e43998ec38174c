#pragma once

// The frames of MPEG audio, layer III, in a part of a file, one after the other.

#include "stream/FileAccess.h"
#include "stream/RiffChunk.h"

#include <cstdint>
#include <vector>

namespace corvina {

class Mp3Frames {
public:
    // What is constant lives as long as this object; the file's position is moved.
    Mp3Frames(const FileAccess& access, const FileRecord& file, const RiffChunk& data)
        : access_(access), file_(file), end_(std::int64_t{data.offset} + data.size),
          next_(data.offset) {}

    // Steps to the next frame. False at the end of the part, and where no frame begins.
    [[nodiscard]] bool step();

    // Of the frame that was stepped to last.
    [[nodiscard]] std::int64_t offset() const noexcept { return offset_; } // in the file
    [[nodiscard]] std::int64_t firstSample() const noexcept { return nextSample_ - samples_; }
    [[nodiscard]] std::int32_t samples() const noexcept { return samples_; } // of one channel
    // Of all frames up to this one.
    [[nodiscard]] std::int64_t samplesSoFar() const noexcept { return nextSample_; }

private:
    [[nodiscard]] const std::uint8_t* headerAt(std::int64_t position);

    const FileAccess& access_;
    const FileRecord& file_;
    const std::int64_t end_;
    std::vector<std::uint8_t> piece_; // of the file, read at once
    std::int64_t pieceAt_ = 0;
    std::int64_t offset_ = 0;
    std::int64_t next_;
    std::int64_t nextSample_ = 0;
    std::int32_t samples_ = 0;
};

} // namespace corvina
