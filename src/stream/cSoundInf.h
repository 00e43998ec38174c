#pragma once

// The description of an opened audio source: its format, time and tags. All members are read-only.

#include <cstdint>

namespace corvina {

class StrmTags;

class cSoundInf {
public:
    virtual ~cSoundInf() = default;

    // The source's one collection, the same object each time; empty for a source without tags. The
    // CD manager alone has none and returns null.
    virtual StrmTags* Tags() = 0;
    // The converter must output 16-bit samples whatever its caller asks.
    virtual bool Force16Bit() = 0;
    // Samples per second of one channel.
    virtual std::int32_t SampleRate() = 0;
    virtual std::int16_t Channels() = 0;
    // Of the delivered data.
    virtual std::int16_t BitsPerSample() = 0;
    // Bits per second of the stream as stored.
    virtual std::int32_t Bitrate() = 0;
    // Milliseconds from the start of the audio.
    virtual std::int32_t Position() = 0;
    // Milliseconds.
    virtual std::int32_t Duration() = 0;
};

} // namespace corvina
