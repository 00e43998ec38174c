#include "cd/DeviceDrives.h"

namespace corvina {

std::int32_t DeviceDrives::open(const Describe& describe) {
    close();
    if (!devices_.isWindowsNt())
        return CdStatus::failed;
    scan(describe);
    return drives_.isEmpty() ? CdStatus::failed : CdStatus::done;
}

void DeviceDrives::scan(const Describe& describe) {
    for (wchar_t letter = firstDriveLetter; letter <= lastDriveLetter; ++letter) {
        if (!devices_.isCdRom(letter))
            continue;
        Drive drive{.letter = std::wstring(1, letter)};
        drive.device = devices_.open(drive.letter, desiredAccess_);
        if (!drive.device.isOpen())
            continue;
        drive.text = describe(drive.device);
        drives_.add(std::move(drive));
    }
}

} // namespace corvina
