#include "sources/SndfileSource.h"

#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"
#include "runtime/Text.h"
#include "sources/MediaFileSize.h"
#include "sources/Utf8Text.h"
#include "stream/FileName.h"
#include "stream/PcmFormat.h"
#include "stream/SeekTarget.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <iterator>
#include <limits>
#include <mmreg.h>

#include <ksmedia.h>

namespace corvina {
namespace {

constexpr std::int32_t noLibrary = 3;
constexpr std::int32_t unusable = 12;
constexpr std::int32_t seekRefused = 4;

// The library's open mode, origins of a seek and commands.
constexpr std::int32_t forReading = 16;
constexpr std::int32_t fromStart = 0;
constexpr std::int32_t getChannelMap = 0x1100;
constexpr std::int32_t setClipping = 0x10C0;

// Parts of its format number.
constexpr std::int32_t containerMask = 0x0FFF0000;
constexpr std::int32_t mpegContainer = 0x00230000;
constexpr std::int32_t oggContainer = 0x00200000;

// A frame of MPEG audio is decoded with what is left from those before it.
constexpr std::int64_t mpegPreRoll = std::int64_t{8} * 1152;

constexpr std::int32_t mostChannels = 64;
// The format record has no place for the bytes of a second of more.
constexpr std::int32_t mostHertz = std::numeric_limits<std::int32_t>::max() / 4;

struct TagRule {
    std::int32_t type; // the library's number of the text
    const wchar_t* name;
};
constexpr TagRule tagRules[] = {{1, L"title"},  {4, L"artist"},      {7, L"album"},  {6, L"year"},
                                {16, L"genre"}, {9, L"tracknumber"}, {5, L"comment"}};

// The library's numbers of speakers in a channel map.
struct MapSpeaker {
    std::int32_t number;
    DWORD speaker;
};
constexpr MapSpeaker mapSpeakers[] = {{1, KSAUDIO_SPEAKER_MONO},
                                      {2, SPEAKER_FRONT_LEFT},
                                      {3, SPEAKER_FRONT_RIGHT},
                                      {4, SPEAKER_FRONT_CENTER},
                                      {5, SPEAKER_FRONT_LEFT},
                                      {6, SPEAKER_FRONT_RIGHT},
                                      {7, SPEAKER_FRONT_CENTER},
                                      {8, SPEAKER_BACK_CENTER},
                                      {9, SPEAKER_BACK_LEFT},
                                      {10, SPEAKER_BACK_RIGHT},
                                      {11, SPEAKER_LOW_FREQUENCY},
                                      {12, SPEAKER_FRONT_LEFT_OF_CENTER},
                                      {13, SPEAKER_FRONT_RIGHT_OF_CENTER},
                                      {14, SPEAKER_SIDE_LEFT},
                                      {15, SPEAKER_SIDE_RIGHT},
                                      {16, SPEAKER_TOP_CENTER},
                                      {17, SPEAKER_TOP_FRONT_LEFT},
                                      {18, SPEAKER_TOP_FRONT_RIGHT},
                                      {19, SPEAKER_TOP_FRONT_CENTER},
                                      {20, SPEAKER_TOP_BACK_LEFT},
                                      {21, SPEAKER_TOP_BACK_RIGHT},
                                      {22, SPEAKER_TOP_BACK_CENTER}};

// The order of Vorbis and Opus, for each number of channels.
constexpr DWORD left = SPEAKER_FRONT_LEFT;
constexpr DWORD right = SPEAKER_FRONT_RIGHT;
constexpr DWORD center = SPEAKER_FRONT_CENTER;
constexpr DWORD low = SPEAKER_LOW_FREQUENCY;
constexpr DWORD backLeft = SPEAKER_BACK_LEFT;
constexpr DWORD backRight = SPEAKER_BACK_RIGHT;
constexpr DWORD sideLeft = SPEAKER_SIDE_LEFT;
constexpr DWORD sideRight = SPEAKER_SIDE_RIGHT;
constexpr std::array<DWORD, 8> oggSpeakers[] = {
    {center},
    {left, right},
    {left, center, right},
    {left, right, backLeft, backRight},
    {left, center, right, backLeft, backRight},
    {left, center, right, backLeft, backRight, low},
    {left, center, right, sideLeft, sideRight, SPEAKER_BACK_CENTER, low},
    {left, center, right, sideLeft, sideRight, backLeft, backRight, low},
};

// 0 if the number stands for none.
DWORD speakerOfNumber(std::int32_t number) {
    for (const MapSpeaker& known : mapSpeakers)
        if (known.number == number)
            return known.speaker;
    return 0;
}

std::int16_t toSample(float value) {
    constexpr float fullScale = 32768.0F;
    if (!(value >= -1.0F)) // also no number at all
        return value != value ? std::int16_t{0} : std::numeric_limits<std::int16_t>::min();
    return value >= 32767.0F / fullScale ? std::numeric_limits<std::int16_t>::max()
                                         : roundWithinInt16(value * fullScale);
}

} // namespace

SndfileSource::~SndfileSource() {
    try {
        SndfileSource::CloseSource();
    } catch (const RuntimeError&) {
        // The library lacks the function that closes its file.
    }
}

std::vector<std::wstring> SndfileSource::Extensions() {
    return split(L"flac;oga;opus;ogg;w64;caf;rf64;mp2;mp3", L';');
}

std::int32_t SndfileSource::OpenSource(const std::wstring& source) {
    if (!library_.loaded())
        return noLibrary;
    CloseSource();
    forget();
    const FileName name = fileName(source);
    file_ = name.impossible ? 0 : library_.openWide(name.wide, forReading, info_);
    if (file_ == 0)
        return SourceResult::notOpen;
    if (prepare(name.wide))
        return SourceResult::done;
    CloseSource();
    forget();
    return unusable;
}

void SndfileSource::forget() {
    forgetFile();
    info_ = {};
    nextFrame_ = 0;
}

bool SndfileSource::prepare(const std::wstring& path) {
    if (info_.channels < 1 || info_.channels > mostChannels || info_.sampleRate < 1 ||
        info_.sampleRate > mostHertz)
        return false;
    format_ = pcmFormat(static_cast<DWORD>(info_.sampleRate),
                        static_cast<WORD>(std::min(info_.channels, 2)), 16);
    const std::int32_t subtype = info_.format & SndfileSubtype::mask;
    asFloat_ = subtype == SndfileSubtype::float32 || subtype == SndfileSubtype::float64;
    std::int32_t on = 1;
    library_.command(file_, setClipping, nullptr, on);
    if (info_.channels > 2)
        mix_ = StereoMixer(speakers());
    // Streamed files may lack their length, which then is the largest number.
    const auto frames = static_cast<std::int64_t>(
        static_cast<std::uint64_t>(static_cast<std::uint32_t>(info_.framesHigh)) << 32 |
        info_.framesLow);
    totalFrames_ = frames == std::numeric_limits<std::int64_t>::max() ? 0 : frames;
    bitrate_ = averageBitrate(path, static_cast<double>(totalFrames_) / info_.sampleRate);
    readTags();
    return true;
}

std::vector<DWORD> SndfileSource::speakers() {
    const auto channels = static_cast<std::size_t>(info_.channels);
    if ((info_.format & containerMask) == oggContainer && channels <= std::size(oggSpeakers)) {
        const auto& speakers = oggSpeakers[channels - 1];
        return {speakers.begin(), speakers.begin() + info_.channels};
    }
    std::vector<std::int32_t> map(channels);
    if (library_.command(file_, getChannelMap, map.data(),
                         static_cast<std::int32_t>(channels * sizeof map[0])) == 0)
        return speakersOf(static_cast<std::int32_t>(channels));
    std::vector<DWORD> result;
    std::ranges::transform(map, std::back_inserter(result), &speakerOfNumber);
    return result;
}

void SndfileSource::readTags() {
    for (const TagRule& rule : tagRules) {
        const std::int32_t text = library_.getString(file_, rule.type);
        if (text == 0)
            continue;
        std::wstring value = fromUtf8(std::bit_cast<const char*>(text));
        if (!value.empty())
            tags_.AddTag(rule.name, std::move(value));
    }
}

std::int32_t SndfileSource::CloseSource() {
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return SourceResult::notOpen;
    library_.close(file_);
    file_ = 0;
    return SourceResult::done;
}

std::int32_t SndfileSource::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    bytesRead = 0;
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return SourceResult::notOpen;
    const std::int32_t wanted = std::max(bytes, 0) / format_.nBlockAlign;
    const std::int32_t got = readFrames(static_cast<std::int16_t*>(buffer), wanted);
    nextFrame_ += got;
    bytesRead = got * format_.nBlockAlign;
    ended_ = got < wanted || (totalFrames_ > 0 && nextFrame_ >= totalFrames_);
    return got < wanted ? SourceResult::endOfData : SourceResult::done;
}

