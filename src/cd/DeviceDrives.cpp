#include "cd/DeviceDrives.h"

#include "runtime/RuntimeError.h"

namespace corvina {

std::int32_t DeviceDrives::InitMe(const Describe& describe) {
    DeInitMe();
    if (!devices_.isWindowsNt())
        return CdStatus::failed;
    scan(describe);
    return drives_.empty() ? CdStatus::failed : CdStatus::done;
}

std::int32_t DeviceDrives::DeInitMe() noexcept {
    for (Drive& drive : drives_)
        devices_.close(drive.device);
    drives_.clear();
    return CdStatus::done;
}

std::int32_t DeviceDrives::SelectDevice(std::int32_t index) noexcept {
    if (!holds(index))
        return CdStatus::badIndex;
    selected_ = index;
    return CdStatus::done;
}

std::int32_t DeviceDrives::DeviceCount() const noexcept {
    return static_cast<std::int32_t>(drives_.size());
}

const FileRecord* DeviceDrives::selected() const noexcept {
    return holds(selected_) ? &drives_[static_cast<std::size_t>(selected_)].device : nullptr;
}

void DeviceDrives::scan(const Describe& describe) {
    for (wchar_t letter = firstDriveLetter; letter <= lastDriveLetter; ++letter) {
        if (!devices_.isCdRom(letter))
            continue;
        // The list owns the device before anything else can fail.
        Drive& drive = drives_.emplace_back();
        drive.letter = letter;
        drive.device = devices_.OpenDriveDevice(drive.letter, desiredAccess_);
        if (drive.device.isOpen())
            drive.text = describe(drive.device);
        else
            drives_.pop_back();
    }
}

bool DeviceDrives::holds(std::int32_t index) const noexcept {
    return index >= 0 && index < DeviceCount();
}

const DeviceDrives::Drive& DeviceDrives::at(std::int32_t index) const {
    if (!holds(index))
        throwSubscript();
    return drives_[static_cast<std::size_t>(index)];
}

} // namespace corvina
