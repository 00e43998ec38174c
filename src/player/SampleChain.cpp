#include "player/SampleChain.h"

#include "runtime/Rounding.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvina {
namespace {

constexpr std::int32_t rampMs = 20;
// The filters follow a ramp in steps of so many frames; the gains follow it frame by frame.
constexpr std::size_t stepFrames = 32;

float readSample(const std::uint8_t* at, std::int32_t bits) noexcept {
    if (bits == 8)
        return static_cast<float>((*at - 0x80) * 256);
    std::int16_t sample = 0;
    std::memcpy(&sample, at, sizeof sample);
    return sample;
}

void writeSample(std::uint8_t* at, std::int32_t bits, float value) noexcept {
    const std::int16_t sample = roundWithinInt16(std::clamp(value, -32768.0F, 32767.0F));
    if (bits == 8)
        *at = static_cast<std::uint8_t>(0x80 + std::min((sample + 0x80) >> 8, 0x7F));
    else
        std::memcpy(at, &sample, sizeof sample);
}

} // namespace

SampleChain::SampleChain(const PlayedFormat& format, const SoundSettings& settings) noexcept
    : format_(format), equalizer_(format.sampleRate, settings.bandGains),
      rampFrames_(static_cast<std::size_t>(std::max<std::int64_t>(format.framesOf(rampMs), 1))),
      rampDone_(rampFrames_), from_(gainsOf(settings)), to_(from_) {}

SampleChain::Gains SampleChain::gainsOf(const SoundSettings& settings) const noexcept {
    const float level = static_cast<float>(settings.volume) / 100.0F;
    const float amplitude = settings.mute ? 0.0F : level * level;
    const float balance =
        format_.channels < 2 ? 0.0F : static_cast<float>(settings.balance) / 100.0F;
    return {.left = amplitude * std::min(1.0F, 1.0F - balance),
            .right = amplitude * std::min(1.0F, 1.0F + balance),
            .others = amplitude,
            .limiter = settings.bandGains == Equalizer::Gains{} ? 0.0F : 1.0F,
            .bands = settings.bandGains};
}

SampleChain::Gains SampleChain::gainsAt(std::size_t rampFrame) const noexcept {
    if (rampFrame >= rampFrames_)
        return to_;
    const float part = static_cast<float>(rampFrame) / static_cast<float>(rampFrames_);
    const auto between = [part](float a, float b) { return a + (b - a) * part; };
    Gains gains{.left = between(from_.left, to_.left),
                .right = between(from_.right, to_.right),
                .others = between(from_.others, to_.others),
                .limiter = between(from_.limiter, to_.limiter),
                .bands = {}};
    for (std::size_t band = 0; band < gains.bands.size(); ++band)
        gains.bands[band] = between(from_.bands[band], to_.bands[band]);
    return gains;
}

void SampleChain::setTarget(const SoundSettings& settings) noexcept {
    const Gains target = gainsOf(settings);
    if (target == to_)
        return;
    from_ = gainsAt(rampDone_);
    to_ = target;
    rampDone_ = 0;
}

bool SampleChain::neutral() const noexcept {
    return rampDone_ >= rampFrames_ && to_ == Gains{} && equalizer_.idle();
}

void SampleChain::process(std::span<std::uint8_t> bytes) noexcept {
    const auto frameBytes = static_cast<std::size_t>(format_.frameBytes());
    if (neutral() || frameBytes == 0)
        return;
    std::size_t frames = bytes.size() / frameBytes;
    std::uint8_t* at = bytes.data();
    while (frames > 0) {
        // A step does not cross the end of a ramp.
        const std::size_t ramp = rampFrames_ - rampDone_;
        const std::size_t step = std::min({frames, stepFrames, ramp > 0 ? ramp : stepFrames});
        processStep(at, step);
        rampDone_ = std::min(rampDone_ + step, rampFrames_);
        at += step * frameBytes;
        frames -= step;
    }
}

void SampleChain::equalize(std::size_t channel, std::span<float> samples, const Gains& start,
                           const Gains& end) noexcept {
    constexpr float fullScale = 32768.0F;
    for (float& sample : samples)
        sample /= fullScale;
    equalizer_.process(channel, samples);
    const float slope = (end.limiter - start.limiter) / static_cast<float>(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const float part = start.limiter + slope * static_cast<float>(i);
        const float bent = softLimit(samples[i]) - samples[i];
        samples[i] = (samples[i] + part * bent) * fullScale;
    }
}

void SampleChain::processStep(std::uint8_t* bytes, std::size_t frames) noexcept {
    const std::int32_t sampleBytes = format_.bits / 8;
    const Gains start = gainsAt(rampDone_);
    const Gains end = gainsAt(rampDone_ + frames);
    equalizer_.setGains(end.bands);
    const bool equalizes = !equalizer_.idle();
    for (std::int32_t channel = 0; channel < format_.channels; ++channel) {
        std::array<float, stepFrames> samples;
        std::uint8_t* const first = bytes + channel * sampleBytes;
        for (std::size_t i = 0; i < frames; ++i)
            samples[i] = readSample(first + i * static_cast<std::size_t>(format_.frameBytes()),
                                    format_.bits);
        if (equalizes)
            equalize(static_cast<std::size_t>(channel), {samples.data(), frames}, start, end);
        const auto gainOf = [channel](const Gains& gains) {
            return channel == 0 ? gains.left : channel == 1 ? gains.right : gains.others;
        };
        const float gain = gainOf(start);
        const float slope = (gainOf(end) - gain) / static_cast<float>(frames);
        for (std::size_t i = 0; i < frames; ++i)
            writeSample(first + i * static_cast<std::size_t>(format_.frameBytes()), format_.bits,
                        samples[i] * (gain + slope * static_cast<float>(i)));
    }
    equalizer_.advance(frames);
}

} // namespace corvina
