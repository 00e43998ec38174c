// The ASPI backend: the commands that it sends to the selected drive, and their ends.

#include "AspiFixture.h"
#include "cd/DriveTable.h"
#include "runtime/RuntimeError.h"
#include "support/Limits.h"

#include <cstring>
#include <string>

namespace corvina::test {
namespace {

using testing::ElementsAre;

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

TEST_F(AspiBackend, every_command_takes_data_in_and_14_bytes_of_sense) {
    selectOneDrive();
    backend.InitMe(); // the inquiry
    backend.SelectDevice(0);
    backend.ReadSectorsRAW(0, 1, buffer.data());
    backend.GetTOC(table);
    backend.OpenCD();
    backend.CloseCD();
    backend.IsDiscPresent();
    ASSERT_EQ(aspi.commands.size(), 6u);
    for (const SRB_ExecSCSICmd& command : aspi.commands) {
        SCOPED_TRACE("command " + std::to_string(command.CDBByte[0]));
        EXPECT_EQ(command.header.SRB_Cmd, 2);
        EXPECT_EQ(command.header.SRB_Flags, 8);
        EXPECT_EQ(command.SRB_SenseLen, 14);
        EXPECT_EQ(command.SRB_PostProc, 0u) << "nobody is notified";
    }
}

TEST_F(AspiBackend, hands_the_driver_buffers_that_every_adapter_takes) {
    selectOneDrive();
    backend.InitMe(); // the inquiry
    backend.SelectDevice(0);
    backend.GetTOC(table);
    ASSERT_EQ(aspi.commands.size(), 2u);
    for (const SRB_ExecSCSICmd& command : aspi.commands)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(command.SRB_BufPointer) % 16, 0u);
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
    aspi.respond = [](const SRB_ExecSCSICmd& block) {
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
        aspi.respond = [status](const SRB_ExecSCSICmd&) { return status; };
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
    aspi.respond = [](const SRB_ExecSCSICmd&) { return std::uint8_t{4}; };
    EXPECT_EQ(backend.ReadSectorsRAW(0, 4, buffer.data()), 5);
}

TEST_F(AspiBackend, without_a_selected_drive_returns_9_and_sends_nothing) {
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

TEST_F(AspiBackend, sectors_fewer_than_none_return_5_and_more_than_2_gigabytes_overflow) {
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
} // namespace corvina::test
