#include "sources/DecSND.h"

#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "runtime/Text.h"
#include "stream/FileName.h"
#include "stream/PcmFormat.h"
#include "stream/SeekTarget.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

constexpr std::int32_t noLibrary = 3;
constexpr std::int32_t notOpen = 1;
constexpr std::int32_t outOfRange = 4;

// The library's open mode and origins of a seek.
constexpr std::int32_t forReading = 16;
constexpr std::int32_t fromStart = 0;
constexpr std::int32_t fromCurrent = 1;
constexpr std::int32_t fromEnd = 2;

constexpr std::int32_t refused = -1; // by a seek

// The width of the library's sample subtypes, 4 for all compressed ones.
WORD bitsOfSubtype(std::int32_t format) {
    switch (format & SndfileSubtype::mask) {
    case SndfileSubtype::pcmS8:
    case SndfileSubtype::pcmU8:
        return 8;
    case SndfileSubtype::pcm16:
        return 16;
    case SndfileSubtype::pcm24:
        return 24;
    case SndfileSubtype::pcm32:
    case SndfileSubtype::float32:
        return 32;
    case SndfileSubtype::float64:
        return 64;
    default:
        return 4;
    }
}

} // namespace

DecSND::~DecSND() {
    try {
        DecSND::CloseSource();
    } catch (const RuntimeError&) {
        // The library lacks the function that closes its file.
    }
}

std::vector<std::wstring> DecSND::Extensions() {
    return split(L"au;snd;aiff;aifc;aif;voc;vox", L';');
}

bool DecSND::EndOfStream() {
    return currentFrame() >= totalFrames_;
}

std::int32_t DecSND::OpenSource(const std::wstring& source) {
    if (!library_.loaded())
        return noLibrary;
    path_ = source;
    CloseSource();
    file_ = openFile(info_);
    decodedFrames_ = 0;
    if (file_ == 0)
        return notOpen;
    rate_ = info_.sampleRate;
    frames_ = static_cast<std::int32_t>(info_.framesLow);
    format_ = pcmFormat(static_cast<DWORD>(info_.sampleRate),
                        static_cast<WORD>(narrow16(info_.channels)), bitsOfSubtype(info_.format));
    totalFrames_ = library_.seek(file_, 0, fromEnd);
    library_.seek(file_, 0, fromStart);
    if (totalFrames_ == refused && !canSeek()) {
        totalFrames_ = frames_;
        path_ = fullPath(path_); // it may be opened again when the current folder is another one
    }
    return SourceResult::done;
}

std::int32_t DecSND::openFile(SndfileInfo& info) {
    const FileName name = fileName(path_);
    if (name.impossible)
        return 0;
    return name.fitsAnsi ? library_.open(name.ansi, forReading, info)
                         : library_.openWide(name.wide, forReading, info);
}

std::int32_t DecSND::CloseSource() {
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return notOpen;
    library_.close(file_);
    file_ = 0;
    info_ = {};
    format_ = {};
    return SourceResult::done;
}

std::int32_t DecSND::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    bytesRead = 0;
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return notOpen;
    const std::int32_t length = bytes - bytes % 2;
    const std::int32_t items = readItems(buffer, length / 2);
    bytesRead = multiply32(items, 2);
    if (!canSeek())
        decodedFrames_ += items / std::max(info_.channels, std::int32_t{1});
    return bytesRead < length ? SourceResult::endOfData : SourceResult::done;
}

std::int32_t DecSND::readItems(void* to, std::int32_t items) {
    const std::int32_t subtype = info_.format & SndfileSubtype::mask;
    if (subtype == SndfileSubtype::float32 || subtype == SndfileSubtype::float64)
        return readFloats(to, items);
    if (subtype != SndfileSubtype::voxAdpcm || items % 2 == 0)
        return library_.readShort(file_, to, items);
    // A byte of this subtype holds two samples. The library writes and counts both, even if it is
    // asked for one, and the caller's buffer has no space for the second.
    std::vector<std::int16_t> withSpare(static_cast<std::size_t>(items) + 1);
    const std::int32_t got = std::min(library_.readShort(file_, withSpare.data(), items), items);
    if (got > 0)
        std::memcpy(to, withSpare.data(), static_cast<std::size_t>(got) * 2);
    return got;
}

