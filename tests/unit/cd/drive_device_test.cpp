// Opening a drive as a device, and asking for its SCSI address.

#include "DeviceBackendsFixture.h"

#include <cstring>
#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

TEST(DriveDevice, uses_the_first_character_of_the_drive_text) {
    FakeDrives machine;
    machine.addCdRom('D');
    const DriveDevice devices = fakeDevices();
    FileRecord device = devices.open(L"D:\\Track01.cda", GENERIC_READ);
    EXPECT_TRUE(device.isOpen());
    EXPECT_THAT(machine.opened, ElementsAre("\\\\.\\D:"));
}

TEST(DriveDevice, is_opened_if_it_exists_and_never_created) {
    FakeDrives machine;
    machine.addCdRom('D');
    const DriveDevice devices = fakeDevices();
    FileRecord device = devices.open(L"D", GENERIC_READ);
    EXPECT_THAT(machine.openedDisposition, ElementsAre(static_cast<DWORD>(OPEN_EXISTING)));
}

TEST(DriveDevice, of_no_text_opens_nothing) {
    FakeDrives machine;
    EXPECT_FALSE(fakeDevices().open(L"", GENERIC_READ).isOpen());
    EXPECT_TRUE(machine.opened.empty());
}

TEST(DriveDevice, asks_for_the_scsi_address_with_8_bytes_both_ways_and_closes) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest& request) {
        const std::uint8_t address[8] = {8, 0, 0, 0, 1, 2, 3, 4};
        std::memcpy(request.output, address, 8);
        return true;
    };
    const auto address = fakeDevices().scsiAddress(L"D");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->PortNumber, 1);
    EXPECT_EQ(address->PathId, 2);
    EXPECT_EQ(address->TargetId, 3);
    EXPECT_EQ(address->Lun, 4);
    ASSERT_EQ(machine.requests.size(), 1u);
    EXPECT_EQ(machine.requests[0].code, 0x41018u);
    ASSERT_EQ(machine.requests[0].input.size(), 8u);
    EXPECT_EQ(machine.requests[0].input[0], 8u) << "its length stands at its beginning";
    EXPECT_EQ(machine.requests[0].outputBytes, 8u);
    EXPECT_TRUE(machine.open.empty());
}

TEST(DriveDevice, a_drive_that_does_not_report_has_no_scsi_address_and_is_closed) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest&) { return false; };
    EXPECT_FALSE(fakeDevices().scsiAddress(L"D"));
    EXPECT_FALSE(fakeDevices().scsiAddress(L"E"));
    EXPECT_TRUE(machine.open.empty());
}

} // namespace
} // namespace corvina::test
