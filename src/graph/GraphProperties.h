#pragma once

// The properties of the graph control that are kept with a form: names, ids, first values, and
// which values they take. Their order is that of the saved data: new ones stand behind the others.

#include "control/PropertyValues.h"
#include "graph/GraphSettings.h"

#include <cstdint>
#include <windows.h>

namespace corvina {

// Places in the table below.
enum GraphPropertyIndex {
    graphStyle,
    bands,
    bandsSpace,
    bandsWidth,
    backgroundColor,
    amplitudeColor,
    freqColor,
    borderStyle,
    framesPerSecond,
    levelScale,
    frequencyAxis,
    peakHold,
    channelWaveforms
};

inline constexpr std::int32_t fewestFrames = 1;
inline constexpr std::int32_t mostFrames = 100; // the system's timers are hardly faster

inline bool isZeroOrOne(std::int32_t value) {
    return value == 0 || value == 1;
}

// Forms keep a Boolean as 0 or -1; people who write them by hand also as 1.
inline bool isBoolean(std::int32_t value) {
    return value == VARIANT_FALSE || value == VARIANT_TRUE || value == 1;
}

inline bool isFrameRate(std::int32_t value) {
    return value >= fewestFrames && value <= mostFrames;
}

inline constexpr GraphSettings initialSettings;

[[nodiscard]] constexpr std::int32_t number(COLORREF color) {
    return static_cast<std::int32_t>(color);
}

inline constexpr Property graphProperties[] = {
    {.name = L"GraphStyle",
     .id = 1,
     .initial = static_cast<std::int32_t>(initialSettings.style),
     .accepts = &isZeroOrOne},
    {.name = L"Bands", .id = 2, .initial = initialSettings.bands},
    {.name = L"BandsSpace", .id = 3, .initial = initialSettings.bandsSpace},
    {.name = L"BandsWidth", .id = 4, .initial = initialSettings.bandsWidth},
    {.name = L"BackgroundColor", .id = 5, .initial = number(initialSettings.backgroundColor)},
    {.name = L"AmplitudeColor", .id = 6, .initial = number(initialSettings.amplitudeColor)},
    {.name = L"FreqColor", .id = 7, .initial = number(initialSettings.freqColor)},
    {.name = L"BorderStyle", .id = 8, .initial = initialSettings.border, .accepts = &isZeroOrOne},
    {.name = L"FramesPerSecond",
     .id = 16,
     .initial = initialSettings.framesPerSecond,
     .accepts = &isFrameRate},
    {.name = L"LevelScale",
     .id = 17,
     .initial = static_cast<std::int32_t>(initialSettings.levelScale),
     .accepts = &isZeroOrOne},
    {.name = L"FrequencyAxis",
     .id = 18,
     .initial = static_cast<std::int32_t>(initialSettings.frequencyAxis),
     .accepts = &isZeroOrOne},
    {.name = L"PeakHold", .id = 19, .initial = initialSettings.peakHold, .accepts = &isBoolean},
    {.name = L"ChannelWaveforms",
     .id = 20,
     .initial = initialSettings.channelWaveforms,
     .accepts = &isBoolean},
};

} // namespace corvina
