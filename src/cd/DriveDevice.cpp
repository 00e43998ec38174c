#include "cd/DriveDevice.h"

#include "cd/IoControlCodes.h"

namespace corvina {

bool DriveDevice::isWindowsNt() const noexcept {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof(version);
    return devices_.version(&version) != FALSE && version.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

bool DriveDevice::isCdRom(wchar_t letter) const noexcept {
    const char root[] = {static_cast<char>(letter), ':', '\0'};
    return devices_.driveType(root) == DRIVE_CDROM;
}

FileRecord DriveDevice::open(std::wstring_view drive, DWORD desiredAccess) const {
    if (drive.empty())
        return {};
    return files_.open(L"\\\\.\\" + std::wstring(1, drive.front()) + L":", desiredAccess,
                       FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
}

std::optional<SCSI_ADDRESS> DriveDevice::scsiAddress(std::wstring_view drive) const {
    const FileRecord device = open(drive, GENERIC_READ);
    if (!device.isOpen())
        return std::nullopt;
    SCSI_ADDRESS address{};
    address.Length = sizeof(address);
    if (!request(device, IoRequest::scsiAddress, &address, sizeof(address), &address,
                 sizeof(address)))
        return std::nullopt;
    return address;
}

bool DriveDevice::request(const FileRecord& device, std::uint32_t code, const void* input,
                          std::uint32_t inputBytes, void* output,
                          std::uint32_t outputBytes) const noexcept {
    DWORD got = 0;
    return devices_.ioControl(device.handle.get(), code, const_cast<void*>(input), inputBytes,
                              output, outputBytes, &got, nullptr) != FALSE;
}

} // namespace corvina
