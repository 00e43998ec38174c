#pragma once

// Converts the bytes of a source to PCM of 8 or 16 bits, half a second at a time, and returns it in
// pieces of any size. Every source is played through it. The audio compression manager is asked
// first; linear samples that it refuses are converted here.
//
// Call InitConversion once the source is open, GetSamples repeatedly, ResetACM or startAgain after
// each seek of the source, CloseConverter at the end (the destructor does it too). One thread. The
// source and the observer must outlive the converter or be replaced by another InitConversion. No
// reference to the observer is held: it may own the converter. A run-time error of the source
// passes through.

#include "platform/AcmApi.h"
#include "stream/Conversion.h"
#include "stream/SampleArray.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct cCallback;

namespace corvina {

class cSoundSTRM;

class cPCM {
public:
    explicit cPCM(const AcmApi& acm = systemAcmApi) noexcept : acm_(acm) {}
    cPCM(const cPCM&) = delete;
    cPCM& operator=(const cPCM&) = delete;

    // The source has reported the end of its data. Converted samples may still be left.
    [[nodiscard]] bool EndOfStream() const noexcept { return ended_; }
    // The source has reported the end of its data, and no converted samples are left.
    [[nodiscard]] bool Exhausted() const noexcept;
    // Bytes of output that are returned before the source is read again.
    [[nodiscard]] std::int32_t bytesAhead() const noexcept { return available_ - readOffset_; }
    [[nodiscard]] std::int32_t OutputSamplerate() const noexcept;
    [[nodiscard]] std::int16_t OutputChannels() const noexcept;
    [[nodiscard]] std::int16_t OutputBitsPerSample() const noexcept;

    // Copies up to that many bytes, fewer only at the end of the data. False only without a source.
    // A destination that cannot be written is skipped, and counted as written.
    bool GetSamples(void* buffer, std::int32_t bytes, std::int32_t& bytesReturned);
    // For a source that was repositioned. What was converted before becomes silence.
    void ResetACM();
    // For a source that was repositioned. What was converted before is dropped. False, and nothing
    // is done, if the source is not PCM.
    [[nodiscard]] bool startAgain() noexcept;
    bool CloseConverter() noexcept; // always true
    // False if the format cannot be converted. The observer, if any, sees each block of 16 bits.
    bool InitConversion(cSoundSTRM& source, cCallback* observer, bool force16Bit);
    // For a device of two channels at most: from now on two come out, mixed by their places.
    // Before the first GetSamples. False for fewer channels and for compressed sound.
    [[nodiscard]] bool mixToStereo();
    bool InitConversion2(cSoundSTRM& source, cCallback* observer, bool force16Bit); // the same

private:
    struct Sizes {
        std::int32_t output;      // bytes of PCM in half a second
        std::int32_t source;      // bytes that convert into one output buffer
        std::int32_t sourceReach; // bytes that a codec may read of them and behind them
    };

    [[nodiscard]] bool openManaged(cSoundSTRM& source, bool onlyThisWidth);
    [[nodiscard]] bool openStream(cSoundSTRM& source);
    [[nodiscard]] bool openLinear(const WAVEFORMATEX& record, bool mixed);
    [[nodiscard]] std::optional<Sizes> measure() const;
    [[nodiscard]] bool sizeBuffers(const Sizes& sizes);
    void restart() noexcept;
    void silenceBuffers() noexcept;
    [[nodiscard]] std::int32_t bytesToRead() const noexcept;
    void startLeadIn();
    void dropLeadIn() noexcept;
    [[nodiscard]] bool fill();
    void convert(std::int32_t length) noexcept;
    void deliver();

    const AcmApi& acm_;
    cSoundSTRM* source_ = nullptr;
    cCallback* observer_ = nullptr;
    std::unique_ptr<Conversion> conversion_;
    bool managed_ = false;           // the conversion is the manager's
    WAVEFORMATEX deliveredFormat_{}; // if it is not the source's own record
    WAVEFORMATEX sourceFormat_{};
    WAVEFORMATEX outputFormat_{};
    std::vector<std::uint8_t> sourceBuffer_;
    std::vector<std::int16_t> outputBuffer_;
    SampleArray outputArray_;
    Sizes sizes_{};
    std::int32_t readOffset_ = 0; // bytes of the output buffer that were returned
    std::int32_t available_ = 0;  // converted bytes in the output buffer
    std::int32_t leftover_ = 0;   // unconverted bytes at the front of the source buffer
    std::int64_t toDrop_ = 0;     // bytes of output that come before the place sought
    int fillsWithoutOutput_ = 0;
    std::int64_t fillsAtEnd_ = 0; // less those before the end
    bool blocksLeft_ = false;     // the end of the stream is still to be converted
    bool ended_ = false;
    bool first_ = true;
};

} // namespace corvina
