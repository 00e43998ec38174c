#pragma once

// A WAV file through the source, the converter and the platform's own codecs.

#include "sources/DecWAV.h"
#include "stream/cPCM.h"
#include "support/Media.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace corvina::test {

class WavCodecs : public ::testing::Test {
protected:
    [[nodiscard]] bool open(const std::wstring& path, bool force16Bit = false) {
        return wav_.OpenSource(path) == 0 && converter_.InitConversion(wav_, nullptr, force16Bit);
    }

    // Everything to the end in blocks as the player asks for them.
    Bytes pullAll(std::int32_t block = 8000) {
        Bytes heard;
        Bytes buffer(static_cast<std::size_t>(block));
        std::int32_t got = block;
        while (got == block && heard.size() < 100'000'000) {
            EXPECT_TRUE(converter_.GetSamples(buffer.data(), block, got));
            heard.insert(heard.end(), buffer.begin(), buffer.begin() + got);
        }
        EXPECT_TRUE(converter_.EndOfStream());
        return heard;
    }

    // Seconds of sound that a file gives.
    double secondsOf(const std::wstring& name, int bits) {
        EXPECT_TRUE(open(mediaFile(name)));
        EXPECT_EQ(converter_.OutputBitsPerSample(), bits);
        const double bytesPerSecond =
            1.0 * converter_.OutputSamplerate() * converter_.OutputChannels() * bits / 8;
        return static_cast<double>(pullAll().size()) / bytesPerSecond;
    }

    TempFolder folder_;
    DecWAV wav_;
    cPCM converter_;
};

} // namespace corvina::test
