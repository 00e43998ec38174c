#pragma once

// The ASPI backend over a stand-in for its library and made-up drives.

#include "cd/cdASPI.h"
#include "support/FakeAspi.h"
#include "support/FakeDrives.h"

#include <array>
#include <gmock/gmock.h>
#include <memory>
#include <vector>

namespace corvina::test {

class AspiBackend : public testing::Test {
protected:
    // Ready, with one drive at adapter 0, target 3 selected and no command recorded.
    void selectOneDrive() {
        aspi.addCdRom(0, 3);
        ASSERT_EQ(backend.InitMe(), 0);
        ASSERT_EQ(backend.SelectDevice(0), 0);
        aspi.commands.clear();
    }
    const SRB_ExecSCSICmd& onlyCommand() {
        EXPECT_EQ(aspi.commands.size(), 1u);
        return aspi.commands.at(0);
    }
    std::vector<std::uint8_t> cdb() {
        const SRB_ExecSCSICmd& command = onlyCommand();
        return {command.CDBByte, command.CDBByte + command.SRB_CDBLen};
    }

    FakeAspi aspi;
    FakeDrives machine;
    cdASPI backend{DriveDevice(FakeDrives::devices(), FakeDrives::files()), FakeAspi::libraries()};
    std::array<std::uint8_t, 4 * 2352> buffer{};
    std::unique_ptr<cTOC> table;
};

} // namespace corvina::test
