#include "sources/MediaFoundationSource.h"

#include "runtime/Text.h"
#include "sources/MediaFileSize.h"
#include "sources/MediaTime.h"
#include "sources/Mp4Tags.h"
#include "stream/PcmFormat.h"
#include "stream/SeekTarget.h"

#include <algorithm>
#include <cstring>
#include <mferror.h>

namespace corvina {
namespace {

constexpr std::int32_t noLibrary = 3;
constexpr std::int32_t unusable = 12;
constexpr std::int32_t seekRefused = 4;

constexpr auto allStreams = static_cast<DWORD>(MF_SOURCE_READER_ALL_STREAMS);
constexpr auto firstSound = static_cast<DWORD>(MF_SOURCE_READER_FIRST_AUDIO_STREAM);
constexpr auto wholeFile = static_cast<DWORD>(MF_SOURCE_READER_MEDIASOURCE);

constexpr LONGLONG second = 10'000'000; // in units of 100 nanoseconds
// A decoder needs the frames before a place to be exact at it.
constexpr LONGLONG preRoll = second / 5;

constexpr UINT32 wantedBits = 16;
constexpr UINT32 mostChannels = 64;
constexpr UINT32 mostHertz = 1'000'000;

// The bytes of a buffer, as long as this lives.
class LockedBuffer {
public:
    explicit LockedBuffer(IMFMediaBuffer& buffer) : buffer_(buffer) {
        locked_ = SUCCEEDED(buffer_.Lock(&data_, nullptr, &bytes_)) && data_;
    }
    LockedBuffer(const LockedBuffer&) = delete;
    LockedBuffer& operator=(const LockedBuffer&) = delete;
    ~LockedBuffer() {
        if (locked_)
            buffer_.Unlock();
    }
    [[nodiscard]] explicit operator bool() const noexcept { return locked_; }
    [[nodiscard]] const BYTE* data() const noexcept { return data_; }
    [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

private:
    IMFMediaBuffer& buffer_;
    BYTE* data_ = nullptr;
    DWORD bytes_ = 0;
    bool locked_ = false;
};

LONGLONG durationOf(IMFSourceReader& reader) {
    PROPVARIANT value;
    ::PropVariantInit(&value);
    LONGLONG duration = 0;
    if (SUCCEEDED(reader.GetPresentationAttribute(wholeFile, MF_PD_DURATION, &value)) &&
        value.vt == VT_UI8)
        duration = std::max(static_cast<LONGLONG>(value.uhVal.QuadPart), LONGLONG{0});
    ::PropVariantClear(&value);
    return duration;
}

} // namespace

std::vector<std::wstring> MediaFoundationSource::Extensions() {
    return split(L"m4a;m4b;mp4;aac", L';');
}

std::int32_t MediaFoundationSource::OpenSource(const std::wstring& source) {
    CloseSource();
    forget();
    if (!library_.start())
        return noLibrary;
    reader_ = library_.openFile(source);
    if (!reader_)
        return SourceResult::notOpen;
    if (prepare(source))
        return SourceResult::done;
    CloseSource();
    forget();
    return unusable;
}

void MediaFoundationSource::forget() {
    format_ = {};
    sample_.clear();
    offset_ = 0;
    sampleTime_ = 0;
    startTime_ = 0;
    duration_ = 0;
    bitrate_ = 0;
    ended_ = false;
    tags_.ClearTags();
}

bool MediaFoundationSource::prepare(const std::wstring& path) {
    if (!selectSound() || !readFormat())
        return false;
    duration_ = durationOf(*reader_.get());
    bitrate_ = averageBitrate(path, static_cast<double>(duration_) / second);
    readMp4Tags(path, tags_);
    // The times of some files do not begin with 0.
    if (fetchSample())
        startTime_ = sampleTime_;
    return true;
}

bool MediaFoundationSource::selectSound() {
    const ComPtr<IMFMediaType> wanted = library_.makeType();
    return wanted && SUCCEEDED(reader_->SetStreamSelection(allStreams, FALSE)) &&
           SUCCEEDED(reader_->SetStreamSelection(firstSound, TRUE)) &&
           SUCCEEDED(wanted->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio)) &&
           SUCCEEDED(wanted->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_PCM)) &&
           SUCCEEDED(wanted->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, wantedBits)) &&
           SUCCEEDED(reader_->SetCurrentMediaType(firstSound, nullptr, wanted.get()));
}