// As whole numbers the library would return floating-point samples either near silence or blown up
// to the file's loudest one. In pieces, for a high rate would make memory of our own large.
std::int32_t DecSND::readFloats(void* to, std::int32_t items) {
    const std::int32_t piece = 1024 * std::max(info_.channels, std::int32_t{1});
    auto* sample = static_cast<std::uint8_t*>(to);
    std::int32_t read = 0;
    std::int32_t wanted = 0;
    std::int32_t got = 0;
    do {
        wanted = std::clamp(items - read, std::int32_t{0}, piece);
        floats_.resize(static_cast<std::size_t>(wanted));
        got =
            std::clamp(library_.readFloat(file_, floats_.data(), wanted), std::int32_t{0}, wanted);
        for (std::int32_t item = 0; item < got; ++item) {
            const std::int16_t rounded =
                rounding_.round(double{floats_[static_cast<std::size_t>(item)]});
            std::memcpy(sample, &rounded, sizeof rounded);
            sample += sizeof rounded;
        }
        read += got;
    } while (got == wanted && read < items);
    return read;
}

std::int32_t DecSND::SeekTo(std::int32_t value, std::int32_t& mode) {
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return notOpen;
    if (value < 0) // in whatever mode
        return outOfRange;
    // Not to 100: at the very end there is nothing to deliver.
    constexpr std::int32_t lastPercent = 99;
    const std::optional<std::int32_t> frame = seekTarget(
        *this, value, mode, [&] { return roundToInt32(multiply32(totalFrames_, value) / 100.0); },
        [&] { return multiply32(info_.sampleRate, value); }, lastPercent);
    if (!frame)
        return outOfRange;
    if (library_.seek(file_, *frame, fromStart) == refused && !canSeek())
        skipTo(*frame);
    return SourceResult::done;
}

// Decodes up to the frame, from the beginning if that lies behind. A file that does not open again
// stays closed.
void DecSND::skipTo(std::int32_t frame) {
    if (frame < decodedFrames_) {
        library_.close(file_);
        SndfileInfo same{};
        file_ = openFile(same);
        decodedFrames_ = 0;
    }
    constexpr std::int32_t piece = 4096;
    const std::int32_t channels = std::max(info_.channels, std::int32_t{1});
    std::vector<std::int16_t> dropped(static_cast<std::size_t>(piece) *
                                      static_cast<std::size_t>(channels));
    while (file_ != 0 && decodedFrames_ < frame) {
        const std::int32_t wanted = std::min(piece, frame - decodedFrames_);
        const std::int32_t got = readItems(dropped.data(), wanted * channels) / channels;
        if (got <= 0)
            return;
        decodedFrames_ += got;
    }
}

std::int32_t DecSND::SampleRate() {
    return static_cast<std::int32_t>(format_.nSamplesPerSec);
}

std::int16_t DecSND::Channels() {
    return narrow16(info_.channels);
}

std::int32_t DecSND::Bitrate() {
    return static_cast<std::int32_t>(format_.nAvgBytesPerSec);
}

std::int32_t DecSND::Position() {
    return milliseconds(currentFrame());
}

std::int32_t DecSND::Duration() {
    return milliseconds(frames_);
}

std::int32_t DecSND::currentFrame() {
    const std::int32_t frame = library_.loaded() ? library_.seek(file_, 0, fromCurrent) : 0;
    return frame == refused && !canSeek() ? decodedFrames_ : frame;
}

std::int32_t DecSND::milliseconds(std::int32_t frames) const {
    return roundToInt32(divide(frames, rate_) * 1000);
}

} // namespace corvina
