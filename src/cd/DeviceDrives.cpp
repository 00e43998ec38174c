#include "cd/DeviceDrives.h"

namespace corvina {

std::int32_t DeviceDrives::InitMe(const Describe& describe) {
    DeInitMe();
    if (!devices_.isWindowsNt())
        return CdStatus::failed;
    scan(describe);
    return drives_.isEmpty() ? CdStatus::failed : CdStatus::done;
}

std::int32_t DeviceDrives::DeInitMe() noexcept {
    for (Drive& drive : drives_)
        devices_.close(drive.device);
    drives_.clear();
    return CdStatus::done;
}

void DeviceDrives::scan(const Describe& describe) {
    for (wchar_t letter = firstDriveLetter; letter <= lastDriveLetter; ++letter) {
        if (!devices_.isCdRom(letter))
            continue;
        // The list owns the device before anything else can fail.
        Drive& drive = drives_.add();
        drive.letter = letter;
        drive.device = devices_.OpenDriveDevice(drive.letter, desiredAccess_);
        if (drive.device.isOpen())
            drive.text = describe(drive.device);
        else
            drives_.removeLast();
    }
}

} // namespace corvina
