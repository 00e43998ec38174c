#include "sources/DecSND.h"

#include "platform/AnsiText.h"
#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "runtime/Text.h"
#include "stream/PcmFormat.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

constexpr std::int32_t noLibrary = 3;
constexpr std::int32_t notOpen = 1;
constexpr std::int32_t outOfRange = 4;

constexpr std::int32_t forReading = 16;
enum Whence { fromStart = 0, fromCurrent = 1, fromEnd = 2 };

constexpr std::int32_t subtypeMask = 0xFFFF;
constexpr std::int32_t voxSubtype = 0x21;

// The width of the library's sample subtypes.
WORD bitsOfSubtype(std::int32_t format) {
    switch (format & subtypeMask) {
    case 1: // signed
    case 5: // unsigned
        return 8;
    case 2:
        return 16;
    case 3:
        return 24;
    case 4: // integer
    case 6: // float
        return 32;
    case 7: // double
        return 64;
    default: // compressed
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

std::int32_t DecSND::OpenSource(const std::wstring& Source) {
    if (!library_.loaded())
        return noLibrary;
    path_ = Source;
    CloseSource();
    const AnsiText path = toAnsi(path_);
    if (path.lossy) // the name of some other file
        return notOpen;
    file_ = library_.open(path.text, forReading, info_);
    if (file_ == 0)
        return notOpen;
    format_ = pcmFormat(static_cast<DWORD>(info_.sampleRate),
                        static_cast<WORD>(narrow16(info_.channels)), bitsOfSubtype(info_.format));
    totalFrames_ = library_.seek(file_, 0, fromEnd);
    library_.seek(file_, 0, fromStart);
    return SourceResult::done;
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

std::int32_t DecSND::Read(void* pBuffer, std::int32_t cBytes, std::int32_t& cBytesRead) {
    cBytesRead = 0;
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return notOpen;
    const std::int32_t length = cBytes - cBytes % 2;
    cBytesRead = multiply32(readItems(pBuffer, length / 2), 2);
    return cBytesRead < length ? SourceResult::endOfData : SourceResult::done;
}

std::int32_t DecSND::readItems(void* to, std::int32_t items) {
    if ((info_.format & subtypeMask) != voxSubtype || items % 2 == 0)
        return library_.readShort(file_, to, items);
    // A byte of this subtype holds two samples, and the library writes and counts both also where
    // it is asked for one. The buffer has no room for the second.
    std::vector<std::int16_t> withRoom(static_cast<std::size_t>(items) + 1);
    const std::int32_t got = std::min(library_.readShort(file_, withRoom.data(), items), items);
    if (got > 0)
        std::memcpy(to, withRoom.data(), static_cast<std::size_t>(got) * 2);
    return got;
}

std::int32_t DecSND::SeekTo(std::int32_t Value, std::int32_t& Mode) {
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return notOpen;
    if (Value < 0)
        return outOfRange;
    std::int32_t frame = 0;
    if (Mode == SeekMode::percent) {
        if (Value > 99)
            return outOfRange;
        frame = roundToInt32(multiply32(totalFrames_, Value) / 100.0);
    } else if (Mode == SeekMode::seconds) {
        if (!(Duration() / 1000.0 >= Value))
            return outOfRange;
        frame = multiply32(info_.sampleRate, Value);
    }
    library_.seek(file_, frame, fromStart);
    return SourceResult::done;
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
    return milliseconds(static_cast<std::int32_t>(info_.framesLow));
}

std::int32_t DecSND::currentFrame() {
    return library_.loaded() ? library_.seek(file_, 0, fromCurrent) : 0;
}

std::int32_t DecSND::milliseconds(std::int32_t frames) const {
    return roundToInt32(divide(frames, info_.sampleRate) * 1000);
}

} // namespace corvina
