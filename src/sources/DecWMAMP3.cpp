#include "sources/DecWMAMP3.h"

#include "platform/MemoryProbe.h"
#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"
#include "runtime/Text.h"
#include "sources/MediaTime.h"
#include "stream/FileName.h"
#include "stream/SeekTarget.h"

#include <cstring>
#include <limits>
#include <nserror.h>

namespace corvina {
namespace {

constexpr std::int32_t noReader = 3;
constexpr std::int32_t unusable = 12;
constexpr std::int32_t seekRefused = 4;

constexpr std::int32_t playbackRights = 1;
// A reader that goes on with blocks without sound would keep the host waiting.
constexpr int mostEmptyBlocks = 10'000; // in a row
constexpr DWORD largestSample = std::numeric_limits<std::int32_t>::max();

} // namespace

DecWMAMP3::DecWMAMP3(const LibraryApi& libraries) : library_(libraries) {
    if (library_.LoadDLL(L"wmvcore.dll"))
        createReader();
}

DecWMAMP3::~DecWMAMP3() {
    DecWMAMP3::CloseSource();
}

void DecWMAMP3::createReader() {
    try {
        const std::int32_t result =
            library_.CallFunc("WMCreateSyncReader", nullptr, playbackRights, reader_.put());
        // What a failed call leaves there is no reference.
        if (result != S_OK)
            (void)reader_.detach();
    } catch (const RuntimeError&) {
        // A library without the export is as good as none.
    }
}

std::vector<std::wstring> DecWMAMP3::Extensions() {
    return split(L"wma;mp3;wmv", L';');
}

std::int32_t DecWMAMP3::OpenSource(const std::wstring& source) {
    if (!reader_)
        return noReader;
    if (isDeviceName(source))
        return SourceResult::notOpen;
    if (reader_->Open(source.c_str()) != S_OK) {
        const FileName name = fileName(source);
        if (name.impossible || name.wide == source || reader_->Open(name.wide.c_str()) != S_OK)
            return SourceResult::notOpen;
    }
    // An open that is given up halfway ends with the reader closed.
    struct OpenReader {
        DecWMAMP3& owner;
        bool kept = false;
        ~OpenReader() {
            if (!kept)
                owner.closeReader();
        }
    } opened{.owner = *this};
    if (!prepareReader())
        return unusable;
    opened.kept = true;
    dropSample();
    position_ = 0;
    open_ = true;
    return SourceResult::done;
}

bool DecWMAMP3::prepareReader() {
    // The range by frames is the whole stream and changes nothing; it is set all the same, and a
    // file for which it cannot be set is not played.
    constexpr WORD firstStream = 1;
    const std::optional<MediaOutput> output = selectPcmOutput(*reader_.get(), format_);
    if (!output || reader_->SetRangeByFrame(firstStream, 0, 0) != S_OK ||
        !readMediaAttributes(*reader_.get(), attributes_, tags_))
        return false;
    if (output->outputs > 1)
        playOnly(*reader_.get(), *output);
    return true;
}

// After a failed open nothing is open, whatever was before.
void DecWMAMP3::closeReader() noexcept {
    reader_->Close();
    open_ = false;
    endOfStream_ = false;
    tags_.ClearTags();
    dropSample();
}

std::int32_t DecWMAMP3::CloseSource() {
    if (!reader_)
        return noReader;
    if (!open_)
        return SourceResult::notOpen;
    closeReader();
    return SourceResult::done;
}

void DecWMAMP3::dropSample() noexcept {
    sampleLength_ = 0;
    sampleOffset_ = 0;
}

// The end of the stream is only ever noted by a failed fetch. A later success does not take it
// back.
bool DecWMAMP3::fetchNextSample() {
    if (!reader_)
        return false;
    constexpr WORD anyOutput = 0;
    ComPtr<INSSBuffer> buffer;
    QWORD duration = 0;
    DWORD flags = 0;
    DWORD output = 0;
    const HRESULT result = reader_->GetNextSample(anyOutput, buffer.put(), &position_, &duration,
                                                  &flags, &output, nullptr);
    if (result != S_OK) {
        endOfStream_ = result == NS_E_NO_MORE_SAMPLES;
        return false;
    }
    BYTE* data = nullptr;
    DWORD length = 0;
    if (!buffer || buffer->GetBufferAndLength(&data, &length) != S_OK || length > largestSample ||
        !isReadable(data, length))
        return false;
    sample_.assign(data, data + length);
    sampleLength_ = static_cast<std::int32_t>(length);
    sampleOffset_ = 0;
    return true;
}

std::int32_t DecWMAMP3::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    const auto target = reinterpret_cast<std::uintptr_t>(buffer);
    bytesRead = 0;
    int emptyBlocks = 0;
    while (bytesRead < bytes) {
        const std::int32_t left = sampleLength_ - sampleOffset_;
        const std::int32_t needed = bytes - bytesRead;
        if (left >= needed) {
            copySample(target + static_cast<std::uint32_t>(bytesRead), needed);
            bytesRead = bytes;
            break;
        }
        if (left > 0) {
            copySample(target + static_cast<std::uint32_t>(bytesRead), left);
            bytesRead += left;
        }
        if (!fetchNextSample())
            return SourceResult::endOfData;
        emptyBlocks = sampleLength_ == 0 ? emptyBlocks + 1 : 0;
        if (emptyBlocks == mostEmptyBlocks)
            return SourceResult::endOfData;
    }
    return SourceResult::done;
}

// Memory that cannot be written is passed over as if it had been.
void DecWMAMP3::copySample(std::uintptr_t target, std::int32_t bytes) noexcept {
    const auto count = static_cast<std::size_t>(bytes);
    void* const memory = reinterpret_cast<void*>(target);
    if (isWritable(memory, count))
        std::memcpy(memory, sample_.data() + sampleOffset_, count);
    sampleOffset_ += bytes;
}

std::int32_t DecWMAMP3::SeekTo(std::int32_t value, std::int32_t& mode) {
    if (!reader_)
        return seekRefused;
    // Not to 100: at the very end the reader has nothing to deliver.
    constexpr std::int32_t lastPercent = 99;
    const std::optional<std::uint64_t> target = seekTarget(
        *this, value, mode, [&] { return mediaTimeAtPercent(attributes_.duration, value); },
        [&] {
            const double percent = divide(value, Duration() / 1000.0) * 100;
            return mediaTimeAtPercent(attributes_.duration, percent);
        },
        lastPercent);
    constexpr LONGLONG toTheEnd = 0;
    if (!target || reader_->SetRange(*target, toTheEnd) != S_OK)
        return seekRefused;
    dropSample();
    (void)fetchNextSample();
    return SourceResult::done;
}

std::int32_t DecWMAMP3::SampleRate() {
    return static_cast<std::int32_t>(format_.record().nSamplesPerSec);
}

std::int16_t DecWMAMP3::Channels() {
    return static_cast<std::int16_t>(format_.record().nChannels);
}

std::int16_t DecWMAMP3::BitsPerSample() {
    return static_cast<std::int16_t>(format_.record().wBitsPerSample);
}

std::int32_t DecWMAMP3::Bitrate() {
    constexpr std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
    if (attributes_.bitrate > largest)
        throwOverflow();
    return static_cast<std::int32_t>(attributes_.bitrate);
}

std::int32_t DecWMAMP3::Position() {
    return mediaMilliseconds(position_);
}

std::int32_t DecWMAMP3::Duration() {
    return mediaMilliseconds(attributes_.duration);
}

} // namespace corvina
