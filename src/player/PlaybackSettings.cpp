#include "player/PlaybackSettings.h"

#include "runtime/RuntimeError.h"

namespace corvina {
namespace {

constexpr std::int32_t bandCount = SoundSettings::bands;
constexpr std::int32_t mostDecibels = 12;
constexpr std::int32_t longestInterval = 3600 * 1000;

} // namespace

void throwInvalidValue(const std::wstring& words) {
    constexpr std::int32_t invalidPropertyValue = 380;
    throw RuntimeError(invalidPropertyValue, words);
}

void throwOutOfRange(const wchar_t* name, std::int32_t least, std::int32_t most) {
    throwInvalidValue(std::wstring(name) + L" must be from " + std::to_wstring(least) + L" to " +
                      std::to_wstring(most));
}

void requireRange(const wchar_t* name, std::int32_t value, std::int32_t least, std::int32_t most) {
    if (value < least || value > most)
        throwOutOfRange(name, least, most);
}

void PlaybackSettings::setVolume(std::int32_t volume) {
    requireRange(L"Volume", volume, 0, 100);
    options_.sound.volume = volume;
}

void PlaybackSettings::setBalance(std::int32_t balance) {
    requireRange(L"Balance", balance, -100, 100);
    options_.sound.balance = balance;
}

float PlaybackSettings::bandGain(std::int32_t band) const {
    requireRange(L"Band", band, 1, bandCount);
    return options_.sound.bandGains[static_cast<std::size_t>(band - 1)];
}

void PlaybackSettings::setBandGain(std::int32_t band, float decibels) {
    requireRange(L"Band", band, 1, bandCount);
    // What is no number is in no range.
    if (!(decibels >= -mostDecibels && decibels <= mostDecibels))
        throwOutOfRange(L"EqualizerGain", -mostDecibels, mostDecibels);
    options_.sound.bandGains[static_cast<std::size_t>(band - 1)] = decibels;
}

void PlaybackSettings::setPositionInterval(std::int32_t milliseconds) {
    requireRange(L"PositionInterval", milliseconds, 0, longestInterval);
    options_.positionInterval = milliseconds;
}

} // namespace corvina
