#pragma once

// How the graph looks: the persisted properties, with their initial values.

#include <cstdint>
#include <windows.h>

namespace corvina {

enum class GraphStyle : std::int32_t { amplitude = 0, frequency = 1 };
enum class LevelScale : std::int32_t { linear = 0, decibels = 1 };
enum class FrequencyAxis : std::int32_t { bands = 0, octaves = 1 };

struct GraphSettings {
    GraphStyle style = GraphStyle::frequency;
    std::int32_t bands = 50;
    std::int32_t bandsSpace = 1; // pixels between two bands
    std::int32_t bandsWidth = 3; // pixels
    COLORREF backgroundColor = RGB(0, 0, 0);
    COLORREF amplitudeColor = RGB(0, 255, 0);
    COLORREF freqColor = RGB(0, 255, 0);
    bool border = false;
    std::int32_t framesPerSecond = 30;
    LevelScale levelScale = LevelScale::linear;
    FrequencyAxis frequencyAxis = FrequencyAxis::bands;
    bool peakHold = false;
    bool channelWaveforms = false;
};

} // namespace corvina
