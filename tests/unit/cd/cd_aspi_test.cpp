#include "cd/DriveTable.h"
#include "cd/cdASPI.h"
#include "cd/cdManager.h"
#include "runtime/RuntimeError.h"
#include "support/FakeAspi.h"
#include "support/FakeBackend.h"
#include "support/FakeDrives.h"
#include "support/Limits.h"

#include <array>
#include <cstring>
#include <gmock/gmock.h>

namespace corvina {
namespace {

using test::DriveRequest;
using test::FakeAspi;
using test::FakeDrives;
using test::highest;
using test::lowest;
using testing::ElementsAre;

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

TEST_F(AspiBackend, without_its_library_answers_4) {
    aspi.loadable = false;
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_EQ(backend.DeviceCount(), 0);
}

TEST_F(AspiBackend, without_its_library_the_manager_ends_up_with_no_backend) {
    aspi.loadable = false;
    test::FakeBackends others;
    others.SPTI = others.IOCTL = 4;
    CdBackends makers = others.makers();
    makers.ASPI = [] { return std::make_unique<cdASPI>(DriveDevice(), FakeAspi::libraries()); };
    cdManager manager(makers);
    EXPECT_FALSE(manager.InitManager());
}

TEST_F(AspiBackend, loads_wnaspi32) {
    backend.InitMe();
    EXPECT_EQ(aspi.loadedName, "wnaspi32.dll");
}

TEST_F(AspiBackend, a_library_without_its_functions_answers_4) {
    aspi.addCdRom(0, 3);
    aspi.exportsSendCommand = false;
    EXPECT_EQ(backend.InitMe(), 4);
    aspi.exportsSupportInfo = false;
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_EQ(backend.SelectDevice(0), 3);
}

TEST_F(AspiBackend, that_is_not_complete_answers_4_and_looks_at_no_adapter) {
    aspi.addCdRom(0, 3);
    for (const std::uint32_t status : {0x00u, 0x02u, 0x81u, 0xE8u}) {
        aspi.supportInfo = status << 8 | 1;
        EXPECT_EQ(backend.InitMe(), 4) << status;
    }
    EXPECT_TRUE(aspi.adapterInquiries.empty());
}

TEST_F(AspiBackend, the_upper_half_of_the_support_answer_has_no_say) {
    aspi.addCdRom(0, 3);
    aspi.supportInfo = 0xFFFF0101;
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(aspi.adapterInquiries.size(), 1u);
}

TEST_F(AspiBackend, without_a_drive_answers_4) {
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_EQ(aspi.adapterInquiries.size(), 1u);
}

TEST_F(AspiBackend, without_an_adapter_answers_4) {
    aspi.supportInfo = 0x0100;
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_TRUE(aspi.adapterInquiries.empty());
}

TEST_F(AspiBackend, asks_every_adapter_in_order) {
    aspi.supportInfo = 0x0103;
    backend.InitMe();
    ASSERT_EQ(aspi.adapterInquiries.size(), 3u);
    for (std::uint8_t i = 0; i < 3; ++i) {
        EXPECT_EQ(aspi.adapterInquiries[i].header.SRB_Cmd, 0);
        EXPECT_EQ(aspi.adapterInquiries[i].header.SRB_HaId, i);
    }
}

TEST_F(AspiBackend, two_hundred_and_fifty_five_adapters_end) {
    aspi.supportInfo = 0x01FF;
    aspi.addCdRom(254, 7);
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceCount(), 1);
}

TEST_F(AspiBackend, skips_an_adapter_that_does_not_answer) {
    aspi.supportInfo = 0x0102;
    aspi.deafAdapters = {0};
    aspi.addCdRom(0, 3);
    aspi.addCdRom(1, 3);
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceCount(), 1);
    for (const SRB_GDEVBlock& query : aspi.typeQueries)
        EXPECT_EQ(query.header.SRB_HaId, 1);
}

TEST_F(AspiBackend, examines_targets_0_to_7_of_lun_0_only) {
    backend.InitMe();
    ASSERT_EQ(aspi.typeQueries.size(), 8u);
    for (std::uint8_t i = 0; i < 8; ++i) {
        EXPECT_EQ(aspi.typeQueries[i].header.SRB_Cmd, 1);
        EXPECT_EQ(aspi.typeQueries[i].SRB_Target, i);
        EXPECT_EQ(aspi.typeQueries[i].SRB_Lun, 0);
    }
}

TEST_F(AspiBackend, lists_cd_drives_only) {
    aspi.addCdRom(0, 1);
    aspi.addCdRom(0, 6);
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceCount(), 2);
}

TEST_F(AspiBackend, a_type_told_by_a_query_that_failed_lists_nothing) {
    aspi.addCdRom(0, 1, 0x82);
    aspi.addCdRom(0, 6);
    EXPECT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.DeviceCount(), 1);
    EXPECT_EQ(onlyCommand().SRB_Target, 6) << "the only one that was asked for its name";
}

