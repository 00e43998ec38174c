#pragma once

// Turns the bytes of a source into plain PCM of 8 or 16 bits through the audio compression manager,
// half a second at a time, and hands them out in whatever amounts the caller asks for. Every source
// goes through it, PCM too.
//
// InitConversion once the source is open, GetSamples repeatedly, ResetACM after each seek of the
// source, CloseConverter at the end (the destructor does it too). One thread. Source and observer
// are borrowed: both must outlive the converter or be replaced by another InitConversion; the
// observer is not counted, so that a control that observes its own converter can die. A run-time
// error raised by the source passes through.

#include "platform/AcmApi.h"
#include "stream/SampleArray.h"

#include <cstdint>
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
    ~cPCM();

    // The source has reported the end of its data; what was converted of it may still be waiting.
    [[nodiscard]] bool EndOfStream() const noexcept { return ended_; }
    // It has, and everything converted was handed out.
    [[nodiscard]] bool Exhausted() const noexcept { return ended_ && readOffset_ >= available_; }
    [[nodiscard]] std::int32_t OutputSamplerate() const noexcept;
    [[nodiscard]] std::int16_t OutputChannels() const noexcept;
    [[nodiscard]] std::int16_t OutputBitsPerSample() const noexcept;

    // Copies up to cBytes bytes to pBuffer. False only without a source. Fewer bytes than asked
    // come at the end of the data. A destination that cannot be written is skipped as if it had
    // been.
    bool GetSamples(void* pBuffer, std::int32_t cBytes, std::int32_t& cBytesReturned);
    // Converts afresh after the source was repositioned. What is left in the output buffer is
    // silenced but still handed out.
    void ResetACM();
    // Always true.
    bool CloseConverter() noexcept;
    // False where no conversion of the source's format is possible. The observer may be null; it is
    // called with each converted block of 16-bit samples.
    bool InitConversion(cSoundSTRM& Source, cCallback* Callback, bool Force16Bit);
    // A second entry to the same steps.
    bool InitConversion2(cSoundSTRM& Source, cCallback* Callback, bool Force16Bit);

private:
    struct Sizes {
        std::int32_t output;      // bytes of PCM in half a second
        std::int32_t source;      // bytes that convert into one output buffer
        std::int32_t sourceReach; // bytes that a codec may read of them and behind them
    };

    [[nodiscard]] bool openStream(cSoundSTRM& source);
    void closeStream() noexcept;
    [[nodiscard]] std::optional<Sizes> measureStream() const;
    [[nodiscard]] bool sizeBuffers(const Sizes& sizes);
    void restart() noexcept;
    [[nodiscard]] bool fill();
    void convert(std::int32_t length, bool endOfData) noexcept;
    void deliver();

    const AcmApi& acm_;
    cSoundSTRM* source_ = nullptr;
    cCallback* observer_ = nullptr;
    HACMSTREAM stream_ = nullptr;
    WAVEFORMATEX sourceFormat_{};
    WAVEFORMATEX outputFormat_{};
    std::vector<std::uint8_t> sourceBuffer_;
    std::vector<std::int16_t> outputBuffer_;
    SampleArray outputArray_;
    Sizes sizes_{};
    std::int32_t readOffset_ = 0; // bytes of the output buffer handed out
    std::int32_t available_ = 0;  // converted bytes in the output buffer
    std::int32_t leftover_ = 0;   // unconverted bytes at the front of the source buffer
    int fillsWithoutOutput_ = 0;
    bool ended_ = false;
    bool first_ = true;
};

} // namespace corvina
