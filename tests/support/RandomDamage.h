#pragma once

// Files damaged at random by the thousand, and what a program that tries them takes from its
// command line:
//
//   NAME.exe [--variants=10000] [--seed=1]
//
// The number of damaged files of each format, and where the random numbers start.

#include "support/FileBytes.h"
#include "support/ProcessObjects.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>

namespace corvina::test {

class RandomDamage {
public:
    // The main function of such a program. Left to itself it tries that many variants.
    static int runTests(int argc, char** argv, int variants) {
        testing::InitGoogleTest(&argc, argv);
        variants_ = variants;
        for (int index = 1; index < argc; ++index) {
            std::sscanf(argv[index], "--variants=%d", &variants_);
            std::sscanf(argv[index], "--seed=%u", &seed_);
        }
        return RUN_ALL_TESTS();
    }

    // Calls attempt(bytes) with one damaged copy after another, until a fatal failure.
    template <typename Attempt>
    static void forEachVariant(const Bytes& good, Attempt attempt) {
        std::printf("%d variants from seed %u\n", variants_, seed_);
        for (int variant = 0; variant < variants_; ++variant) {
            const unsigned seed = seed_ + static_cast<unsigned>(variant);
            SCOPED_TRACE("--variants=1 --seed=" + std::to_string(seed));
            attempt(damaged(good, seed));
            ASSERT_TRUE(heapsAreWhole());
            if (testing::Test::HasFatalFailure())
                return;
        }
    }

private:
    // Headers get more of the damage than their share of the file.
    static Bytes damaged(Bytes bytes, unsigned seed) {
        std::mt19937 random(seed);
        const std::size_t count = 1u << (random() % 5);
        for (std::size_t hit = 0; hit < count; ++hit) {
            const std::size_t range =
                random() % 2 ? bytes.size() : std::min<std::size_t>(bytes.size(), 256);
            std::uint8_t& byte = bytes[random() % range];
            byte = random() % 4 ? static_cast<std::uint8_t>(byte ^ (1u << random() % 8))
                                : static_cast<std::uint8_t>(random() % 2 ? 0xFF : random());
        }
        if (random() % 8 == 0)
            bytes.resize(random() % bytes.size());
        return bytes;
    }

    inline static int variants_ = 1;
    inline static unsigned seed_ = 1;
};

} // namespace corvina::test
