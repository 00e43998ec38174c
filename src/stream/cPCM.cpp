#include "stream/cPCM.h"

#include "platform/ErrorBoxes.h"
#include "runtime/OutOfMemory.h"
#include "runtime/Rounding.h"
#include "stream/AcmConversion.h"
#include "stream/ConverterFormats.h"
#include "stream/LinearConversion.h"
#include "stream/PcmFormat.h"
#include "stream/cSoundSTRM.h"

#include "Corvina.h"

#include <algorithm>
#include <cstring>

namespace corvina {
namespace {

constexpr double bufferSeconds = 500.0 / 1000.0;

// No device plays half a second of this size: whoever announces it has a damaged format record.
constexpr std::int32_t largestBuffer = 64 * 1024 * 1024;

// Of how many bytes of sound one byte is read where the codec cannot say it. What is read too much
// waits in the codec.
constexpr std::int32_t highCompression = 32;

// A source that says "more follows" and delivers nothing, or a codec that converts nothing, would
// be asked for ever inside one window message. After half a minute of data without one byte of
// sound the stream counts as ended.
constexpr int mostFillsWithoutOutput = 64;

// A codec may hold back what it has decoded, up to as much again as it has returned by the end of
// the data. One that goes on beyond that would keep the host waiting.
constexpr std::int64_t mostFillsAtEnd = 64;

// The 16-bit elements of an output buffer of that many bytes. Half an element rounds to even and
// may be rounded away.
std::size_t elementsOf(std::int32_t outputBytes) {
    return static_cast<std::size_t>(roundToInt32(outputBytes / 2.0 - 1) + 1);
}

} // namespace

bool cPCM::Exhausted() const noexcept {
    return ended_ && !blocksLeft_ && readOffset_ >= available_;
}

std::int32_t cPCM::OutputSamplerate() const noexcept {
    return static_cast<std::int32_t>(outputFormat_.nSamplesPerSec);
}

std::int16_t cPCM::OutputChannels() const noexcept {
    return static_cast<std::int16_t>(outputFormat_.nChannels);
}

std::int16_t cPCM::OutputBitsPerSample() const noexcept {
    return static_cast<std::int16_t>(outputFormat_.wBitsPerSample);
}

bool cPCM::InitConversion(cSoundSTRM& source, cCallback* observer, bool force16Bit) {
    conversion_.reset();
    const WAVEFORMATEX* const record = deliveredRecord(source, deliveredFormat_);
    if (!record || !isComplete(*record))
        return false;
    sourceFormat_ = *record;
    const bool force = source.Info().Force16Bit() || force16Bit;
    outputFormat_ = pcmFormat(sourceFormat_.nSamplesPerSec, sourceFormat_.nChannels,
                              outputWidth(sourceFormat_.wBitsPerSample, force));
    const bool opened = openManaged(source, force16Bit);
    // Codecs that take more than two channels of PCM may convert the first two and leave holes in
    // place of the others. So these are converted here, whatever the manager returns.
    const bool manyChannels = record->wFormatTag == WAVE_FORMAT_PCM && record->nChannels > 2;
    if ((!opened || manyChannels) && !openLinear(*record, false) && !opened)
        return false;
    const std::optional<Sizes> sizes = measure();
    if (!sizes || !sizeBuffers(*sizes)) {
        conversion_.reset();
        return false;
    }
    source_ = &source;
    observer_ = observer;
    restart();
    readOffset_ = available_ = 0;
    return true;
}

bool cPCM::openManaged(cSoundSTRM& source, bool onlyThisWidth) {
    if (openStream(source))
        return true;
    // Only the caller's own wish forbids the other width; a source's does not.
    if (onlyThisWidth)
        return false;
    // Deliberate: block align and average rate stay those of the first width. Codecs go by the
    // width, and the player announces the same mixed record to the device.
    outputFormat_.wBitsPerSample = outputFormat_.wBitsPerSample == 16 ? 8 : 16;
    if (openStream(source))
        return true;
    // Some codecs go by the complete record (GSM 6.10 is one) and did not take the mixed one for
    // PCM.
    outputFormat_ = pcmFormat(sourceFormat_.nSamplesPerSec, sourceFormat_.nChannels,
                              outputFormat_.wBitsPerSample);
    return openStream(source);
}

bool cPCM::openLinear(const WAVEFORMATEX& record, bool mixed) {
    const std::optional<LinearFormat> format =
        mixed ? linearFormat(record) : linearBeyondManager(record);
    if (!format)
        return false;
    auto linear = std::make_unique<LinearConversion>(*format, mixed);
    outputFormat_ =
        pcmFormat(record.nSamplesPerSec, static_cast<WORD>(linear->outputChannels()), 16);
    conversion_ = std::move(linear);
    managed_ = false;
    return true;
}

bool cPCM::mixToStereo() {
    if (!source_ || !conversion_ || sourceFormat_.nChannels <= 2)
        return false;
    const WAVEFORMATEX* const record = deliveredRecord(*source_, deliveredFormat_);
    if (!record || !openLinear(*record, true))
        return false;
    const std::optional<Sizes> sizes = measure();
    return sizes && sizeBuffers(*sizes);
}

bool cPCM::InitConversion2(cSoundSTRM& source, cCallback* observer, bool force16Bit) {
    return InitConversion(source, observer, force16Bit);
}

void cPCM::ResetACM() {
    if (!conversion_)
        return;
    const bool managed = managed_;
    const bool mixed = OutputChannels() != static_cast<std::int16_t>(sourceFormat_.nChannels);
    CloseConverter();
    // The results do not matter: without a stream every conversion fails, and playback runs out.
    if (managed)
        (void)openStream(*source_);
    else if (const WAVEFORMATEX* record = deliveredRecord(*source_, deliveredFormat_))
        (void)openLinear(*record, mixed);
    if (const std::optional<Sizes> sizes = measure())
        (void)sizeBuffers(*sizes);
    silenceBuffers();
    restart();
    // What was converted before the seek has become silence and is still returned.
}

bool cPCM::startAgain() noexcept {
    if (!conversion_ || sourceFormat_.wFormatTag != WAVE_FORMAT_PCM)
        return false;
    restart();
    readOffset_ = available_ = 0;
    return true;
}

bool cPCM::CloseConverter() noexcept {
    conversion_.reset();
    silenceBuffers();
    return true;
}

bool cPCM::openStream(cSoundSTRM& source) {
    const WAVEFORMATEX* const record = deliveredRecord(source, deliveredFormat_);
    conversion_ = record ? AcmConversion::open(acm_, *record, outputFormat_) : nullptr;
    managed_ = conversion_ != nullptr;
    return managed_;
}

std::optional<cPCM::Sizes> cPCM::measure() const {
    const auto bytesPerSecond = static_cast<std::int32_t>(outputFormat_.nAvgBytesPerSec);
    const std::int32_t output = roundToInt32(bytesPerSecond * bufferSeconds);
    if (!conversion_ || output < 0 || output > largestBuffer)
        return std::nullopt;
    std::optional<std::uint32_t> source =
        conversion_->sourceBytes(static_cast<std::uint32_t>(output));
    // Codecs go by the record's average rate, which some writers leave at 0.
    if (source == 0u && sourceFormat_.wFormatTag != WAVE_FORMAT_PCM)
        source = static_cast<std::uint32_t>(output / highCompression);
    if (!source || *source > static_cast<std::uint32_t>(largestBuffer))
        return std::nullopt;
    const std::int64_t reach = bytesInReach(sourceFormat_, *source);
    if (reach > largestBuffer + largestBlock)
        return std::nullopt;
    return Sizes{.output = output,
                 .source = static_cast<std::int32_t>(*source),
                 .sourceReach = static_cast<std::int32_t>(reach)};
}

bool cPCM::sizeBuffers(const Sizes& sizes) {
    return memoryReaches([&] {
        // The last byte of an odd size may have no element, and the codec writes it all the same.
        const auto halves = static_cast<std::size_t>(sizes.output + 1) / 2;
        std::vector<std::int16_t> output(std::max(elementsOf(sizes.output), halves));
        std::vector<std::uint8_t> source(static_cast<std::size_t>(sizes.sourceReach));
        outputBuffer_ = std::move(output);
        sourceBuffer_ = std::move(source);
        sizes_ = sizes;
    });
}

void cPCM::restart() noexcept {
    ended_ = false;
    first_ = true;
    leftover_ = 0;
    blocksLeft_ = false;
    fillsAtEnd_ = 0;
    fillsWithoutOutput_ = 0;
    toDrop_ = 0;
}

// Silence is 0x80 in samples of 8 bits.
void cPCM::silenceBuffers() noexcept {
    const std::int16_t silent = OutputBitsPerSample() == 8 ? static_cast<std::int16_t>(0x8080) : 0;
    std::fill(outputBuffer_.begin(), outputBuffer_.end(), silent);
    std::fill(sourceBuffer_.begin(), sourceBuffer_.end(), std::uint8_t{0});
}

// Converts that many bytes of the source buffer. What came of them is then available, nothing after
// a failure.
void cPCM::convert(std::int32_t length) noexcept {
    available_ = 0;
    blocksLeft_ = false;
    if (!conversion_)
        return;
    const auto bytes = static_cast<std::size_t>(length);
    auto* const output = reinterpret_cast<std::uint8_t*>(outputBuffer_.data());
    const std::optional<ConvertedBytes> converted = conversion_->convert(
        std::span(sourceBuffer_).first(bytes),
        std::span(output, static_cast<std::size_t>(sizes_.output)), first_, ended_);
    // A failed first conversion is not repeated: the next one goes on in the middle of the stream.
    first_ = false;
    if (!converted)
        return;
    const auto used = static_cast<std::int32_t>(converted->used);
    leftover_ = length - used;
    // Also from and to an empty buffer.
    std::copy(sourceBuffer_.begin() + used, sourceBuffer_.begin() + length, sourceBuffer_.begin());
    available_ = static_cast<std::int32_t>(converted->produced);
    // The output may have been full before the codec came to the end of a compressed stream: then
    // blocks are left here, or decoded samples in the codec.
    const bool full = available_ > sizes_.output - outputFormat_.nBlockAlign;
    const bool heldBack = full && sourceFormat_.wFormatTag != WAVE_FORMAT_PCM && managed_;
    const bool left = used > 0 && leftover_ >= sourceFormat_.nBlockAlign;
    fillsAtEnd_ += ended_ ? 1 : -1;
    blocksLeft_ = ended_ && (heldBack || left) && fillsAtEnd_ < mostFillsAtEnd;
}

// The bytes to read so that the source buffer then ends with a block. So the source is always
// between two blocks, and what is left here fits what it delivers after a seek.
std::int32_t cPCM::bytesToRead() const noexcept {
    const std::int32_t most = sizes_.source - leftover_;
    const std::int32_t beyondBlock = sizes_.source % sourceFormat_.nBlockAlign;
    return most > beyondBlock ? most - beyondBlock : most;
}

// The source was moved within compressed sound.
void cPCM::startLeadIn() {
    const LeadIn leadIn = source_->goToLeadIn();
    toDrop_ = leadIn.frames * OutputChannels() * (OutputBitsPerSample() / 8);
    if (!leadIn.fromReset || !managed_ || first_)
        return;
    leftover_ = 0;
    first_ = true;
    conversion_.reset();
    // Without a stream every conversion fails, and playback runs out.
    (void)openStream(*source_);
}

void cPCM::dropLeadIn() noexcept {
    const auto dropped = static_cast<std::int32_t>(std::min<std::int64_t>(toDrop_, available_));
    if (dropped <= 0)
        return;
    available_ -= dropped;
    toDrop_ -= dropped;
    auto* const output = reinterpret_cast<std::uint8_t*>(outputBuffer_.data());
    std::memmove(output, output + dropped, static_cast<std::size_t>(available_));
}

// Replaces the output buffer's content; whether anything more can come.
bool cPCM::fill() {
    if (ended_ && !blocksLeft_) {
        available_ = 0;
        readOffset_ = 0;
        silenceBuffers();
        return false;
    }
    std::int32_t delivered = 0;
    if (!ended_) {
        if (source_->hasLeadIn())
            startLeadIn();
        const std::int32_t asked = bytesToRead();
        const auto read = [&] {
            const NoErrorBoxes quiet;
            return source_->Read(sourceBuffer_.data() + leftover_, asked, delivered);
        };
        if (read() != SourceResult::done)
            ended_ = true;
        delivered = std::clamp(delivered, 0, asked);
    }
    convert(leftover_ + delivered);
    readOffset_ = 0;
    fillsWithoutOutput_ = available_ > 0 ? 0 : fillsWithoutOutput_ + 1;
    if (fillsWithoutOutput_ >= mostFillsWithoutOutput) {
        ended_ = true;
        blocksLeft_ = false;
    }
    dropLeadIn();
    deliver();
    return true;
}

void cPCM::deliver() {
    if (available_ == 0 || OutputBitsPerSample() < 16 || !observer_)
        return;
    SAFEARRAY* samples = outputArray_.view(outputBuffer_.data(), elementsOf(sizes_.output));
    observer_->Samples(&samples, available_, OutputChannels());
    outputArray_.takeBack(samples);
}

bool cPCM::GetSamples(void* buffer, std::int32_t bytes, std::int32_t& bytesReturned) {
    if (!source_)
        return false;
    bytesReturned = 0;
    while (bytesReturned < bytes) {
        const std::int32_t waiting = available_ - readOffset_;
        if (waiting > 0) {
            const std::int32_t part = std::min(waiting, bytes - bytesReturned);
            // By its number, for the host's address may be none.
            void* const destination =
                reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(buffer) +
                                        static_cast<std::uint32_t>(bytesReturned));
            const auto* const converted =
                reinterpret_cast<const std::uint8_t*>(outputBuffer_.data()) + readOffset_;
            // A destination that cannot be written is counted as if it had been. This runs for
            // every block, and touching its pages costs a fraction of asking the system about them.
            // The other end of the copy is our own and always good.
            if (!::IsBadWritePtr(destination, static_cast<UINT_PTR>(part)))
                std::memcpy(destination, converted, static_cast<std::size_t>(part));
            bytesReturned += part;
            readOffset_ += part;
        }
        if (bytesReturned < bytes && !fill())
            break;
    }
    return true;
}

} // namespace corvina
