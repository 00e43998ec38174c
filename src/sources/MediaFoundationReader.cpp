#include "sources/MediaFoundationReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <mferror.h>

namespace corvina {
namespace {

constexpr auto allStreams = static_cast<DWORD>(MF_SOURCE_READER_ALL_STREAMS);
constexpr auto firstSound = static_cast<DWORD>(MF_SOURCE_READER_FIRST_AUDIO_STREAM);
constexpr auto wholeFile = static_cast<DWORD>(MF_SOURCE_READER_MEDIASOURCE);

constexpr UINT32 wantedBits = 16;
constexpr UINT32 mostChannels = 64;
constexpr UINT32 mostHertz = 1'000'000;

// Times beyond are a damaged file's. Sums and differences of such times still fit.
constexpr LONGLONG farthest = std::numeric_limits<LONGLONG>::max() / 4;

// A reader may report an event in place of a sample. One that goes on with that would keep the host
// waiting.
constexpr int mostCallsWithoutSample = 10'000;

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

} // namespace

// The system may do a seek on a thread of its own. Wine's ends the process when the reader goes
// before that thread has come to it. A read is done behind the seek.
MediaFoundationReader::~MediaFoundationReader() {
    if (!seeking_)
        return;
    DWORD stream = 0;
    DWORD flags = 0;
    LONGLONG time = 0;
    ComPtr<IMFSample> sample;
    (void)reader_->ReadSample(firstSound, 0, &stream, &flags, &time, sample.put());
}

bool MediaFoundationReader::open(const std::wstring& path) {
    reader_ = library_->openFile(path);
    return static_cast<bool>(reader_);
}

bool MediaFoundationReader::selectSound() {
    const ComPtr<IMFMediaType> wanted = library_->makeType();
    return wanted && SUCCEEDED(reader_->SetStreamSelection(allStreams, FALSE)) &&
           SUCCEEDED(reader_->SetStreamSelection(firstSound, TRUE)) &&
           SUCCEEDED(wanted->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio)) &&
           SUCCEEDED(wanted->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_PCM)) &&
           SUCCEEDED(wanted->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, wantedBits)) &&
           SUCCEEDED(reader_->SetCurrentMediaType(firstSound, nullptr, wanted.get())) &&
           readFormat(format_);
}

bool MediaFoundationReader::readFormat(Format& format) const {
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
    format = {.rate = rate, .channels = channels, .channelMask = mask};
    return true;
}

LONGLONG MediaFoundationReader::duration() const {
    PROPVARIANT value{};
    LONGLONG duration = 0;
    if (SUCCEEDED(reader_->GetPresentationAttribute(wholeFile, MF_PD_DURATION, &value)) &&
        value.vt == VT_UI8)
        duration =
            static_cast<LONGLONG>(std::min(value.uhVal.QuadPart, static_cast<ULONGLONG>(farthest)));
    ::PropVariantClear(&value);
    return duration;
}

bool MediaFoundationReader::read(Block& block) {
    const DWORD end = MF_SOURCE_READERF_ERROR | MF_SOURCE_READERF_ENDOFSTREAM;
    seeking_ = false;
    for (int call = 0; call < mostCallsWithoutSample; ++call) {
        DWORD stream = 0;
        DWORD flags = 0;
        LONGLONG time = 0;
        ComPtr<IMFSample> sample;
        if (FAILED(reader_->ReadSample(firstSound, 0, &stream, &flags, &time, sample.put())) ||
            (flags & end))
            return false;
        if (flags & MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED) {
            Format now;
            if (!readFormat(now) || now.rate != format_.rate || now.channels != format_.channels)
                return false;
        }
        if (sample && copySample(*sample.get(), block.samples)) {
            block.time = std::clamp(time, -farthest, farthest);
            return true;
        }
    }
    return false;
}

// False, and nothing copied, if there is no frame in it.
bool MediaFoundationReader::copySample(IMFSample& sample, std::vector<std::int16_t>& to) const {
    ComPtr<IMFMediaBuffer> buffer;
    if (FAILED(sample.ConvertToContiguousBuffer(buffer.put())) || !buffer)
        return false;
    const LockedBuffer bytes(*buffer.get());
    if (!bytes)
        return false;
    const std::size_t frames = bytes.bytes() / (format_.channels * sizeof to[0]);
    if (frames == 0)
        return false;
    to.resize(frames * format_.channels);
    std::memcpy(to.data(), bytes.data(), to.size() * sizeof to[0]);
    return true;
}

bool MediaFoundationReader::seek(LONGLONG time) {
    PROPVARIANT position{};
    position.vt = VT_I8;
    position.hVal.QuadPart = std::max(time, LONGLONG{0});
    const bool sought = SUCCEEDED(reader_->SetCurrentPosition(GUID_NULL, position));
    seeking_ = seeking_ || sought;
    return sought;
}

} // namespace corvina
