#pragma once

// What the player control says about files and devices.

#include <string>

namespace corvina::app {

struct FileFormat {
    long bitrate = 0; // bits per second as stored
    long bitsPerSample = 0;
    short channels = 0;
    long sampleRate = 0; // Hz
    double seconds = 0;
};

struct FileTag {
    const wchar_t* name;
    std::wstring value;
};

struct OutputDevice {
    long index = 0;
    std::wstring name;
    short channels = 0;
};

} // namespace corvina::app
