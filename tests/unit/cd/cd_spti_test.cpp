// cdSPTI: commands passed through to the drive.

#include "DeviceBackendsFixture.h"
#include "cd/DriveTable.h"
#include "cd/cdSPTI.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <vector>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

void* dataOf(const DriveRequest& request) {
    void* data = nullptr;
    std::memcpy(&data, request.input.data() + 20, sizeof(data));
    return data;
}

class SptiBackend : public DeviceBackends<cdSPTI> {
protected:
    void SetUp() override { selectOneDrive(); }

    // The parts of the only request's 60-byte packet.
    std::vector<std::uint8_t> packet() {
        EXPECT_EQ(machine.requests.size(), 1u);
        return machine.requests.at(0).input;
    }
    std::vector<std::uint8_t> cdb() {
        const auto bytes = packet();
        return {bytes.begin() + 28, bytes.begin() + 28 + bytes[6]};
    }
    std::uint32_t field32(std::size_t offset) {
        std::uint32_t value = 0;
        std::memcpy(&value, packet().data() + offset, sizeof(value));
        return value;
    }
};

TEST_F(SptiBackend, opens_drives_for_reading_and_writing) {
    EXPECT_THAT(machine.openedAccess, ElementsAre(0xC0000000u));
}

TEST_F(SptiBackend, passes_a_packet_of_60_bytes_in_and_out) {
    backend.ReadSectorsRAW(0, 4, buffer.data());
    EXPECT_EQ(packet().size(), 60u);
    EXPECT_EQ(machine.requests[0].code, 0x4D014u);
    EXPECT_EQ(machine.requests[0].outputBytes, 60u);
}

TEST_F(SptiBackend, fills_every_field_of_the_packet) {
    backend.ReadSectorsRAW(300, 4, buffer.data());
    const std::uint32_t address =
        static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(buffer.data()));
    std::array<std::uint8_t, 60> expected{44, 0, 0, 0, 0, 0, 12, 14, 1};
    const std::uint32_t words[] = {9408, 5, address, 44};
    std::memcpy(expected.data() + 12, words, sizeof(words));
    const std::uint8_t command[] = {0xBE, 0, 0, 0, 1, 0x2C, 0, 0, 4, 0xF8, 0, 0};
    std::copy(std::begin(command), std::end(command), expected.begin() + 28);
    EXPECT_THAT(packet(), ElementsAreArray(expected));
}

TEST_F(SptiBackend, every_command_takes_data_in_within_5_seconds_and_14_bytes_of_sense) {
    backend.InitMe(); // the inquiry
    backend.SelectDevice(0);
    backend.ReadSectorsRAW(0, 1, buffer.data());
    backend.GetTOC(table);
    backend.OpenCD();
    backend.CloseCD();
    backend.IsDiscPresent();
    ASSERT_EQ(machine.requests.size(), 6u);
    for (const DriveRequest& request : machine.requests) {
        SCSI_PASS_THROUGH_DIRECT packet;
        ASSERT_GE(request.input.size(), sizeof packet);
        std::memcpy(&packet, request.input.data(), sizeof packet);
        SCOPED_TRACE("command " + std::to_string(packet.Cdb[0]));
        EXPECT_EQ(packet.Length, 44);
        EXPECT_EQ(packet.DataIn, SCSI_IOCTL_DATA_IN);
        EXPECT_EQ(packet.TimeOutValue, 5u);
        EXPECT_EQ(packet.SenseInfoLength, 14);
        EXPECT_EQ(packet.SenseInfoOffset, 44u);
        EXPECT_EQ(request.code, 0x4D014u);
    }
}

TEST_F(SptiBackend, reads_sectors_with_read_cd) {
    EXPECT_EQ(backend.ReadSectorsRAW(300, 4, buffer.data()), 0);
    EXPECT_THAT(cdb(), ElementsAre(0xBE, 0, 0, 0, 1, 0x2C, 0, 0, 4, 0xF8, 0, 0));
    EXPECT_EQ(field32(12), 9408u);
}

TEST_F(SptiBackend, addresses_before_the_disc_are_sent_as_they_are) {
    EXPECT_EQ(backend.ReadSectorsRAW(-150, 0x010203, nullptr), 0);
    EXPECT_THAT(cdb(), ElementsAre(0xBE, 0, 0xFF, 0xFF, 0xFF, 0x6A, 1, 2, 3, 0xF8, 0, 0));
}

TEST_F(SptiBackend, ejects_and_loads_with_start_stop_unit) {
    EXPECT_EQ(backend.OpenCD(), 0);
    EXPECT_THAT(cdb(), ElementsAre(0x1B, 0, 0, 0, 2, 0));
    EXPECT_EQ(field32(12), 0u);
    machine.requests.clear();
    EXPECT_EQ(backend.CloseCD(), 0);
    EXPECT_THAT(cdb(), ElementsAre(0x1B, 0, 0, 0, 3, 0));
}

