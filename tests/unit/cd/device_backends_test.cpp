// What the two backends that reach drives as devices, cdIOCTL and cdSPTI, do alike.

#include "DeviceBackendsFixture.h"
#include "cd/cdIOCTL.h"
#include "cd/cdSPTI.h"
#include "runtime/RuntimeError.h"
#include "support/Limits.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

using Both = testing::Types<cdIOCTL, cdSPTI>;
TYPED_TEST_SUITE(DeviceBackends, Both);

TYPED_TEST(DeviceBackends, outside_the_nt_family_return_4_and_look_at_no_drive) {
    this->machine.platformId = VER_PLATFORM_WIN32_WINDOWS;
    this->machine.addCdRom('D');
    EXPECT_EQ(this->backend.InitMe(), 4);
    EXPECT_TRUE(this->machine.askedTypes.empty());
    EXPECT_TRUE(this->machine.opened.empty());
}

TYPED_TEST(DeviceBackends, return_4_when_windows_does_not_report_its_version) {
    this->machine.versionResult = FALSE;
    this->machine.addCdRom('D');
    EXPECT_EQ(this->backend.InitMe(), 4);
}

TYPED_TEST(DeviceBackends, look_at_the_letters_B_to_Z_in_order) {
    EXPECT_EQ(this->backend.InitMe(), 4);
    const std::string asked(this->machine.askedTypes.begin(), this->machine.askedTypes.end());
    EXPECT_EQ(asked, "BCDEFGHIJKLMNOPQRSTUVWXYZ");
}

TYPED_TEST(DeviceBackends, a_cd_drive_A_is_never_found) {
    this->machine.addCdRom('A');
    EXPECT_EQ(this->backend.InitMe(), 4);
    EXPECT_EQ(this->backend.DeviceCount(), 0);
}

TYPED_TEST(DeviceBackends, other_kinds_of_drives_are_not_opened) {
    this->machine.types = {{'B', DRIVE_REMOVABLE},
                           {'C', DRIVE_FIXED},
                           {'E', DRIVE_REMOTE},
                           {'F', DRIVE_RAMDISK},
                           {'G', DRIVE_UNKNOWN}};
    EXPECT_EQ(this->backend.InitMe(), 4);
    EXPECT_TRUE(this->machine.opened.empty());
}

TYPED_TEST(DeviceBackends, drives_are_opened_by_their_device_path_shared_with_all) {
    this->machine.addCdRom('D');
    this->machine.addCdRom('Z');
    EXPECT_EQ(this->backend.InitMe(), 0);
    EXPECT_THAT(this->machine.opened, ElementsAre("\\\\.\\D:", "\\\\.\\Z:"));
    EXPECT_THAT(this->machine.openedShare, ElementsAre(3u, 3u));
}

TYPED_TEST(DeviceBackends, a_drive_that_does_not_open_is_skipped) {
    this->machine.addCdRom('D');
    this->machine.addCdRom('E');
    this->machine.refuseRead = {'D'};
    EXPECT_EQ(this->backend.InitMe(), 0);
    EXPECT_EQ(this->backend.DeviceCount(), 1);
    EXPECT_EQ(this->backend.DeviceChar(0), L"E");
}

TYPED_TEST(DeviceBackends, return_4_when_no_drive_opens) {
    this->machine.addCdRom('D');
    this->machine.refuseRead = {'D'};
    EXPECT_EQ(this->backend.InitMe(), 4);
}

TYPED_TEST(DeviceBackends, drives_are_listed_in_the_order_of_their_letters) {
    for (const char letter : {'R', 'D', 'B'})
        this->machine.addCdRom(letter);
    EXPECT_EQ(this->backend.InitMe(), 0);
    EXPECT_EQ(this->backend.DeviceCount(), 3);
    EXPECT_EQ(this->backend.DeviceChar(0), L"B");
    EXPECT_EQ(this->backend.DeviceChar(2), L"R");
}

TYPED_TEST(DeviceBackends, an_index_outside_the_list_raises_subscript_out_of_range) {
    this->machine.addCdRom('D');
    ASSERT_EQ(this->backend.InitMe(), 0);
    for (const std::int32_t index : {-1, 1, highest, lowest}) {
        EXPECT_THROW(this->backend.DeviceChar(index), RuntimeError) << index;
        EXPECT_THROW(this->backend.DeviceName(index), RuntimeError) << index;
    }
}

TYPED_TEST(DeviceBackends, selecting_outside_the_list_returns_3) {
    this->machine.addCdRom('D');
    ASSERT_EQ(this->backend.InitMe(), 0);
    for (const std::int32_t index : {-1, 1, highest, lowest})
        EXPECT_EQ(this->backend.SelectDevice(index), 3) << index;
}

TYPED_TEST(DeviceBackends, a_refused_selection_keeps_the_one_before) {
    this->selectOneDrive();
    EXPECT_EQ(this->backend.SelectDevice(1), 3);
    EXPECT_EQ(this->backend.OpenCD(), 0);
    EXPECT_EQ(this->machine.requests.size(), 1u);
}

TYPED_TEST(DeviceBackends, selecting_opens_nothing) {
    this->machine.addCdRom('D');
    ASSERT_EQ(this->backend.InitMe(), 0);
    this->machine.opened.clear();
    this->machine.requests.clear();
    EXPECT_EQ(this->backend.SelectDevice(0), 0);
    EXPECT_TRUE(this->machine.opened.empty());
    EXPECT_TRUE(this->machine.requests.empty());
}

