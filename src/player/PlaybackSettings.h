#pragma once

// What a host may set for its playbacks, with the ranges: a value out of range raises error 380
// with the range in words and changes nothing.

#include "player/PlaybackOptions.h"

#include <cstdint>
#include <string>

namespace corvina {

class PlaybackSettings {
public:
    [[nodiscard]] const PlaybackOptions& options() const noexcept { return options_; }
    [[nodiscard]] PlaybackOptions& options() noexcept { return options_; }

    void setVolume(std::int32_t volume);
    void setBalance(std::int32_t balance);
    void setMute(bool mute) noexcept { options_.sound.mute = mute; }
    // band: 1 to 10.
    [[nodiscard]] float bandGain(std::int32_t band) const;
    void setBandGain(std::int32_t band, float decibels);
    void setPositionInterval(std::int32_t milliseconds);

private:
    PlaybackOptions options_;
};

// Error 380, the framework's "Invalid property value", with words that say which values are valid.
[[noreturn]] void throwInvalidValue(const std::wstring& words);
// "name must be from least to most".
[[noreturn]] void throwOutOfRange(const wchar_t* name, std::int32_t least, std::int32_t most);
void requireRange(const wchar_t* name, std::int32_t value, std::int32_t least, std::int32_t most);

} // namespace corvina
