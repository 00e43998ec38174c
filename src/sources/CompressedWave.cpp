#include "sources/CompressedWave.h"

#include "sources/Mp3Frames.h"
#include "stream/SoundBlocks.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace corvina {
namespace {

// GSM 6.10 remembers the sound before a block; after so many blocks the difference is not heard.
constexpr std::int64_t gsmLeadInBlocks = 8;

// A frame of MPEG sound may begin in those before it: in up to 511 bytes of sound data, which are
// fewer than those of the frames. Its sound also overlaps that of the frame before.
constexpr std::int64_t mpegLeadInBytes = 1536;
constexpr std::size_t mpegLeadInFrames = 3;

// A count that another rate than these would follow from is wrong.
constexpr double leastMpegRate = 8000 / 8 * 0.9;
constexpr double highestMpegRate = 320'000 / 8 * 1.1;

// Beyond what rounding explains.
bool contradicts(double recorded, double computed) {
    return std::abs(recorded - computed) > 1 + computed / 1000;
}

} // namespace

CompressedWave::CompressedWave(const WAVEFORMATEX& record, const RiffChunk& data) noexcept
    : record_(record), data_(data),
      framesInBlock_(record.nBlockAlign == 0 ? 0 : framesInBlock(record)) {}

bool CompressedWave::isMpeg() const noexcept {
    return record_.wFormatTag == WAVE_FORMAT_MPEGLAYER3 && record_.nSamplesPerSec != 0;
}

std::optional<double> CompressedWave::rateInsteadOfRecord(const FileAccess& access,
                                                          const FileRecord& file,
                                                          std::int64_t counted) const {
    const double samplesPerSecond = record_.nSamplesPerSec;
    const double recorded = record_.nAvgBytesPerSec;
    const auto differing = [&](double rate) {
        return rate > 0 && contradicts(recorded, rate) ? std::optional(rate) : std::nullopt;
    };
    if (framesInBlock_ > 0)
        return differing(samplesPerSecond * record_.nBlockAlign / framesInBlock_);
    if (!isMpeg())
        return std::nullopt;
    if (counted > 0) {
        const double rate = data_.size * samplesPerSecond / static_cast<double>(counted);
        if (rate >= leastMpegRate && rate <= highestMpegRate)
            return differing(rate);
    }
    if (recorded > 0)
        return std::nullopt;
    Mp3Frames frames(access, file, data_);
    while (frames.step()) {
    }
    return frames.samplesSoFar() == 0 ? std::nullopt
                                      : differing(data_.size * samplesPerSecond /
                                                  static_cast<double>(frames.samplesSoFar()));
}

std::optional<std::int64_t> CompressedWave::frameOfBlockAt(std::int32_t bytes) const noexcept {
    if (framesInBlock_ == 0)
        return std::nullopt;
    return std::int64_t{bytes} / record_.nBlockAlign * framesInBlock_;
}

std::optional<CompressedWave::Place> CompressedWave::placeOf(std::int64_t frame,
                                                             const FileAccess& access,
                                                             const FileRecord& file) const {
    if (framesInBlock_ > 0)
        return blockOf(frame);
    return isMpeg() ? mpegFrameOf(frame, access, file) : std::nullopt;
}

std::optional<CompressedWave::Place> CompressedWave::blockOf(std::int64_t frame) const noexcept {
    const std::int64_t block = frame / framesInBlock_;
    if (block * record_.nBlockAlign >= data_.size)
        return std::nullopt;
    const bool remembers = record_.wFormatTag == WAVE_FORMAT_GSM610;
    const std::int64_t first = std::max<std::int64_t>(0, block - (remembers ? gsmLeadInBlocks : 0));
    return Place{.offset = static_cast<std::int32_t>(data_.offset + first * record_.nBlockAlign),
                 .leadIn = {.frames = frame - first * framesInBlock_, .fromReset = remembers}};
}

std::optional<CompressedWave::Place> CompressedWave::mpegFrameOf(std::int64_t frame,
                                                                 const FileAccess& access,
                                                                 const FileRecord& file) const {
    struct Start {
        std::int64_t offset;
        std::int64_t sample;
    };
    std::deque<Start> before; // the last one is the frame looked at
    Mp3Frames frames(access, file, data_);
    while (frames.step()) {
        before.push_back({.offset = frames.offset(), .sample = frames.firstSample()});
        while (before.size() > mpegLeadInFrames + 1 &&
               frames.offset() - before[1].offset >= mpegLeadInBytes)
            before.pop_front();
        if (frames.samplesSoFar() > frame)
            return Place{.offset = static_cast<std::int32_t>(before.front().offset),
                         .leadIn = {.frames = frame - before.front().sample, .fromReset = true}};
    }
    return std::nullopt;
}

} // namespace corvina
