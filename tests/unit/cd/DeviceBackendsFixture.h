#pragma once

// A backend that reaches drives as devices, over a machine whose drives do not exist.

#include "cd/DriveDevice.h"
#include "cd/cTOC.h"
#include "support/FakeDrives.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>

namespace corvina::test {

inline DriveDevice fakeDevices() {
    return DriveDevice(FakeDrives::devices(), FakeDrives::files());
}

template <typename Backend>
class DeviceBackends : public testing::Test {
protected:
    // Ready, with drive D selected and no request recorded.
    void selectOneDrive() {
        machine.addCdRom('D');
        ASSERT_EQ(backend.InitMe(), 0);
        ASSERT_EQ(backend.SelectDevice(0), 0);
        machine.requests.clear();
    }

    FakeDrives machine;
    Backend backend{fakeDevices()};
    std::array<std::uint8_t, 4 * 2352> buffer{};
    std::unique_ptr<cTOC> table;
};

} // namespace corvina::test