TEST_F(SptiBackend, asks_for_a_disc_with_test_unit_ready) {
    EXPECT_TRUE(backend.IsDiscPresent());
    EXPECT_THAT(cdb(), ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(field32(12), 0u);
    EXPECT_EQ(field32(20), 0u);
}

TEST_F(SptiBackend, reads_the_table_as_lba_with_804_bytes) {
    EXPECT_EQ(backend.GetTOC(table), 0);
    EXPECT_THAT(cdb(), ElementsAre(0x43, 0, 0, 0, 0, 0, 0, 3, 0x24, 0));
    EXPECT_EQ(field32(12), 804u);
}

TEST_F(SptiBackend, hands_the_driver_buffers_that_every_adapter_takes) {
    backend.InitMe(); // the inquiry
    backend.SelectDevice(0);
    backend.GetTOC(table);
    ASSERT_EQ(machine.requests.size(), 2u);
    for (const DriveRequest& request : machine.requests) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(dataOf(request)) % 16, 0u);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(request.output) % 16, 0u);
    }
}

TEST_F(SptiBackend, addresses_in_the_table_are_not_converted) {
    machine.respond = [](const DriveRequest& request) {
        auto& record = *static_cast<CDROM_TOC*>(dataOf(request));
        record.LastTrack = 1;
        record.TrackData[0].TrackNumber = 1;
        record.TrackData[0].Address[2] = 2;
        record.TrackData[1].TrackNumber = 170;
        record.TrackData[1].Address[1] = 1;
        return true;
    };
    EXPECT_EQ(backend.GetTOC(table), 0);
    EXPECT_EQ(table->TrackCount(), 2);
    EXPECT_EQ(table->track(1)->StartLBA(), 512);
    EXPECT_EQ(table->track(2)->StartLBA(), 65536);
}

// The driver reports CHECK CONDITION and sense data, but the request itself succeeded.
TEST_F(SptiBackend, a_command_that_the_drive_refuses_counts_as_a_success) {
    machine.respond = [](const DriveRequest& request) {
        auto* bytes = static_cast<std::uint8_t*>(request.output);
        bytes[2] = 2;
        std::memset(bytes + 44, 0x70, 14);
        return true;
    };
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, buffer.data()), 0);
    EXPECT_EQ(backend.OpenCD(), 0);
    EXPECT_TRUE(backend.IsDiscPresent());
    EXPECT_EQ(backend.GetTOC(table), 0);
}

TEST(SptiBackendScan, names_drives_by_their_inquiry_data) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest& request) {
        char reply[77] = "01234567VENDOR  PRODUCT NAME    1.0aserial";
        std::memcpy(dataOf(request), reply, 76);
        return true;
    };
    cdSPTI backend{fakeDevices()};
    ASSERT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceName(0), L"VENDOR   PRODUCT NAME     1.0a");
    ASSERT_EQ(machine.requests.size(), 1u);
    const auto& packet = machine.requests[0].input;
    EXPECT_EQ(packet[6], 6);
    EXPECT_EQ(packet[12], 76);
    EXPECT_THAT(std::vector<std::uint8_t>(packet.begin() + 28, packet.begin() + 34),
                ElementsAre(0x12, 0, 0, 0, 76, 0));
}

TEST(SptiBackendScan, a_drive_that_refuses_the_inquiry_is_listed_without_a_name) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest&) { return false; };
    cdSPTI backend{fakeDevices()};
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceName(0), L"  ");
}

TEST(SptiBackendScan, a_drive_that_opens_for_reading_only_is_skipped) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.addCdRom('E');
    machine.refuseWrite = {'D'};
    cdSPTI backend{fakeDevices()};
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceChar(0), L"E");
    machine.refuseWrite = {'D', 'E'};
    EXPECT_EQ(backend.InitMe(), 4);
}

TEST(SptiBackendUnselected, operations_return_9_and_send_nothing) {
    FakeDrives machine;
    machine.addCdRom('D');
    cdSPTI backend{fakeDevices()};
    ASSERT_EQ(backend.InitMe(), 0);
    machine.requests.clear();
    auto table = std::make_unique<cTOC>();
    std::array<std::uint8_t, 2352> buffer{};
    EXPECT_EQ(backend.GetTOC(table), 9);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(backend.OpenCD(), 9);
    EXPECT_EQ(backend.CloseCD(), 9);
    EXPECT_EQ(backend.ReadSectorsRAW(0, 1, buffer.data()), 9);
    EXPECT_TRUE(machine.requests.empty());
}

} // namespace
} // namespace corvina::test
