#pragma once

// Sound that says in each sample which place of the sound it is, at whatever rate it is played, and
// a clock that says which frame of the recording is heard at a moment. Together they show what of a
// file was heard at any moment of a test.

#include "support/Recording.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace corvina::test {

// The samples climb from the lowest to the highest. Lower ones are silence, or its edge where the
// sound server changed the rate.
class PlaceSound {
public:
    explicit PlaceSound(double milliseconds) : milliseconds_(milliseconds) {}

    [[nodiscard]] Frames frames(std::size_t sampleRate = 44100) const {
        Frames result(
            static_cast<std::size_t>(milliseconds_ * static_cast<double>(sampleRate) / 1000));
        for (std::size_t i = 0; i < result.size(); ++i) {
            const double part = static_cast<double>(i) / static_cast<double>(result.size());
            const auto sample =
                static_cast<std::int16_t>(std::lround(lowest + (highest - lowest) * part));
            result[i] = {sample, sample};
        }
        return result;
    }
    // In milliseconds; none for silence. gain: by which the sound was multiplied.
    [[nodiscard]] std::optional<double> placeOf(const Frame& frame, double gain = 1) const {
        const double part = (frame.left / gain - lowest) / (highest - lowest);
        if (part < 0)
            return std::nullopt;
        return part * milliseconds_;
    }

private:
    static constexpr double lowest = 4000, highest = 32000;

    double milliseconds_;
};

[[nodiscard]] inline double secondsNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

// The sound server records a piece of up to 50 ms as soon as the one before is over. So what is
// heard at a moment is what a recording that is about to grow ends with.
class RecordingClock {
public:
    // To be called often while the test goes on.
    void note(const Recording& recording) {
        begins_.push_back(static_cast<double>(recording.now()) - rate * secondsNow());
    }
    // The frame of the recording that was heard at that moment.
    [[nodiscard]] std::size_t frameAt(double seconds) const {
        // A server that got its turn late lets the earliest ones be too early.
        std::vector<double> begins = begins_;
        std::sort(begins.begin(), begins.end());
        return static_cast<std::size_t>(begins.at(begins.size() / 20) + rate * seconds);
    }

private:
    static constexpr double rate = 44100;

    std::vector<double> begins_; // the moments at which the recording began, in frames
};

} // namespace corvina::test
