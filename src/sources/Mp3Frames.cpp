#include "sources/Mp3Frames.h"

#include <algorithm>

namespace corvina {
namespace {

constexpr std::int64_t headerBytes = 4;
constexpr std::size_t pieceBytes = 64 * 1024;

// Thousands of bits a second, by the number in the header; 0 where the length does not follow from
// it.
constexpr int rates1[16] = {0,   32,  40,  48,  56,  64,  80,  96,
                            112, 128, 160, 192, 224, 256, 320, 0}; // MPEG-1
constexpr int rates2[16] = {0,  8,  16, 24,  32,  40,  48,  56,
                            64, 80, 96, 112, 128, 144, 160, 0}; // MPEG-2 and 2.5
constexpr int sampleRates[4] = {44100, 48000, 32000, 0};        // MPEG-1

struct Frame {
    std::int64_t bytes = 0; // 0: no frame
    std::int32_t samples = 0;
};

Frame frameOf(const std::uint8_t* header) {
    const int version = header[1] >> 3 & 3; // 0: MPEG-2.5, 2: MPEG-2, 3: MPEG-1
    constexpr int layer3 = 1;
    if (header[0] != 0xFF || header[1] >> 5 != 7 || version == 1 || (header[1] >> 1 & 3) != layer3)
        return {};
    const bool first = version == 3;
    const int* const rates = first ? rates1 : rates2;
    const int bits = rates[header[2] >> 4] * 1000;
    const int sampleRate = sampleRates[header[2] >> 2 & 3] / (first ? 1 : version == 2 ? 2 : 4);
    if (bits == 0 || sampleRate == 0)
        return {};
    const int padding = header[2] >> 1 & 1;
    const std::int32_t samples = first ? 1152 : 576;
    return {.bytes = samples / 8 * bits / sampleRate + padding, .samples = samples};
}

} // namespace

// Null where the file ends before it. Positions do not go back, and so many bytes are before the
// end of the part.
const std::uint8_t* Mp3Frames::headerAt(std::int64_t position) {
    const auto bytesHeld = static_cast<std::int64_t>(piece_.size());
    if (position + headerBytes > pieceAt_ + bytesHeld) {
        piece_.resize(static_cast<std::size_t>(
            std::min(static_cast<std::int64_t>(pieceBytes), end_ - position)));
        pieceAt_ = position;
        const bool there =
            access_.setPosition(file_, static_cast<std::int32_t>(position),
                                MoveMethod::fromBeginning) == static_cast<std::int32_t>(position);
        const std::int32_t got =
            there ? access_.read(file_, piece_.data(), static_cast<std::int32_t>(piece_.size()))
                  : 0;
        piece_.resize(static_cast<std::size_t>(std::max(got, std::int32_t{0})));
        if (piece_.size() < headerBytes)
            return nullptr;
    }
    return &piece_[static_cast<std::size_t>(position - pieceAt_)];
}

bool Mp3Frames::step() {
    const std::uint8_t* const header = next_ + headerBytes <= end_ ? headerAt(next_) : nullptr;
    const Frame frame = header ? frameOf(header) : Frame{};
    if (frame.bytes == 0)
        return false;
    offset_ = next_;
    next_ += frame.bytes;
    samples_ = frame.samples;
    nextSample_ += frame.samples;
    return true;
}

} // namespace corvina
