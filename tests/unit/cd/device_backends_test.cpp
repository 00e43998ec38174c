// The two backends that reach drives as devices: cdIOCTL and cdSPTI.

#include "cd/DriveTable.h"
#include "cd/cdIOCTL.h"
#include "cd/cdSPTI.h"
#include "runtime/RuntimeError.h"
#include "support/FakeDrives.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <limits>

namespace corvina {
namespace {

using test::DriveRequest;
using test::FakeDrives;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr auto highest = std::numeric_limits<std::int32_t>::max();
constexpr auto lowest = std::numeric_limits<std::int32_t>::min();

DriveDevice fakeDevices() {
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

using Both = testing::Types<cdIOCTL, cdSPTI>;
TYPED_TEST_SUITE(DeviceBackends, Both);

TYPED_TEST(DeviceBackends, outside_the_nt_family_answer_4_and_look_at_no_drive) {
    this->machine.platformId = VER_PLATFORM_WIN32_WINDOWS;
    this->machine.addCdRom('D');
    EXPECT_EQ(this->backend.InitMe(), 4);
    EXPECT_TRUE(this->machine.askedTypes.empty());
    EXPECT_TRUE(this->machine.opened.empty());
}

TYPED_TEST(DeviceBackends, answer_4_when_windows_does_not_tell_its_version) {
    this->machine.versionAnswer = FALSE;
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

TYPED_TEST(DeviceBackends, answer_4_when_no_drive_opens) {
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

TYPED_TEST(DeviceBackends, selecting_outside_the_list_answers_3) {
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

TYPED_TEST(DeviceBackends, DeInitMe_twice_or_before_InitMe_answers_0) {
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

TYPED_TEST(DeviceBackends, a_refused_table_request_answers_4_and_hands_back_none) {
    this->selectOneDrive();
    this->machine.answer = [](const DriveRequest&) { return false; };
    this->table = std::make_unique<cTOC>();
    EXPECT_EQ(this->backend.GetTOC(this->table), 4);
    EXPECT_EQ(this->table, nullptr);
}

TYPED_TEST(DeviceBackends, a_refused_read_answers_5_and_is_not_repeated) {
    this->selectOneDrive();
    this->machine.answer = [](const DriveRequest&) { return false; };
    EXPECT_EQ(this->backend.ReadSectorsRAW(0, 4, this->buffer.data()), 5);
    EXPECT_EQ(this->machine.requests.size(), 1u);
}

TYPED_TEST(DeviceBackends, a_refused_tray_request_answers_4) {
    this->selectOneDrive();
    this->machine.answer = [](const DriveRequest&) { return false; };
    EXPECT_EQ(this->backend.OpenCD(), 4);
    EXPECT_EQ(this->backend.CloseCD(), 4);
}

TYPED_TEST(DeviceBackends, a_refused_presence_request_means_no_disc) {
    this->selectOneDrive();
    EXPECT_TRUE(this->backend.IsDiscPresent());
    this->machine.answer = [](const DriveRequest&) { return false; };
    EXPECT_FALSE(this->backend.IsDiscPresent());
}

TYPED_TEST(DeviceBackends, sectors_fewer_than_none_answer_5_and_send_nothing) {
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

TYPED_TEST(DeviceBackends, a_drive_that_tells_too_little_gives_a_table_without_tracks) {
    this->selectOneDrive();
    EXPECT_EQ(this->backend.GetTOC(this->table), 0);
    ASSERT_TRUE(this->table);
    EXPECT_EQ(this->table->TrackCount(), 1);
}

TYPED_TEST(DeviceBackends, a_table_of_nonsense_stays_within_bounds) {
    this->selectOneDrive();
    this->machine.answer = [](const DriveRequest& request) {
        std::memset(request.output, 0xFF, std::min<std::size_t>(request.outputBytes, 8));
        return true;
    };
    EXPECT_EQ(this->backend.GetTOC(this->table), 0);
}

// cdIOCTL

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
    machine.answer = [](const DriveRequest& request) {
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

TEST(IoctlBackendUnselected, a_read_answers_0_and_reads_nothing) {
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

TEST(IoctlBackendUnselected, the_tray_answers_0_and_stays) {
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

// cdSPTI

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

void* dataOf(const DriveRequest& request) {
    void* data = nullptr;
    std::memcpy(&data, request.input.data() + 20, sizeof(data));
    return data;
}

TEST_F(SptiBackend, addresses_in_the_table_are_not_converted) {
    machine.answer = [](const DriveRequest& request) {
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
    machine.answer = [](const DriveRequest& request) {
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

TEST(SptiBackendScan, names_drives_by_their_inquiry_answer) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.answer = [](const DriveRequest& request) {
        char answer[77] = "01234567VENDOR  PRODUCT NAME    1.0aserial";
        std::memcpy(dataOf(request), answer, 76);
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
    machine.answer = [](const DriveRequest&) { return false; };
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

TEST(SptiBackendUnselected, operations_answer_9_and_send_nothing) {
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

// The shared device procedures

TEST(DriveDevice, uses_the_first_character_of_the_drive_text) {
    FakeDrives machine;
    machine.addCdRom('D');
    const DriveDevice devices = fakeDevices();
    FileRecord device = devices.OpenDriveDevice(L"D:\\Track01.cda", GENERIC_READ);
    EXPECT_TRUE(device.isOpen());
    EXPECT_THAT(machine.opened, ElementsAre("\\\\.\\D:"));
    devices.close(device);
}

TEST(DriveDevice, of_no_text_opens_nothing) {
    FakeDrives machine;
    EXPECT_FALSE(fakeDevices().OpenDriveDevice(L"", GENERIC_READ).isOpen());
    EXPECT_TRUE(machine.opened.empty());
}

TEST(DriveDevice, asks_for_the_scsi_address_with_8_bytes_both_ways_and_closes) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.answer = [](const DriveRequest& request) {
        const std::uint8_t address[8] = {8, 0, 0, 0, 1, 2, 3, 4};
        std::memcpy(request.output, address, 8);
        return true;
    };
    const auto address = fakeDevices().GetScsiAddress(L"D");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->PortNumber, 1);
    EXPECT_EQ(address->PathId, 2);
    EXPECT_EQ(address->TargetId, 3);
    EXPECT_EQ(address->Lun, 4);
    ASSERT_EQ(machine.requests.size(), 1u);
    EXPECT_EQ(machine.requests[0].code, 0x41018u);
    EXPECT_EQ(machine.requests[0].input.size(), 8u);
    EXPECT_EQ(machine.requests[0].outputBytes, 8u);
    EXPECT_TRUE(machine.open.empty());
}

TEST(DriveDevice, a_drive_that_does_not_tell_has_no_scsi_address_and_is_closed) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.answer = [](const DriveRequest&) { return false; };
    EXPECT_FALSE(fakeDevices().GetScsiAddress(L"D"));
    EXPECT_FALSE(fakeDevices().GetScsiAddress(L"E"));
    EXPECT_TRUE(machine.open.empty());
}

} // namespace
} // namespace corvina
