#include "cd/IoControlCodes.h"

#include <gtest/gtest.h>
#include <set>
#include <windows.h>

#include <winioctl.h>

#include <ntddcdrm.h>
#include <ntddscsi.h>

namespace corvina {
namespace {

std::uint32_t tableCode(std::string_view name) {
    for (const IoControlCode& entry : ioControlTable)
        if (entry.name == name)
            return entry.code;
    ADD_FAILURE() << "no " << name;
    return 0;
}

std::size_t countOf(std::uint32_t device) {
    std::size_t count = 0;
    for (const IoControlCode& entry : ioControlTable)
        count += entry.code >> 16 == device ? 1 : 0;
    return count;
}

TEST(IoControlCodes, are_the_same_when_they_are_built_at_run_time) {
    const std::size_t count = ioControlTable.size();
    for (std::size_t index = 0; index < count; ++index) {
        const IoControlCode built = buildIoControlCodes()[index];
        EXPECT_EQ(built.code, tableCode(built.name)) << built.name;
    }
}

TEST(IoControlCodes, are_62) {
    EXPECT_EQ(ioControlTable.size(), 62u);
}

TEST(IoControlCodes, are_all_different) {
    std::set<std::uint32_t> codes;
    std::set<std::string_view> names;
    for (const IoControlCode& entry : ioControlTable) {
        codes.insert(entry.code);
        names.insert(entry.name);
    }
    EXPECT_EQ(codes.size(), 62u);
    EXPECT_EQ(names.size(), 62u);
}

TEST(IoControlCodes, cover_ten_controller_and_thirteen_cdrom_requests) {
    EXPECT_EQ(countOf(FILE_DEVICE_CONTROLLER), 10u);
    EXPECT_EQ(countOf(FILE_DEVICE_CD_ROM), 13u);
}

TEST(IoControlCodes, the_rest_are_storage_and_disk_requests) {
    EXPECT_EQ(countOf(FILE_DEVICE_MASS_STORAGE) + countOf(FILE_DEVICE_DISK), 39u);
}

TEST(IoControlCodes, the_ones_that_are_sent_have_their_known_values) {
    EXPECT_EQ(IoRequest::readToc, 0x24000u);
    EXPECT_EQ(IoRequest::rawRead, 0x2403Eu);
    EXPECT_EQ(IoRequest::driveGeometry, 0x70000u);
    EXPECT_EQ(IoRequest::ejectMedia, 0x74808u);
    EXPECT_EQ(IoRequest::loadMedia, 0x7480Cu);
    EXPECT_EQ(IoRequest::scsiAddress, 0x41018u);
    EXPECT_EQ(IoRequest::scsiPassThroughDirect, 0x4D014u);
}

// Every name is compared with the code that Windows' own header gives it.
#define EXPECT_PLATFORM_CODE(name) EXPECT_EQ(tableCode(#name), static_cast<std::uint32_t>(name))

TEST(IoControlCodes, of_the_controller_agree_with_windows) {
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_PASS_THROUGH);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_MINIPORT);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_GET_INQUIRY_DATA);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_GET_CAPABILITIES);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_PASS_THROUGH_DIRECT);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_GET_ADDRESS);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_RESCAN_BUS);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_GET_DUMP_POINTERS);
    EXPECT_PLATFORM_CODE(IOCTL_SCSI_FREE_DUMP_POINTERS);
    EXPECT_PLATFORM_CODE(IOCTL_IDE_PASS_THROUGH);
}

TEST(IoControlCodes, of_cdroms_agree_with_windows) {
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_READ_TOC);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_SEEK_AUDIO_MSF);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_STOP_AUDIO);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_PAUSE_AUDIO);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_RESUME_AUDIO);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_GET_VOLUME);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_PLAY_AUDIO_MSF);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_SET_VOLUME);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_READ_Q_CHANNEL);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_GET_CONTROL);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_GET_LAST_SESSION);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_RAW_READ);
    EXPECT_PLATFORM_CODE(IOCTL_CDROM_DISK_TYPE);
}

TEST(IoControlCodes, of_storage_agree_with_windows) {
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_CHECK_VERIFY);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_MEDIA_REMOVAL);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_EJECT_MEDIA);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_LOAD_MEDIA);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_RESERVE);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_RELEASE);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_FIND_NEW_DEVICES);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_GET_MEDIA_TYPES);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_RESET_BUS);
    EXPECT_PLATFORM_CODE(IOCTL_STORAGE_RESET_DEVICE);
}

TEST(IoControlCodes, of_disks_agree_with_windows) {
    EXPECT_PLATFORM_CODE(IOCTL_DISK_GET_DRIVE_GEOMETRY);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_GET_PARTITION_INFO);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_SET_PARTITION_INFO);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_GET_DRIVE_LAYOUT);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_SET_DRIVE_LAYOUT);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_VERIFY);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_FORMAT_TRACKS);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_REASSIGN_BLOCKS);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_PERFORMANCE);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_IS_WRITABLE);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_LOGGING);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_FORMAT_TRACKS_EX);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_HISTOGRAM_STRUCTURE);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_HISTOGRAM_DATA);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_HISTOGRAM_RESET);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_REQUEST_STRUCTURE);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_REQUEST_DATA);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_CONTROLLER_NUMBER);
    EXPECT_PLATFORM_CODE(SMART_GET_VERSION);
    EXPECT_PLATFORM_CODE(SMART_SEND_DRIVE_COMMAND);
    EXPECT_PLATFORM_CODE(SMART_RCV_DRIVE_DATA);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_CHECK_VERIFY);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_MEDIA_REMOVAL);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_EJECT_MEDIA);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_LOAD_MEDIA);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_RESERVE);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_RELEASE);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_FIND_NEW_DEVICES);
    EXPECT_PLATFORM_CODE(IOCTL_DISK_GET_MEDIA_TYPES);
}

#undef EXPECT_PLATFORM_CODE

} // namespace
} // namespace corvina
