#pragma once

// What the sources have in common whose library decodes to 16 bits: the format that Read delivers,
// the bit rate, the tags and the end. What a closed file was is known until the next open. One
// thread.

#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>

namespace corvina {

class DecodedSource : public cSoundSTRM, public cSoundInf {
public:
    cSoundInf& Info() final { return *this; }
    bool EndOfStream() final { return ended_; }
    const WAVEFORMATEX* WFXPointer() final { return &format_; }

    StrmTags* Tags() final { return &tags_; }
    bool Force16Bit() final { return true; }
    std::int32_t SampleRate() final { return static_cast<std::int32_t>(format_.nSamplesPerSec); }
    std::int16_t Channels() final { return static_cast<std::int16_t>(format_.nChannels); }
    std::int16_t BitsPerSample() final { return static_cast<std::int16_t>(format_.wBitsPerSample); }
    // The file's size over its duration.
    std::int32_t Bitrate() final { return bitrate_; }

protected:
    void forgetFile() {
        format_ = {};
        bitrate_ = 0;
        ended_ = false;
        tags_.ClearTags();
    }

    WAVEFORMATEX format_{}; // of what Read delivers
    std::int32_t bitrate_ = 0;
    bool ended_ = false;
    StrmTags tags_;
};

} // namespace corvina