TEST_F(AspiBackend, names_drives_by_their_inquiry_answer) {
    aspi.addCdRom(0, 3);
    aspi.answer = [](const SRB_ExecSCSICmd& block) {
        EXPECT_EQ(block.SRB_BufLen, 76u);
        std::memcpy(block.SRB_BufPointer, "01234567VENDOR  PRODUCT NAME    1.0a", 36);
        return Aspi::complete;
    };
    ASSERT_EQ(backend.InitMe(), 0);
    EXPECT_THAT(cdb(), ElementsAre(0x12, 0, 0, 0, 76, 0));
    EXPECT_EQ(backend.DeviceName(0), L"VENDOR   PRODUCT NAME     1.0a");
}

TEST_F(AspiBackend, an_index_outside_the_list_raises_subscript_out_of_range) {
    selectOneDrive();
    for (const std::int32_t index : {-1, 1, highest, lowest}) {
        EXPECT_THROW(backend.DeviceChar(index), RuntimeError) << index;
        EXPECT_THROW(backend.DeviceName(index), RuntimeError) << index;
    }
}

TEST_F(AspiBackend, selecting_outside_the_list_answers_3) {
    selectOneDrive();
    for (const std::int32_t index : {-1, 1, highest, lowest})
        EXPECT_EQ(backend.SelectDevice(index), 3) << index;
}

// The letter

BOOL tellAddress(const DriveRequest& request, std::uint8_t port, std::uint8_t target,
                 std::uint8_t lun = 0) {
    auto* bytes = static_cast<std::uint8_t*>(request.output);
    bytes[4] = port;
    bytes[6] = target;
    bytes[7] = lun;
    return TRUE;
}

TEST_F(AspiBackend, has_the_letter_whose_address_is_the_same) {
    for (const char letter : {'C', 'D', 'E'})
        machine.addCdRom(letter);
    machine.answer = [](const DriveRequest& request) {
        const char letter = FakeDrives::letterOf(request.device);
        return tellAddress(request, 0, static_cast<std::uint8_t>(letter == 'C' ? 1 : 3)) != FALSE;
    };
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"D");
    EXPECT_TRUE(machine.open.empty());
}

TEST_F(AspiBackend, has_not_the_letter_of_another_unit_at_its_target) {
    machine.addCdRom('C');
    machine.addCdRom('D');
    machine.answer = [](const DriveRequest& request) {
        const char letter = FakeDrives::letterOf(request.device);
        return tellAddress(request, 0, 3, static_cast<std::uint8_t>(letter == 'C' ? 1 : 0)) !=
               FALSE;
    };
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"D");
}

TEST_F(AspiBackend, has_no_letter_where_none_has_its_address) {
    machine.addCdRom('D');
    machine.answer = [](const DriveRequest& request) {
        return tellAddress(request, 1, 3) != FALSE;
    };
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"");
    EXPECT_EQ(machine.opened.front(), "\\\\.\\B:");
    EXPECT_EQ(machine.opened.back(), "\\\\.\\Z:");
    EXPECT_EQ(machine.opened.size(), 25u);
}

// Their address would otherwise read as 0, 0, 0: that of a real drive.
TEST_F(AspiBackend, letters_that_tell_no_address_are_passed_over) {
    machine.addCdRom('C');
    machine.addCdRom('D');
    machine.answer = [](const DriveRequest& request) {
        return FakeDrives::letterOf(request.device) == 'D';
    };
    aspi.addCdRom(0, 0);
    ASSERT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceChar(0), L"D");
}

TEST_F(AspiBackend, has_no_letter_outside_the_nt_family_and_asks_no_drive) {
    machine.platformId = VER_PLATFORM_WIN32_WINDOWS;
    machine.addCdRom('D');
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"");
    EXPECT_TRUE(machine.opened.empty());
}

// Commands

TEST_F(AspiBackend, fills_every_field_of_a_request_block) {
    selectOneDrive();
    EXPECT_EQ(backend.ReadSectorsRAW(300, 4, buffer.data()), 0);
    SRB_ExecSCSICmd expected{};
    expected.header.SRB_Cmd = 2;
    expected.header.SRB_Flags = 8;
    expected.SRB_Target = 3;
    expected.SRB_BufLen = 9408;
    expected.SRB_BufPointer = buffer.data();
    expected.SRB_SenseLen = 14;
    expected.SRB_CDBLen = 12;
    const std::uint8_t bytes[] = {0xBE, 0, 0, 0, 1, 0x2C, 0, 0, 4, 0xF8, 0, 0};
    std::copy(std::begin(bytes), std::end(bytes), expected.CDBByte);
    EXPECT_EQ(std::memcmp(&onlyCommand(), &expected, sizeof(expected)), 0);
}

TEST_F(AspiBackend, commands_go_to_the_selected_drive) {
    aspi.supportInfo = 0x0102;
    aspi.addCdRom(0, 1);
    aspi.addCdRom(1, 6);
    ASSERT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.SelectDevice(1), 0);
    aspi.commands.clear();
    backend.IsDiscPresent();
    EXPECT_EQ(onlyCommand().header.SRB_HaId, 1);
    EXPECT_EQ(onlyCommand().SRB_Target, 6);
    EXPECT_EQ(onlyCommand().SRB_Lun, 0);
}

