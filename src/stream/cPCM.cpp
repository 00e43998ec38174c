#include "stream/cPCM.h"

#include "platform/ErrorBoxes.h"
#include "runtime/OutOfMemory.h"
#include "runtime/Rounding.h"
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

// A source that says "more follows" and delivers nothing, or a codec that converts nothing, would
// be asked for ever inside one window message. After half a minute of data without one byte of
// sound the stream counts as ended.
constexpr int mostFillsWithoutOutput = 64;

// 4-bit ADPCM plays as 8 bits, 24 and 32 bits as 16.
std::uint16_t outputWidth(std::uint16_t sourceBits, bool force16Bit) {
    return force16Bit || sourceBits > 8 ? 16 : 8;
}

// In these formats the number of samples in a block follows the record; in the first one also the
// seven pairs of coefficients, and their number.
bool countsSamples(const WAVEFORMATEX& record) {
    switch (record.wFormatTag) {
    case WAVE_FORMAT_ADPCM:
        return record.cbSize == 2 * sizeof(WORD) + 7 * sizeof(ADPCMCOEFSET);
    case WAVE_FORMAT_IMA_ADPCM:
    case WAVE_FORMAT_GSM610:
        return record.cbSize == sizeof(WORD);
    default:
        return false;
    }
}

// Some codecs divide by these fields without a look at them.
bool isComplete(const WAVEFORMATEX& record) {
    WORD samplesInBlock = 1;
    if (countsSamples(record))
        std::memcpy(&samplesInBlock, &record + 1, sizeof samplesInBlock);
    return record.nChannels != 0 && record.nSamplesPerSec != 0 && record.nBlockAlign != 0 &&
           samplesInBlock != 0;
}

// No block of compressed sound is larger: a record counts up to 65535 samples in one, of half a
// byte each in two channels.
constexpr std::int64_t largestBlock = 128 * 1024;

// How far a codec may read in a buffer of that many bytes. Those of the platform read complete PCM
// samples, and as many compressed ones as the record counts, even if the record's blocks are too
// small for them.
std::int64_t bytesInReach(const WAVEFORMATEX& format, std::int64_t bytes) {
    if (format.wFormatTag != WAVE_FORMAT_PCM)
        return bytes + largestBlock;
    const int sampleBytes = format.nChannels * ((format.wBitsPerSample + 7) / 8);
    return bytes * std::max(1, (sampleBytes + format.nBlockAlign - 1) / format.nBlockAlign);
}

// The 16-bit elements of an output buffer of that many bytes. Half an element rounds to even and
// may be rounded away.
std::size_t elementsOf(std::int32_t outputBytes) {
    return static_cast<std::size_t>(roundToInt32(outputBytes / 2.0 - 1) + 1);
}

template <typename Buffer>
void silence(Buffer& buffer) noexcept {
    std::fill(buffer.begin(), buffer.end(), typename Buffer::value_type{});
}

} // namespace

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
    stream_.reset();
    const WAVEFORMATEX* const record = source.WFXPointer();
    if (!record || !isComplete(*record))
        return false;
    sourceFormat_ = *record;
    const bool force = source.Info().Force16Bit() || force16Bit;
    outputFormat_ = pcmFormat(sourceFormat_.nSamplesPerSec, sourceFormat_.nChannels,
                              outputWidth(sourceFormat_.wBitsPerSample, force));

    if (!openStream(source)) {
        // Only the caller's own wish forbids the other width; a source's does not.
        if (force16Bit)
            return false;
        // Deliberate: block align and average rate stay those of the first width. Codecs go by the
        // width, and the player announces the same mixed record to the device.
        outputFormat_.wBitsPerSample = outputFormat_.wBitsPerSample == 16 ? 8 : 16;
        if (!openStream(source)) {
            // Some codecs go by the complete record (GSM 6.10 is one) and did not take the mixed
            // one for PCM.
            outputFormat_ = pcmFormat(sourceFormat_.nSamplesPerSec, sourceFormat_.nChannels,
                                      outputFormat_.wBitsPerSample);
            if (!openStream(source))
                return false;
        }
    }
    const std::optional<Sizes> sizes = measureStream();
    if (!sizes || !sizeBuffers(*sizes)) {
        stream_.reset();
        return false;
    }
    source_ = &source;
    observer_ = observer;
    restart();
    readOffset_ = 0;
    available_ = 0;
    return true;
}

bool cPCM::InitConversion2(cSoundSTRM& source, cCallback* observer, bool force16Bit) {
    return InitConversion(source, observer, force16Bit);
}