bool MediaFoundationSource::readFormat() {
    ComPtr<IMFMediaType> type;
    UINT32 rate = 0;
    UINT32 channels = 0;
    UINT32 bits = 0;
    if (FAILED(reader_->GetCurrentMediaType(firstSound, type.put())) ||
        FAILED(type->GetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, &rate)) ||
        FAILED(type->GetUINT32(MF_MT_AUDIO_NUM_CHANNELS, &channels)) ||
        FAILED(type->GetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, &bits)) || bits != wantedBits ||
        rate == 0 || rate > mostHertz || channels == 0 || channels > mostChannels)
        return false;
    UINT32 mask = 0;
    if (FAILED(type->GetUINT32(MF_MT_AUDIO_CHANNEL_MASK, &mask)))
        mask = 0;
    channels_ = channels;
    format_ = pcmFormat(rate, static_cast<WORD>(std::min<UINT32>(channels, 2)), wantedBits);
    mix_ = StereoMixer(speakersOf(static_cast<std::int32_t>(channels), mask));
    return true;
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
    auto* const target = static_cast<std::uint8_t*>(buffer);
    while (bytesRead < bytes) {
        if (offset_ == sample_.size() && !fetchSample())
            return SourceResult::endOfData;
        const std::size_t count =
            std::min(sample_.size() - offset_, static_cast<std::size_t>(bytes - bytesRead));
        std::memcpy(target + bytesRead, sample_.data() + offset_, count);
        offset_ += count;
        bytesRead += static_cast<std::int32_t>(count);
    }
    return SourceResult::done;
}

// Brings the next bytes into sample_. A reader that fails, or goes over to another format, is at
// its end.
bool MediaFoundationSource::fetchSample() {
    while (reader_ && !ended_) {
        DWORD stream = 0;
        DWORD flags = 0;
        LONGLONG time = 0;
        ComPtr<IMFSample> sample;
        const HRESULT result =
            reader_->ReadSample(firstSound, 0, &stream, &flags, &time, sample.put());
        if (SUCCEEDED(result) && (flags & MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED)) {
            const WAVEFORMATEX before = format_;
            const DWORD channelsBefore = channels_;
            const bool same = readFormat() && channels_ == channelsBefore &&
                              std::memcmp(&before, &format_, sizeof before) == 0;
            format_ = before;
            ended_ = !same;
        }
        if (FAILED(result) || (flags & (MF_SOURCE_READERF_ERROR | MF_SOURCE_READERF_ENDOFSTREAM)))
            ended_ = true;
        if (!ended_ && sample && takeSample(*sample.get(), time))
            return true;
    }
    return false;
}

// False if there is nothing in it.
bool MediaFoundationSource::takeSample(IMFSample& sample, LONGLONG time) {
    ComPtr<IMFMediaBuffer> buffer;
    if (FAILED(sample.ConvertToContiguousBuffer(buffer.put())) || !buffer)
        return false;
    const LockedBuffer bytes(*buffer.get());
    if (!bytes)
        return false;
    const std::size_t frames = bytes.bytes() / (channels_ * sizeof(std::int16_t));
    sample_.resize(frames * format_.nBlockAlign);
    if (channels_ > 2) {
        std::vector<std::int16_t> all(frames * channels_);
        std::memcpy(all.data(), bytes.data(), all.size() * sizeof all[0]);
        std::vector<std::int16_t> two(frames * 2);
        mix_.apply(all.data(), two.data(), frames);
        std::memcpy(sample_.data(), two.data(), sample_.size());
    } else {
        std::memcpy(sample_.data(), bytes.data(), sample_.size());
    }
    offset_ = 0;
    sampleTime_ = time;
    return !sample_.empty();
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
// dropped.
bool MediaFoundationSource::seekTime(LONGLONG time) {
    if (!reader_)
        return false;
    PROPVARIANT position;
    ::PropVariantInit(&position);
    position.vt = VT_I8;
    time += startTime_;
    position.hVal.QuadPart = std::max(time - preRoll, LONGLONG{0});
    if (FAILED(reader_->SetCurrentPosition(GUID_NULL, position)))
        return false;
    ended_ = false;
    sample_.clear();
    offset_ = 0;
    sampleTime_ = time;
    while (fetchSample()) {
        if (sampleTime_ + timeOfBytes(sample_.size()) <= time) {
            offset_ = sample_.size();
            continue;
        }
        const LONGLONG early = std::max(time - sampleTime_, LONGLONG{0});
        const auto frames = static_cast<std::size_t>(early * format_.nSamplesPerSec / second);
        offset_ = std::min(frames * format_.nBlockAlign, sample_.size());
        break;
    }
    return true;
}

LONGLONG MediaFoundationSource::timeOfBytes(std::size_t bytes) const {
    if (format_.nAvgBytesPerSec == 0)
        return 0;
    return static_cast<LONGLONG>(bytes) * second / format_.nAvgBytesPerSec;
}

std::int32_t MediaFoundationSource::SampleRate() {
    return static_cast<std::int32_t>(format_.nSamplesPerSec);
}

std::int32_t MediaFoundationSource::Position() {
    return mediaMilliseconds(static_cast<std::uint64_t>(
        std::max(sampleTime_ - startTime_ + timeOfBytes(offset_), LONGLONG{0})));
}

std::int32_t MediaFoundationSource::Duration() {
    return mediaMilliseconds(static_cast<std::uint64_t>(duration_));
}

} // namespace corvina
