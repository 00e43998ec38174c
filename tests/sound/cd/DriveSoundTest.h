#pragma once

// Tests of the registered control over the two virtual drives of the test environment, D: and E:, empty at the
// beginning.

#include "sound/SoundTest.h"
#include "support/VirtualDrive.h"

#include <gtest/gtest.h>
#include <optional>

namespace corvina::test {

class DriveSoundTest : public SoundTest {
protected:
    void SetUp() override {
        SoundTest::SetUp();
        if (IsSkipped())
            return;
        if (!VirtualDrive::exists('d') || !VirtualDrive::exists('e'))
            GTEST_SKIP() << "the test environment has no two virtual CD drives";
        d.emplace('d');
        e.emplace('e');
    }

    std::optional<VirtualDrive> d;
    std::optional<VirtualDrive> e;
};

} // namespace corvina::test