void cPCM::ResetACM() {
    if (!stream_)
        return;
    CloseConverter();
    // The results do not matter: without a stream every conversion fails, and playback runs out.
    (void)openStream(*source_);
    if (const std::optional<Sizes> sizes = measureStream())
        (void)sizeBuffers(*sizes);
    restart();
    // What was converted before the seek has become silence and is still handed out.
}

bool cPCM::CloseConverter() noexcept {
    stream_.reset();
    silence(sourceBuffer_);
    silence(outputBuffer_);
    return true;
}

bool cPCM::openStream(cSoundSTRM& source) {
    HACMSTREAM opened = nullptr;
    auto* const format = const_cast<WAVEFORMATEX*>(source.WFXPointer());
    if (!format || acm_.streamOpen(&opened, nullptr, format, &outputFormat_, nullptr, 0, 0, 0) != 0)
        opened = nullptr;
    stream_ = AcmStream(acm_, opened);
    return opened != nullptr;
}

std::optional<cPCM::Sizes> cPCM::measureStream() const {
    const auto bytesPerSecond = static_cast<std::int32_t>(outputFormat_.nAvgBytesPerSec);
    const std::int32_t output = roundToInt32(bytesPerSecond * bufferSeconds);
    if (output < 0 || output > largestBuffer)
        return std::nullopt;
    DWORD source = 0;
    if (acm_.streamSize(stream_.get(), static_cast<DWORD>(output), &source,
                        ACM_STREAMSIZEF_DESTINATION) != 0 ||
        source > static_cast<DWORD>(largestBuffer))
        return std::nullopt;
    const std::int64_t reach = bytesInReach(sourceFormat_, source);
    if (reach > largestBuffer + largestBlock)
        return std::nullopt;
    return Sizes{.output = output,
                 .source = static_cast<std::int32_t>(source),
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
    fillsWithoutOutput_ = 0;
}

// Converts that many bytes of the source buffer. What came of them is then available, nothing after
// a failure.
void cPCM::convert(std::int32_t length, bool endOfData) noexcept {
    ACMSTREAMHEADER header{};
    header.cbStruct = sizeof header;
    header.pbSrc = sourceBuffer_.data();
    header.cbSrcLength = static_cast<DWORD>(length);
    header.pbDst = reinterpret_cast<BYTE*>(outputBuffer_.data());
    header.cbDstLength = static_cast<DWORD>(sizes_.output);

    DWORD flags = ACM_STREAMCONVERTF_BLOCKALIGN;
    if (first_)
        flags |= ACM_STREAMCONVERTF_START;
    if (endOfData)
        flags |= ACM_STREAMCONVERTF_END;

    available_ = 0;
    acm_.streamPrepareHeader(stream_.get(), &header, 0);
    // A failed first conversion is not repeated: the next one goes on in the middle of the stream.
    first_ = false;
    if (acm_.streamConvert(stream_.get(), &header, flags) == 0) {
        const DWORD used = std::min(header.cbSrcLengthUsed, static_cast<DWORD>(length));
        leftover_ = length - static_cast<std::int32_t>(used);
        std::memmove(sourceBuffer_.data(), sourceBuffer_.data() + used,
                     static_cast<std::size_t>(leftover_));
        available_ = static_cast<std::int32_t>(
            std::min(header.cbDstLengthUsed, static_cast<DWORD>(sizes_.output)));
    }
    acm_.streamUnprepareHeader(stream_.get(), &header, 0);
}

// Replaces the output buffer's content; whether anything more can come.
bool cPCM::fill() {
    if (ended_) {
        available_ = 0;
        readOffset_ = 0;
        silence(outputBuffer_);
        silence(sourceBuffer_);
        return false;
    }
    const std::int32_t asked = sizes_.source - leftover_;
    std::int32_t delivered = 0;
    const auto read = [&] {
        const NoErrorBoxes quiet;
        return source_->Read(sourceBuffer_.data() + leftover_, asked, delivered);
    };
    if (read() != SourceResult::done)
        ended_ = true;
    convert(leftover_ + std::clamp(delivered, 0, asked), ended_);
    readOffset_ = 0;
    fillsWithoutOutput_ = available_ > 0 ? 0 : fillsWithoutOutput_ + 1;
    if (fillsWithoutOutput_ >= mostFillsWithoutOutput)
        ended_ = true;
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
            auto* const destination = static_cast<std::uint8_t*>(buffer) + bytesReturned;
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