// In pieces if they go by way of memory of our own, which a high rate and many channels would make
// large.
std::int32_t SndfileSource::readFrames(std::int16_t* to, std::int32_t frames) {
    if (info_.channels <= 2 && !asFloat_)
        return decode(to, frames);
    constexpr std::int32_t piece = 4096;
    const std::size_t outputChannels = format_.nChannels;
    std::int32_t read = 0;
    std::int32_t wanted = 0;
    std::int32_t got = 0;
    do {
        wanted = std::min(frames - read, piece);
        got = readPiece(to + static_cast<std::size_t>(read) * outputChannels, wanted);
        read += got;
    } while (got == wanted && read < frames);
    return read;
}

std::int32_t SndfileSource::readPiece(std::int16_t* to, std::int32_t frames) {
    if (info_.channels <= 2)
        return decode(to, frames);
    unmixed_.resize(static_cast<std::size_t>(frames) * static_cast<std::size_t>(info_.channels));
    const std::int32_t got = decode(unmixed_.data(), frames);
    mix_.apply(unmixed_.data(), to, static_cast<std::size_t>(got));
    return got;
}

// Fewer frames than asked for are all that there are.
std::int32_t SndfileSource::decode(std::int16_t* to, std::int32_t frames) {
    if (!asFloat_)
        return std::clamp(library_.readFramesShort(file_, to, frames), 0, frames);
    const auto channels = static_cast<std::size_t>(info_.channels);
    floats_.resize(static_cast<std::size_t>(frames) * channels);
    const std::int32_t got =
        std::clamp(library_.readFramesFloat(file_, floats_.data(), frames), 0, frames);
    std::transform(floats_.begin(),
                   floats_.begin() + static_cast<std::ptrdiff_t>(got) * info_.channels, to,
                   &toSample);
    return got;
}

