#pragma once

// The I/O control codes of CD drives: every request of the controller, CD-ROM, storage and disk
// families under its Windows name. Only those with a constant of their own below are sent.

#include <array>
#include <cstdint>
#include <string_view>

namespace corvina {

enum class IoMethod : std::uint32_t { buffered = 0, inDirect = 1, outDirect = 2 };
enum class IoAccess : std::uint32_t { any = 0, read = 1, readWrite = 3 };

namespace IoDevice {
inline constexpr std::uint32_t cdrom = 0x02;
inline constexpr std::uint32_t controller = 0x04;
inline constexpr std::uint32_t disk = 0x07;
inline constexpr std::uint32_t storage = 0x2D;
} // namespace IoDevice

[[nodiscard]] constexpr std::uint32_t ioControlCode(std::uint32_t device, std::uint32_t function,
                                                    IoMethod method, IoAccess access) noexcept {
    return device << 16 | static_cast<std::uint32_t>(access) << 14 | function << 2 |
           static_cast<std::uint32_t>(method);
}

struct IoControlCode {
    std::string_view name;
    std::uint32_t code;
};

inline constexpr std::size_t ioControlCodeCount = 62;
using IoControlTable = std::array<IoControlCode, ioControlCodeCount>;

// The table never changes, so it is filled when the library is compiled, not when a drive is looked
// for.
[[nodiscard]] constexpr IoControlTable buildIoControlCodes() noexcept {
    using enum IoMethod;
    using enum IoAccess;
    const auto scsi = [](std::uint32_t function, IoAccess access) {
        return ioControlCode(IoDevice::controller, function, buffered, access);
    };
    const auto cdrom = [](std::uint32_t function, IoMethod method = buffered,
                          IoAccess access = read) {
        return ioControlCode(IoDevice::cdrom, function, method, access);
    };
    const auto storage = [](std::uint32_t function, IoAccess access) {
        return ioControlCode(IoDevice::storage, function, buffered, access);
    };
    const auto disk = [](std::uint32_t function, IoAccess access) {
        return ioControlCode(IoDevice::disk, function, buffered, access);
    };
    return {{
        {"IOCTL_SCSI_PASS_THROUGH", scsi(0x401, readWrite)},
        {"IOCTL_SCSI_MINIPORT", scsi(0x402, readWrite)},
        {"IOCTL_SCSI_GET_INQUIRY_DATA", scsi(0x403, any)},
        {"IOCTL_SCSI_GET_CAPABILITIES", scsi(0x404, any)},
        {"IOCTL_SCSI_PASS_THROUGH_DIRECT", scsi(0x405, readWrite)},
        {"IOCTL_SCSI_GET_ADDRESS", scsi(0x406, any)},
        {"IOCTL_SCSI_RESCAN_BUS", scsi(0x407, any)},
        {"IOCTL_SCSI_GET_DUMP_POINTERS", scsi(0x408, any)},
        {"IOCTL_SCSI_FREE_DUMP_POINTERS", scsi(0x409, any)},
        {"IOCTL_IDE_PASS_THROUGH", scsi(0x40A, readWrite)},

        {"IOCTL_CDROM_READ_TOC", cdrom(0x00)},
        {"IOCTL_CDROM_SEEK_AUDIO_MSF", cdrom(0x01)},
        {"IOCTL_CDROM_STOP_AUDIO", cdrom(0x02)},
        {"IOCTL_CDROM_PAUSE_AUDIO", cdrom(0x03)},
        {"IOCTL_CDROM_RESUME_AUDIO", cdrom(0x04)},
        {"IOCTL_CDROM_GET_VOLUME", cdrom(0x05)},
        {"IOCTL_CDROM_PLAY_AUDIO_MSF", cdrom(0x06)},
        {"IOCTL_CDROM_SET_VOLUME", cdrom(0x0A)},
        {"IOCTL_CDROM_READ_Q_CHANNEL", cdrom(0x0B)},
        {"IOCTL_CDROM_GET_CONTROL", cdrom(0x0D)},
        {"IOCTL_CDROM_GET_LAST_SESSION", cdrom(0x0E)},
        {"IOCTL_CDROM_RAW_READ", cdrom(0x0F, outDirect)},
        {"IOCTL_CDROM_DISK_TYPE", cdrom(0x10, buffered, any)},

        {"IOCTL_STORAGE_CHECK_VERIFY", storage(0x200, read)},
        {"IOCTL_STORAGE_MEDIA_REMOVAL", storage(0x201, read)},
        {"IOCTL_STORAGE_EJECT_MEDIA", storage(0x202, read)},
        {"IOCTL_STORAGE_LOAD_MEDIA", storage(0x203, read)},
        {"IOCTL_STORAGE_RESERVE", storage(0x204, read)},
        {"IOCTL_STORAGE_RELEASE", storage(0x205, read)},
        {"IOCTL_STORAGE_FIND_NEW_DEVICES", storage(0x206, read)},
        {"IOCTL_STORAGE_GET_MEDIA_TYPES", storage(0x300, any)},
        {"IOCTL_STORAGE_RESET_BUS", storage(0x400, read)},
        {"IOCTL_STORAGE_RESET_DEVICE", storage(0x401, read)},

        {"IOCTL_DISK_GET_DRIVE_GEOMETRY", disk(0x00, any)},
        {"IOCTL_DISK_GET_PARTITION_INFO", disk(0x01, read)},
        {"IOCTL_DISK_SET_PARTITION_INFO", disk(0x02, readWrite)},
        {"IOCTL_DISK_GET_DRIVE_LAYOUT", disk(0x03, read)},
        {"IOCTL_DISK_SET_DRIVE_LAYOUT", disk(0x04, readWrite)},
        {"IOCTL_DISK_VERIFY", disk(0x05, any)},
        {"IOCTL_DISK_FORMAT_TRACKS", disk(0x06, readWrite)},
        {"IOCTL_DISK_REASSIGN_BLOCKS", disk(0x07, readWrite)},
        {"IOCTL_DISK_PERFORMANCE", disk(0x08, any)},
        {"IOCTL_DISK_IS_WRITABLE", disk(0x09, any)},
        {"IOCTL_DISK_LOGGING", disk(0x0A, any)},
        {"IOCTL_DISK_FORMAT_TRACKS_EX", disk(0x0B, readWrite)},
        {"IOCTL_DISK_HISTOGRAM_STRUCTURE", disk(0x0C, any)},
        {"IOCTL_DISK_HISTOGRAM_DATA", disk(0x0D, any)},
        {"IOCTL_DISK_HISTOGRAM_RESET", disk(0x0E, any)},
        {"IOCTL_DISK_REQUEST_STRUCTURE", disk(0x0F, any)},
        {"IOCTL_DISK_REQUEST_DATA", disk(0x10, any)},
        {"IOCTL_DISK_CONTROLLER_NUMBER", disk(0x11, any)},
        {"SMART_GET_VERSION", disk(0x20, read)},
        {"SMART_SEND_DRIVE_COMMAND", disk(0x21, readWrite)},
        {"SMART_RCV_DRIVE_DATA", disk(0x22, readWrite)},
        {"IOCTL_DISK_CHECK_VERIFY", disk(0x200, read)},
        {"IOCTL_DISK_MEDIA_REMOVAL", disk(0x201, read)},
        {"IOCTL_DISK_EJECT_MEDIA", disk(0x202, read)},
        {"IOCTL_DISK_LOAD_MEDIA", disk(0x203, read)},
        {"IOCTL_DISK_RESERVE", disk(0x204, read)},
        {"IOCTL_DISK_RELEASE", disk(0x205, read)},
        {"IOCTL_DISK_FIND_NEW_DEVICES", disk(0x206, read)},
        {"IOCTL_DISK_GET_MEDIA_TYPES", disk(0x300, any)},
    }};
}

inline constexpr IoControlTable ioControlTable = buildIoControlCodes();

// The code of a request in the table; a name that is not there does not compile.
[[nodiscard]] consteval std::uint32_t ioControl(std::string_view name) {
    for (const IoControlCode& entry : ioControlTable)
        if (entry.name == name)
            return entry.code;
    throw "no such request";
}

namespace IoRequest {
inline constexpr std::uint32_t readToc = ioControl("IOCTL_CDROM_READ_TOC");
inline constexpr std::uint32_t rawRead = ioControl("IOCTL_CDROM_RAW_READ");
inline constexpr std::uint32_t driveGeometry = ioControl("IOCTL_DISK_GET_DRIVE_GEOMETRY");
inline constexpr std::uint32_t ejectMedia = ioControl("IOCTL_DISK_EJECT_MEDIA");
inline constexpr std::uint32_t loadMedia = ioControl("IOCTL_DISK_LOAD_MEDIA");
inline constexpr std::uint32_t scsiAddress = ioControl("IOCTL_SCSI_GET_ADDRESS");
inline constexpr std::uint32_t scsiPassThroughDirect = ioControl("IOCTL_SCSI_PASS_THROUGH_DIRECT");
} // namespace IoRequest

} // namespace corvina
