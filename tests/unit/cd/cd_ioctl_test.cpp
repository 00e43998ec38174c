// cdIOCTL: the requests of the system's CD driver.

#include "DeviceBackendsFixture.h"
#include "cd/DriveTable.h"
#include "cd/cdIOCTL.h"
#include "support/Limits.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

class IoctlBackend : public DeviceBackends<cdIOCTL> {
protected:
    void SetUp() override { selectOneDrive(); }

    const DriveRequest& onlyRequest() {
        EXPECT_EQ(machine.requests.size(), 1u);
        return machine.requests.at(0);
    }
};

TEST_F(IoctlBackend, opens_drives_for_reading) {
    EXPECT_THAT(machine.openedAccess, ElementsAre(0x80000000u));
}

TEST_F(IoctlBackend, calls_every_drive_by_the_same_name) {
    EXPECT_EQ(backend.DeviceName(0), L"Generic CD-ROM drive v1");
}

TEST_F(IoctlBackend, asks_for_the_table_with_804_bytes_and_no_input) {
    EXPECT_EQ(backend.GetTOC(table), 0);
    EXPECT_EQ(onlyRequest().code, 0x24000u);
    EXPECT_TRUE(onlyRequest().input.empty());
    EXPECT_EQ(onlyRequest().outputBytes, 804u);
}

TEST_F(IoctlBackend, reads_a_disc_of_12_tracks) {
    machine.respond = [](const DriveRequest& request) {
        auto& record = *static_cast<CDROM_TOC*>(request.output);
        record.FirstTrack = 1;
        record.LastTrack = 12;
        for (int i = 0; i < 13; ++i) {
            record.TrackData[i].TrackNumber = static_cast<UCHAR>(i == 12 ? 170 : i + 1);
            record.TrackData[i].Address[1] = static_cast<UCHAR>(i);
            record.TrackData[i].Address[2] = 2;
        }
        return true;
    };
    EXPECT_EQ(backend.GetTOC(table), 0);
    EXPECT_EQ(table->TrackCount(), 13);
    EXPECT_EQ(table->track(1)->StartLBA(), 0);
    EXPECT_EQ(table->track(13)->TrackNumber(), 170);
    EXPECT_EQ(table->track(13)->StartLBA(), 12 * 4500);
}

TEST_F(IoctlBackend, reads_sectors_by_an_offset_as_of_2048_bytes) {
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, buffer.data()), 0);
    EXPECT_EQ(onlyRequest().code, 0x2403Eu);
    EXPECT_THAT(onlyRequest().input, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 2, 0, 0, 0));
    EXPECT_EQ(onlyRequest().output, buffer.data());
    EXPECT_EQ(onlyRequest().outputBytes, 9408u);
}

TEST_F(IoctlBackend, reads_no_sectors_where_none_are_wanted_and_refuses_fewer) {
    EXPECT_EQ(backend.ReadSectorsRAW(5, 0, buffer.data()), 0);
    EXPECT_EQ(onlyRequest().input[8], 0);
    EXPECT_EQ(onlyRequest().outputBytes, 0u);
    EXPECT_EQ(backend.ReadSectorsRAW(5, -1, buffer.data()), CdStatus::readFailed);
    EXPECT_EQ(machine.requests.size(), 1u);
}

TEST_F(IoctlBackend, an_offset_beyond_4_gigabytes_is_whole) {
    EXPECT_EQ(backend.ReadSectorsRAW(highest, 1, buffer.data()), 0);
    EXPECT_THAT(onlyRequest().input, ElementsAre(0, 0xF8, 0xFF, 0xFF, 0xFF, 0x03, 0, 0, //
                                                 1, 0, 0, 0, 2, 0, 0, 0));
}

TEST_F(IoctlBackend, an_address_before_the_disc_has_a_negative_offset) {
    EXPECT_EQ(backend.ReadSectorsRAW(-1, 1, buffer.data()), 0);
    EXPECT_THAT(onlyRequest().input, ElementsAre(0, 0xF8, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, //
                                                 1, 0, 0, 0, 2, 0, 0, 0));
}

TEST_F(IoctlBackend, asks_for_the_geometry_to_see_whether_there_is_a_disc) {
    EXPECT_TRUE(backend.IsDiscPresent());
    EXPECT_EQ(onlyRequest().code, 0x70000u);
    EXPECT_TRUE(onlyRequest().input.empty());
    EXPECT_EQ(onlyRequest().outputBytes, 24u);
}

TEST_F(IoctlBackend, hands_the_driver_buffers_that_every_adapter_takes) {
    backend.GetTOC(table);
    backend.IsDiscPresent();
    ASSERT_EQ(machine.requests.size(), 2u);
    for (const DriveRequest& request : machine.requests)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(request.output) % 16, 0u);
}

TEST_F(IoctlBackend, moves_the_tray_by_requests_without_buffers) {
    EXPECT_EQ(backend.OpenCD(), 0);
    EXPECT_EQ(backend.CloseCD(), 0);
    ASSERT_EQ(machine.requests.size(), 2u);
    EXPECT_EQ(machine.requests[0].code, 0x74808u);
    EXPECT_EQ(machine.requests[1].code, 0x7480Cu);
    for (const DriveRequest& request : machine.requests) {
        EXPECT_TRUE(request.input.empty());
        EXPECT_EQ(request.output, nullptr);
        EXPECT_EQ(request.outputBytes, 0u);
    }
}

TEST(IoctlBackendUnselected, a_read_returns_0_and_reads_nothing) {
    FakeDrives machine;
    machine.addCdRom('D');
    cdIOCTL backend{fakeDevices()};
    std::array<std::uint8_t, 2352> buffer{};
    EXPECT_EQ(backend.ReadSectorsRAW(0, 1, buffer.data()), 0);
    ASSERT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.ReadSectorsRAW(0, 1, buffer.data()), 0);
    EXPECT_EQ(backend.ReadSectorsRAW(0, highest, buffer.data()), 0);
    EXPECT_TRUE(machine.requests.empty());
}

TEST(IoctlBackendUnselected, the_tray_returns_0_and_stays) {
    FakeDrives machine;
    machine.addCdRom('D');
    cdIOCTL backend{fakeDevices()};
    ASSERT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.OpenCD(), 0);
    EXPECT_EQ(backend.CloseCD(), 0);
    EXPECT_TRUE(machine.requests.empty());
}

TEST(IoctlBackendUnselected, a_table_is_refused_with_4) {
    FakeDrives machine;
    cdIOCTL backend{fakeDevices()};
    auto table = std::make_unique<cTOC>();
    EXPECT_EQ(backend.GetTOC(table), 4);
    EXPECT_EQ(table, nullptr);
}

} // namespace
} // namespace corvina::test
