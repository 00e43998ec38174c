#pragma once

// SndfileSource over a stand-in for libsndfile that writes every call down and delivers one frame
// again and again.

#include "sources/SndfileSource.h"
#include "support/StandIns.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {

inline constexpr std::int32_t handle = 0x5F11E;
inline constexpr std::int32_t flac = 0x170002;
inline constexpr std::int32_t ogg = 0x200060;
inline constexpr std::int32_t floats = 0x180006;
inline constexpr std::int32_t doubles = 0x180007;
inline constexpr std::int32_t everything = std::numeric_limits<std::int32_t>::max();

// What the stand-in returns.
struct SndfileResults {
    SndfileInfo info{8000, 0, 1000, 2, flac, 1, 1, 0};
    std::vector<std::int16_t> frame{100, -200}; // repeated
    std::vector<float> floatFrame{0.5F, -0.5F};
    std::int32_t delivers = everything; // frames at a call
    std::optional<std::vector<std::int32_t>> map;
    std::map<std::int32_t, std::string> texts;
    bool opens = true;
    bool seeks = true;
};

class SndfileSourceCalls : public testing::Test {
protected:
    SndfileSourceCalls() {
        results = {};
        libraries.add("libsndfile.dll", {{"sf_wchar_open", standIn(&open)},
                                         {"sf_command", standIn(&command)},
                                         {"sf_get_string", standIn(&getString)},
                                         {"sf_seek", standIn(&seek)},
                                         {"sf_readf_short", standIn(&readShort)},
                                         {"sf_readf_float", standIn(&readFloat)},
                                         {"sf_close", standIn(&close)}});
    }

    SndfileSource& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(path), 0);
        libraries.calls.clear();
        return *source_;
    }

    struct Reading {
        std::int32_t result = -1;
        std::vector<std::int16_t> samples;
    };
    static Reading read(SndfileSource& source, std::int32_t bytes) {
        Reading reading;
        reading.samples.assign(static_cast<std::size_t>(bytes) / 2 + 1, 0);
        std::int32_t got = -1;
        reading.result = source.Read(reading.samples.data(), bytes, got);
        reading.samples.resize(static_cast<std::size_t>(got) / 2);
        return reading;
    }
    static std::int32_t seekTo(SndfileSource& source, std::int32_t value, std::int32_t mode) {
        return source.SeekTo(value, mode);
    }

    // On which sides the channel is heard that alone has sound: "L", "R", "LR" or none.
    std::string sidesOf(std::int32_t channel, std::int32_t channels) {
        results.info.channels = channels;
        results.frame.assign(static_cast<std::size_t>(channels), 0);
        results.frame.at(static_cast<std::size_t>(channel)) = 10'000;
        const Reading frame = read(opened(), 4);
        std::string sides;
        if (frame.samples.at(0) != 0)
            sides += 'L';
        if (frame.samples.at(1) != 0)
            sides += 'R';
        return sides;
    }
    std::vector<std::string> sidesOfAll(std::int32_t channels) {
        std::vector<std::string> sides;
        for (std::int32_t channel = 0; channel < channels; ++channel)
            sides.push_back(sidesOf(channel, channels));
        return sides;
    }

    static inline SndfileResults results;
    static inline std::wstring openedPath;
    TempFolder folder;
    std::wstring path = folder.write(L"a.flac", std::vector<std::uint8_t>(1000));
    StandIns libraries;

private:
    static std::int32_t __cdecl open(const wchar_t* name, std::int32_t mode, SndfileInfo* info) {
        openedPath = name;
        StandIns::record("sf_wchar_open", {mode});
        if (!results.opens)
            return 0;
        *info = results.info;
        return handle;
    }
    // Of the data only whether there are any: where they lie is the caller's choice.
    static std::int32_t __cdecl command(std::int32_t file, std::int32_t number, std::int32_t* data,
                                        std::int32_t size) {
        StandIns::record("sf_command", {file, number, data != nullptr, size});
        if (!data || !results.map)
            return 0;
        std::copy(results.map->begin(), results.map->end(), data);
        return 1;
    }
    static const char* __cdecl getString(std::int32_t file, std::int32_t type) {
        StandIns::record("sf_get_string", {file, type});
        const auto found = results.texts.find(type);
        return found == results.texts.end() ? nullptr : found->second.c_str();
    }
    static std::int32_t __cdecl seek(std::int32_t file, std::int32_t low, std::int32_t high,
                                     std::int32_t whence) {
        StandIns::record("sf_seek", {file, low, high, whence});
        return results.seeks ? low : -1;
    }
    template <typename Sample>
    static std::int32_t deliver(const std::vector<Sample>& frame, Sample* to, std::int32_t frames) {
        frames = std::min(frames, results.delivers);
        for (std::int32_t index = 0; index < frames; ++index)
            to = std::copy(frame.begin(), frame.end(), to);
        return frames;
    }
    static std::int32_t __cdecl readShort(std::int32_t file, std::int16_t* to, std::int32_t low,
                                          std::int32_t high) {
        StandIns::record("sf_readf_short", {file, low, high});
        return deliver(results.frame, to, low);
    }
    static std::int32_t __cdecl readFloat(std::int32_t file, float* to, std::int32_t low,
                                          std::int32_t high) {
        StandIns::record("sf_readf_float", {file, low, high});
        return deliver(results.floatFrame, to, low);
    }
    static std::int32_t __cdecl close(std::int32_t file) {
        StandIns::record("sf_close", {file});
        return 0;
    }

    std::optional<SndfileSource> source_;
};

} // namespace corvina::test
