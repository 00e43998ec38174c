#pragma once

// A converter over a codec that copies, pulled as a player pulls it.

#include "stream/cPCM.h"

#include "support/FakeAcm.h"
#include "support/MemorySource.h"
#include "support/SampleObserver.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace corvina::test {

inline constexpr DWORD blockAlignFlag = ACM_STREAMCONVERTF_BLOCKALIGN;
inline constexpr DWORD startFlag = ACM_STREAMCONVERTF_START;
inline constexpr DWORD endFlag = ACM_STREAMCONVERTF_END;

// 8-bit mono at 1000 Hz in 500-byte halves of a second, and 16-bit at 500 Hz: sizes to count by
// hand.
class Converter : public testing::Test {
protected:
    void SetUp() override { fakeAcm.reset(); }
    void TearDown() override {
        converter_.reset();
        EXPECT_EQ(fakeAcm.openStreams, 0);
        EXPECT_EQ(fakeAcm.preparedHeaders, 0);
        EXPECT_EQ(fakeAcm.wrongHeaders, 0);
    }

    bool start(MemorySource& source, bool force16Bit = false) {
        converter_ = std::make_unique<cPCM>(fakeAcmApi);
        return converter_->InitConversion(source, &observer_, force16Bit);
    }

    std::int32_t pull(std::int32_t bytes) {
        pulled_.assign(static_cast<std::size_t>(std::max(bytes, 0)), 0xEE);
        std::int32_t got = -1;
        EXPECT_TRUE(converter_->GetSamples(pulled_.data(), bytes, got));
        return got;
    }

    // Everything to the end, in blocks of that size.
    Bytes pullAll(std::int32_t block) {
        Bytes heard;
        std::int32_t got = 0;
        do {
            got = pull(block);
            heard.insert(heard.end(), pulled_.begin(), pulled_.begin() + got);
        } while (got == block);
        return heard;
    }

    static WAVEFORMATEX lastOutput() { return fakeAcm.openings.back().output; }

    SampleObserver observer_;
    std::unique_ptr<cPCM> converter_;
    Bytes pulled_;
};

} // namespace corvina::test