std::int32_t SndfileSource::SeekTo(std::int32_t value, std::int32_t& mode) {
    if (!library_.loaded())
        return noLibrary;
    if (file_ == 0)
        return SourceResult::notOpen;
    // Not to 100: at the very end there is nothing to deliver.
    constexpr std::int32_t lastPercent = 99;
    const std::optional<std::int64_t> frame = seekTarget(
        *this, value, mode,
        [&] { return totalFrames_ / 100 * value + totalFrames_ % 100 * value / 100; },
        [&] { return std::int64_t{info_.sampleRate} * value; }, lastPercent);
    return frame && seekFrame(*frame) ? SourceResult::done : seekRefused;
}

bool SndfileSource::seekFrame(std::int64_t frame) {
    const bool mpeg = (info_.format & containerMask) == mpegContainer;
    const std::int64_t from = mpeg ? std::max<std::int64_t>(frame - mpegPreRoll, 0) : frame;
    constexpr std::int32_t refused = -1;
    if (library_.seek(file_, from, fromStart) == refused)
        return false;
    std::vector<std::int16_t> passedOver(static_cast<std::size_t>(frame - from) *
                                         static_cast<std::size_t>(info_.channels));
    if (frame > from)
        (void)decode(passedOver.data(), static_cast<std::int32_t>(frame - from));
    nextFrame_ = frame;
    ended_ = totalFrames_ > 0 && nextFrame_ >= totalFrames_;
    return true;
}

std::int32_t SndfileSource::Position() {
    return milliseconds(nextFrame_);
}

std::int32_t SndfileSource::Duration() {
    return milliseconds(totalFrames_);
}

std::int32_t SndfileSource::milliseconds(std::int64_t frames) const {
    return info_.sampleRate < 1
               ? 0
               : roundToInt32(static_cast<double>(frames) / info_.sampleRate * 1000);
}

} // namespace corvina
