#pragma once

// A copy of the samples that were sent to the device last, for graphs and for hosts that read them
// in memory. Every copy has another address than the one before.

#include "player/PlayedFormat.h"
#include "stream/SampleFeed.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvina {

class SentSamples {
public:
    // Null before the first silence or samples.
    [[nodiscard]] const std::int16_t* data() const noexcept { return samples_.data(); }

    // Stands in until the first samples are sent.
    [[nodiscard]] static SentSamples silence() {
        SentSamples sent;
        sent.samples_.resize(samplesOfSilence);
        return sent;
    }
    // Made while the former copy still exists, so that it has another address.
    void set(const std::vector<std::int16_t>& samples) {
        samples_ = std::vector<std::int16_t>(samples);
    }
    // The samples with their format, 8 bits widened to 16. False if none were sent yet.
    [[nodiscard]] bool copyTo(SampleBlock& block, const PlayedFormat& format) const {
        if (samples_.size() <= samplesOfSilence)
            return false;
        block.channels = format.channels;
        block.sampleRate = format.sampleRate;
        block.samples = samples_;
        if (format.bits == 8) {
            block.samples.clear();
            for (const std::byte sample : std::as_bytes(std::span(samples_)))
                block.samples.push_back(
                    static_cast<std::int16_t>((std::to_integer<int>(sample) - 128) * 256));
        }
        return true;
    }

private:
    static constexpr std::size_t samplesOfSilence = 1024; // fewer than any buffer has

    std::vector<std::int16_t> samples_;
};

} // namespace corvina
