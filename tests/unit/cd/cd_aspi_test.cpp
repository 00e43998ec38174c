// The ASPI backend: its library, the drives that it lists, and their letters.

#include "AspiFixture.h"
#include "cd/cdManager.h"
#include "runtime/RuntimeError.h"
#include "support/FakeBackend.h"
#include "support/Limits.h"

#include <cstring>

namespace corvina::test {
namespace {

using testing::ElementsAre;

TEST_F(AspiBackend, without_its_library_returns_4) {
    aspi.loadable = false;
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_EQ(backend.DeviceCount(), 0);
}

TEST_F(AspiBackend, without_its_library_the_manager_ends_up_with_no_backend) {
    aspi.loadable = false;
    test::FakeBackends others;
    others.spti = others.ioctl = 4;
    CdBackends makers = others.makers();
    makers.aspi = [] { return std::make_unique<cdASPI>(DriveDevice(), FakeAspi::libraries()); };
    cdManager manager(makers);
    EXPECT_FALSE(manager.InitManager());
}

TEST_F(AspiBackend, loads_wnaspi32) {
    backend.InitMe();
    EXPECT_EQ(aspi.loadedName, "wnaspi32.dll");
}

TEST_F(AspiBackend, a_library_without_its_functions_returns_4) {
    aspi.addCdRom(0, 3);
    aspi.exportsSendCommand = false;
    EXPECT_EQ(backend.InitMe(), 4);
    aspi.exportsSupportInfo = false;
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_EQ(backend.SelectDevice(0), 3);
}

TEST_F(AspiBackend, that_is_not_complete_returns_4_and_looks_at_no_adapter) {
    aspi.addCdRom(0, 3);
    for (const std::uint32_t status : {0x00u, 0x02u, 0x81u, 0xE8u}) {
        aspi.supportInfo = status << 8 | 1;
        EXPECT_EQ(backend.InitMe(), 4) << status;
    }
    EXPECT_TRUE(aspi.adapterInquiries.empty());
}

TEST_F(AspiBackend, the_upper_half_of_the_support_return_has_no_say) {
    aspi.addCdRom(0, 3);
    aspi.supportInfo = 0xFFFF0101;
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(aspi.adapterInquiries.size(), 1u);
}

TEST_F(AspiBackend, without_a_drive_returns_4) {
    EXPECT_EQ(backend.InitMe(), 4);
    EXPECT_EQ(aspi.adapterInquiries.size(), 1u);
}

TEST_F(AspiBackend, without_an_adapter_returns_4) {
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

TEST_F(AspiBackend, initialised_again_lists_every_drive_once) {
    aspi.addCdRom(0, 3);
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.InitMe(), 0);
    EXPECT_EQ(backend.DeviceCount(), 1);
}

TEST_F(AspiBackend, skips_an_adapter_that_does_not_respond) {
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

TEST_F(AspiBackend, a_type_reported_by_a_query_that_failed_lists_nothing) {
    aspi.addCdRom(0, 1, 0x82);
    aspi.addCdRom(0, 6);
    EXPECT_EQ(backend.InitMe(), 0);
    ASSERT_EQ(backend.DeviceCount(), 1);
    EXPECT_EQ(onlyCommand().SRB_Target, 6) << "the only one that was asked for its name";
}

TEST_F(AspiBackend, names_drives_by_their_inquiry_data) {
    aspi.addCdRom(0, 3);
    aspi.respond = [](const SRB_ExecSCSICmd& block) {
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

TEST_F(AspiBackend, selecting_outside_the_list_returns_3) {
    selectOneDrive();
    for (const std::int32_t index : {-1, 1, highest, lowest})
        EXPECT_EQ(backend.SelectDevice(index), 3) << index;
}

BOOL reportAddress(const DriveRequest& request, std::uint8_t port, std::uint8_t target,
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
    machine.respond = [](const DriveRequest& request) {
        const char letter = FakeDrives::letterOf(request.device);
        return reportAddress(request, 0, static_cast<std::uint8_t>(letter == 'C' ? 1 : 3)) != FALSE;
    };
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"D");
    EXPECT_TRUE(machine.open.empty());
}

TEST_F(AspiBackend, has_not_the_letter_of_another_unit_at_its_target) {
    machine.addCdRom('C');
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest& request) {
        const char letter = FakeDrives::letterOf(request.device);
        return reportAddress(request, 0, 3, static_cast<std::uint8_t>(letter == 'C' ? 1 : 0)) !=
               FALSE;
    };
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"D");
}

TEST_F(AspiBackend, has_no_letter_if_none_has_its_address) {
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest& request) {
        return reportAddress(request, 1, 3) != FALSE;
    };
    selectOneDrive();
    EXPECT_EQ(backend.DeviceChar(0), L"");
    EXPECT_EQ(machine.opened.front(), "\\\\.\\B:");
    EXPECT_EQ(machine.opened.back(), "\\\\.\\Z:");
    EXPECT_EQ(machine.opened.size(), 25u);
}

// Their address would otherwise read as 0, 0, 0: that of a real drive.
TEST_F(AspiBackend, letters_that_report_no_address_are_passed_over) {
    machine.addCdRom('C');
    machine.addCdRom('D');
    machine.respond = [](const DriveRequest& request) {
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

} // namespace
} // namespace corvina::test
