#pragma once

// The device of a drive and what is asked of it directly.

#include "platform/DeviceApi.h"
#include "stream/FileAccess.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <windows.h>

#include <winioctl.h>

#include <ntddscsi.h>

namespace corvina {

static_assert(sizeof(SCSI_ADDRESS) == 8);
static_assert(offsetof(SCSI_ADDRESS, PortNumber) == 4 && offsetof(SCSI_ADDRESS, PathId) == 5 &&
              offsetof(SCSI_ADDRESS, TargetId) == 6 && offsetof(SCSI_ADDRESS, Lun) == 7);

// The letters that are looked at. A never is: it is a floppy drive's.
inline constexpr wchar_t firstDriveLetter = L'B';
inline constexpr wchar_t lastDriveLetter = L'Z';

class DriveDevice {
public:
    explicit DriveDevice(const DeviceApi& devices = systemDeviceApi,
                         const FileApi& files = systemFileApi) noexcept
        : devices_(devices), files_(files) {}

    // Whether this is a Windows of the NT family. Later versions hide their number from this query,
    // but not their family.
    [[nodiscard]] bool isWindowsNt() const noexcept;
    [[nodiscard]] bool isCdRom(wchar_t letter) const noexcept;
    // The device "\\.\D:" of the drive whose letter the text starts with, shared with everybody;
    // closed if it cannot be opened or the text is empty.
    [[nodiscard]] FileRecord open(std::wstring_view drive, DWORD desiredAccess) const;
    // The drive's place on its bus; nothing if the drive does not report it.
    [[nodiscard]] std::optional<SCSI_ADDRESS> scsiAddress(std::wstring_view drive) const;

    // One request; whether it succeeded.
    bool request(const FileRecord& device, std::uint32_t code, const void* input,
                 std::uint32_t inputBytes, void* output, std::uint32_t outputBytes) const noexcept;

private:
    const DeviceApi& devices_;
    FileAccess files_;
};

} // namespace corvina
