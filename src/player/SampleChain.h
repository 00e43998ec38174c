#pragma once

// Changes a stream of 8- or 16-bit PCM by the settings: equalizer, limiter, then the gain of each
// channel. A new setting is reached over 20 ms, so that nothing clicks.
//
// With neutral settings that have been reached, no sample is touched. A copy goes on as the
// original would, so that a block can be made again from what came before it.

#include "player/Equalizer.h"
#include "player/PlayedFormat.h"
#include "player/SoundSettings.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvina {

class SampleChain {
public:
    // Begins with the settings already reached.
    SampleChain(const PlayedFormat& format, const SoundSettings& settings) noexcept;

    void setTarget(const SoundSettings& settings) noexcept;
    // Nothing is changed now.
    [[nodiscard]] bool neutral() const noexcept;
    // Whole frames, in place.
    void process(std::span<std::uint8_t> bytes) noexcept;

private:
    // What the settings come to.
    struct Gains {
        float left = 1.0F; // of the first channel
        float right = 1.0F;
        float others = 1.0F;
        float limiter = 0.0F; // 1: works in full
        Equalizer::Gains bands{};
        bool operator==(const Gains&) const = default;
    };

    [[nodiscard]] Gains gainsOf(const SoundSettings& settings) const noexcept;
    [[nodiscard]] Gains gainsAt(std::size_t rampFrame) const noexcept;
    void equalize(std::size_t channel, std::span<float> samples, const Gains& start,
                  const Gains& end) noexcept;
    void processStep(std::uint8_t* bytes, std::size_t frames) noexcept;

    PlayedFormat format_;
    Equalizer equalizer_;
    std::size_t rampFrames_;
    std::size_t rampDone_;
    Gains from_;
    Gains to_;
};

} // namespace corvina