TYPED_TEST(DeviceBackends, requests_go_to_the_selected_drive) {
    this->machine.addCdRom('D');
    this->machine.addCdRom('E');
    ASSERT_EQ(this->backend.InitMe(), 0);
    ASSERT_EQ(this->backend.SelectDevice(1), 0);
    this->machine.requests.clear();
    this->backend.ReadSectorsRAW(0, 1, this->buffer.data());
    ASSERT_EQ(this->machine.requests.size(), 1u);
    EXPECT_EQ(FakeDrives::letterOf(this->machine.requests[0].device), 'E');
}

TYPED_TEST(DeviceBackends, devices_stay_open_until_DeInitMe) {
    this->selectOneDrive();
    EXPECT_EQ(this->machine.open.size(), 1u);
    EXPECT_EQ(this->backend.DeInitMe(), 0);
    EXPECT_TRUE(this->machine.open.empty());
    EXPECT_EQ(this->backend.DeviceCount(), 0);
}

TYPED_TEST(DeviceBackends, DeInitMe_twice_or_before_InitMe_returns_0) {
    EXPECT_EQ(this->backend.DeInitMe(), 0);
    EXPECT_EQ(this->backend.DeInitMe(), 0);
}

TYPED_TEST(DeviceBackends, after_DeInitMe_no_request_is_sent) {
    this->selectOneDrive();
    this->backend.DeInitMe();
    this->backend.GetTOC(this->table);
    this->backend.ReadSectorsRAW(0, 1, this->buffer.data());
    this->backend.OpenCD();
    this->backend.CloseCD();
    EXPECT_FALSE(this->backend.IsDiscPresent());
    EXPECT_TRUE(this->machine.requests.empty());
    EXPECT_EQ(this->backend.SelectDevice(0), 3);
}

TYPED_TEST(DeviceBackends, InitMe_again_closes_what_was_open) {
    this->selectOneDrive();
    EXPECT_EQ(this->backend.InitMe(), 0);
    EXPECT_EQ(this->machine.open.size(), 1u);
}

TYPED_TEST(DeviceBackends, the_end_of_a_backend_closes_its_devices) {
    this->machine.addCdRom('D');
    {
        TypeParam other{fakeDevices()};
        ASSERT_EQ(other.InitMe(), 0);
        EXPECT_EQ(this->machine.open.size(), 1u);
    }
    EXPECT_TRUE(this->machine.open.empty());
}

TYPED_TEST(DeviceBackends, without_a_selected_drive_no_disc_is_present) {
    this->machine.addCdRom('D');
    ASSERT_EQ(this->backend.InitMe(), 0);
    this->machine.requests.clear();
    EXPECT_FALSE(this->backend.IsDiscPresent());
    EXPECT_TRUE(this->machine.requests.empty());
}

TYPED_TEST(DeviceBackends, a_refused_table_request_returns_4_and_hands_back_none) {
    this->selectOneDrive();
    this->machine.respond = [](const DriveRequest&) { return false; };
    this->table = std::make_unique<cTOC>();
    EXPECT_EQ(this->backend.GetTOC(this->table), 4);
    EXPECT_EQ(this->table, nullptr);
}

TYPED_TEST(DeviceBackends, a_refused_read_returns_5_and_is_not_repeated) {
    this->selectOneDrive();
    this->machine.respond = [](const DriveRequest&) { return false; };
    EXPECT_EQ(this->backend.ReadSectorsRAW(0, 4, this->buffer.data()), 5);
    EXPECT_EQ(this->machine.requests.size(), 1u);
}

TYPED_TEST(DeviceBackends, a_refused_tray_request_returns_4) {
    this->selectOneDrive();
    this->machine.respond = [](const DriveRequest&) { return false; };
    EXPECT_EQ(this->backend.OpenCD(), 4);
    EXPECT_EQ(this->backend.CloseCD(), 4);
}

TYPED_TEST(DeviceBackends, a_refused_presence_request_means_no_disc) {
    this->selectOneDrive();
    EXPECT_TRUE(this->backend.IsDiscPresent());
    this->machine.respond = [](const DriveRequest&) { return false; };
    EXPECT_FALSE(this->backend.IsDiscPresent());
}

TYPED_TEST(DeviceBackends, sectors_fewer_than_none_return_5_and_send_nothing) {
    this->selectOneDrive();
    EXPECT_EQ(this->backend.ReadSectorsRAW(0, -1, this->buffer.data()), 5);
    EXPECT_EQ(this->backend.ReadSectorsRAW(0, lowest, this->buffer.data()), 5);
    EXPECT_TRUE(this->machine.requests.empty());
}

TYPED_TEST(DeviceBackends, more_sectors_than_2_gigabytes_raise_overflow) {
    this->selectOneDrive();
    EXPECT_THROW(this->backend.ReadSectorsRAW(0, highest, this->buffer.data()), RuntimeError);
    EXPECT_THROW(this->backend.ReadSectorsRAW(0, highest / 2352 + 1, this->buffer.data()),
                 RuntimeError);
    EXPECT_TRUE(this->machine.requests.empty());
}

TYPED_TEST(DeviceBackends, a_drive_that_reports_too_little_gives_a_table_without_tracks) {
    this->selectOneDrive();
    EXPECT_EQ(this->backend.GetTOC(this->table), 0);
    ASSERT_TRUE(this->table);
    EXPECT_EQ(this->table->TrackCount(), 1);
}

TYPED_TEST(DeviceBackends, a_table_of_nonsense_stays_within_bounds) {
    this->selectOneDrive();
    this->machine.respond = [](const DriveRequest& request) {
        std::memset(request.output, 0xFF, std::min<std::size_t>(request.outputBytes, 8));
        return true;
    };
    EXPECT_EQ(this->backend.GetTOC(this->table), 0);
}

} // namespace
} // namespace corvina::test