TEST_F(AspiBackend, ejects_and_loads_with_start_stop_unit) {
    selectOneDrive();
    EXPECT_EQ(backend.OpenCD(), 0);
    EXPECT_THAT(cdb(), ElementsAre(0x1B, 0, 0, 0, 2, 0));
    aspi.commands.clear();
    EXPECT_EQ(backend.CloseCD(), 0);
    EXPECT_THAT(cdb(), ElementsAre(0x1B, 0, 0, 0, 3, 0));
}

TEST_F(AspiBackend, asks_for_a_disc_with_test_unit_ready) {
    selectOneDrive();
    EXPECT_TRUE(backend.IsDiscPresent());
    EXPECT_THAT(cdb(), ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(onlyCommand().SRB_BufLen, 0u);
}

TEST_F(AspiBackend, reads_the_table_as_lba_with_804_bytes) {
    selectOneDrive();
    aspi.answer = [](const SRB_ExecSCSICmd& block) {
        auto& record = *static_cast<CDROM_TOC*>(block.SRB_BufPointer);
        record.LastTrack = 1;
        record.TrackData[0].TrackNumber = 1;
        record.TrackData[0].Address[2] = 2;
        record.TrackData[1].TrackNumber = 170;
        return Aspi::complete;
    };
    EXPECT_EQ(backend.GetTOC(table), 0);
    EXPECT_EQ(table->TrackCount(), 2);
    EXPECT_EQ(table->track(1)->StartLBA(), 512);
    EXPECT_THAT(cdb(), ElementsAre(0x43, 0, 0, 0, 0, 0, 0, 3, 0x24, 0));
    EXPECT_EQ(onlyCommand().SRB_BufLen, 804u);
}

TEST_F(AspiBackend, any_end_but_complete_is_a_failure) {
    selectOneDrive();
    for (const std::uint8_t status : {std::uint8_t{2}, std::uint8_t{4}, std::uint8_t{0x82}}) {
        aspi.answer = [status](const SRB_ExecSCSICmd&) { return status; };
        table = std::make_unique<cTOC>();
        EXPECT_EQ(backend.GetTOC(table), 4);
        EXPECT_EQ(table, nullptr);
        EXPECT_EQ(backend.ReadSectorsRAW(0, 4, buffer.data()), 5);
        EXPECT_EQ(backend.OpenCD(), 4);
        EXPECT_EQ(backend.CloseCD(), 4);
        EXPECT_FALSE(backend.IsDiscPresent());
    }
}

TEST_F(AspiBackend, waits_for_a_command_that_is_pending) {
    selectOneDrive();
    aspi.endsLate = true;
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, buffer.data()), 0);
    aspi.answer = [](const SRB_ExecSCSICmd&) { return std::uint8_t{4}; };
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, buffer.data()), 5);
}

TEST_F(AspiBackend, without_a_selected_drive_answers_9_and_sends_nothing) {
    aspi.addCdRom(0, 3);
    ASSERT_EQ(backend.InitMe(), 0);
    aspi.commands.clear();
    EXPECT_EQ(backend.GetTOC(table), 9);
    EXPECT_EQ(backend.ReadSectorsRAW(0, 1, buffer.data()), 9);
    EXPECT_EQ(backend.OpenCD(), 9);
    EXPECT_EQ(backend.CloseCD(), 9);
    EXPECT_FALSE(backend.IsDiscPresent());
    EXPECT_TRUE(aspi.commands.empty());
}

TEST_F(AspiBackend, sectors_fewer_than_none_answer_5_and_more_than_2_gigabytes_overflow) {
    selectOneDrive();
    EXPECT_EQ(backend.ReadSectorsRAW(0, -1, buffer.data()), 5);
    EXPECT_THROW(backend.ReadSectorsRAW(0, highest, buffer.data()), RuntimeError);
    EXPECT_TRUE(aspi.commands.empty());
}

TEST_F(AspiBackend, DeInitMe_keeps_the_list_but_sends_nothing_more) {
    selectOneDrive();
    EXPECT_EQ(backend.DeInitMe(), 0);
    EXPECT_EQ(backend.DeviceCount(), 1);
    EXPECT_EQ(backend.OpenCD(), 9);
    EXPECT_TRUE(aspi.commands.empty());
    EXPECT_EQ(aspi.freed, 0);
}

TEST_F(AspiBackend, the_library_is_loaded_once_and_released_with_the_backend) {
    {
        cdASPI other{DriveDevice(FakeDrives::devices(), FakeDrives::files()),
                     FakeAspi::libraries()};
        other.InitMe();
        other.InitMe();
        other.DeInitMe();
        EXPECT_EQ(aspi.loaded, 1);
        EXPECT_EQ(aspi.freed, 0);
    }
    EXPECT_EQ(aspi.freed, 1);
}

} // namespace
} // namespace corvina
