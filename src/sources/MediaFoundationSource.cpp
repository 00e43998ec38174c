#include "sources/MediaFoundationSource.h"

#include "runtime/Text.h"
#include "sources/AacStreamCheck.h"
#include "sources/MediaFileSize.h"
#include "sources/MediaTime.h"
#include "sources/Mp4Check.h"
#include "sources/Mp4SoundEnd.h"
#include "sources/Mp4Tags.h"
#include "stream/FileName.h"
#include "stream/PcmFormat.h"
#include "stream/SeekTarget.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace corvina {
namespace {

constexpr std::int32_t noLibrary = 3;
constexpr std::int32_t unusable = 12;
constexpr std::int32_t seekRefused = 4;

constexpr LONGLONG second = 10'000'000; // in units of 100 nanoseconds
// A decoder needs the frames before a place to be exact at it.
constexpr LONGLONG preRoll = second / 5;

LONGLONG soundEnd(const std::wstring& path) {
    constexpr LONGLONG unknown = std::numeric_limits<LONGLONG>::max();
    const std::optional<double> end = mp4SoundEnd(path);
    constexpr double mostSeconds = 1e9;
    return end && *end < mostSeconds ? static_cast<LONGLONG>(*end * second) : unknown;
}

} // namespace

std::vector<std::wstring> MediaFoundationSource::Extensions() {
    return split(L"m4a;m4b;mp4;aac", L';');
}

std::int32_t MediaFoundationSource::OpenSource(const std::wstring& source) {
    CloseSource();
    forget();
    if (!library_->start())
        return noLibrary;
    const FileName name = fileName(source);
    if (name.impossible || !mayBePlayed(source) || !firstFrameIsWhole(source))
        return SourceResult::notOpen;
    auto reader = std::make_unique<BoundedMediaReader>(library_, longestCall_);
    const BoundedMediaReader::Opened opened = reader->open(name.wide);
    if (opened != BoundedMediaReader::Opened::yes)
        return opened == BoundedMediaReader::Opened::unreadable ? SourceResult::notOpen : unusable;
    reader_ = std::move(reader);
    ended_ = !reader_->read(block_);
    describe(name.wide);
    return SourceResult::done;
}

void MediaFoundationSource::forget() {
    forgetFile();
    block_ = {};
    offset_ = 0;
    startTime_ = 0;
    duration_ = 0;
}

void MediaFoundationSource::describe(const std::wstring& path) {
    const BoundedMediaReader::Format& format = reader_->format();
    format_ = pcmFormat(format.rate, static_cast<WORD>(std::min<DWORD>(format.channels, 2)), 16);
    mix_ = StereoMixer(speakersOf(static_cast<std::int32_t>(format.channels), format.channelMask));
    duration_ = reader_->duration();
    soundEnd_ = soundEnd(path);
    bitrate_ = averageBitrate(path, static_cast<double>(duration_) / second);
    readMp4Tags(path, tags_);
    // The times of some files do not begin with 0.
    startTime_ = block_.time;
    takeBlock();
}

std::int32_t MediaFoundationSource::CloseSource() {
    if (!reader_)
        return SourceResult::notOpen;
    reader_.reset();
    return SourceResult::done;
}

std::int32_t MediaFoundationSource::Read(void* buffer, std::int32_t bytes,
                                         std::int32_t& bytesRead) {
    bytesRead = 0;
    if (!reader_)
        return SourceResult::endOfData;
    auto* const target = static_cast<std::uint8_t*>(buffer);
    while (bytesRead < bytes) {
        if (offset_ == blockBytes() && !fetchBlock())
            return SourceResult::endOfData;
        const std::size_t count =
            std::min(blockBytes() - offset_, static_cast<std::size_t>(bytes - bytesRead));
        const auto* const from = reinterpret_cast<const std::uint8_t*>(block_.samples.data());
        std::memcpy(target + bytesRead, from + offset_, count);
        offset_ += count;
        bytesRead += static_cast<std::int32_t>(count);
    }
    return SourceResult::done;
}

bool MediaFoundationSource::fetchBlock() {
    if (!reader_ || ended_)
        return false;
    ended_ = !reader_->read(block_);
    if (!ended_)
        takeBlock();
    return !ended_;
}

void MediaFoundationSource::takeBlock() {
    offset_ = 0;
    const std::size_t channels = reader_->format().channels;
    if (channels <= 2)
        return;
    // Each frame is read before the place of its two samples is written.
    const std::size_t frames = block_.samples.size() / channels;
    mix_.apply(block_.samples.data(), block_.samples.data(), frames);
    block_.samples.resize(frames * 2);
}

std::int32_t MediaFoundationSource::SeekTo(std::int32_t value, std::int32_t& mode) {
    // Not to 100: at the very end there is nothing to deliver.
    constexpr std::int32_t lastPercent = 99;
    const std::optional<LONGLONG> time = seekTarget(
        *this, value, mode, [&] { return duration_ / 100 * value; }, [&] { return value * second; },
        lastPercent);
    return time && seekTime(*time) ? SourceResult::done : seekRefused;
}

// The reader goes to the start of some sample before the place; what comes before the place is
// dropped. Behind the end of the sound, which pictures may outlast, there is nothing to go to.
bool MediaFoundationSource::seekTime(LONGLONG time) {
    const bool behindEnd = time >= soundEnd_;
    time += startTime_;
    if (!reader_ || (!behindEnd && !reader_->seek(time - preRoll)))
        return false;
    ended_ = behindEnd;
    block_.samples.clear();
    block_.time = time;
    offset_ = 0;
    while (fetchBlock()) {
        if (block_.time + timeOfBytes(blockBytes()) <= time) {
            offset_ = blockBytes();
            continue;
        }
        const LONGLONG early = std::max(time - block_.time, LONGLONG{0});
        const auto frames = static_cast<std::size_t>(early * format_.nSamplesPerSec / second);
        offset_ = std::min(frames * format_.nBlockAlign, blockBytes());
        break;
    }
    return true;
}

LONGLONG MediaFoundationSource::timeOfBytes(std::size_t bytes) const {
    if (format_.nAvgBytesPerSec == 0)
        return 0;
    return static_cast<LONGLONG>(bytes) * second / format_.nAvgBytesPerSec;
}

std::int32_t MediaFoundationSource::Position() {
    return mediaMilliseconds(static_cast<std::uint64_t>(
        std::max(block_.time - startTime_ + timeOfBytes(offset_), LONGLONG{0})));
}

std::int32_t MediaFoundationSource::Duration() {
    return mediaMilliseconds(static_cast<std::uint64_t>(duration_));
}

} // namespace corvina
