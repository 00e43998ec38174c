#pragma once

// The CD drives that can be opened as devices, and which of them is selected: the half that the
// device I/O control and the SCSI pass-through backends share.
//
// Devices stay open from a successful open to close or the end of the list.

#include "cd/DriveDevice.h"
#include "cd/DriveList.h"
#include "cd/MmcCommands.h"
#include "cd/cCDAccess.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace corvina {

class DeviceDrives {
public:
    struct Drive {
        std::wstring letter;
        FileRecord device = {};
        DriveText text = {};
    };
    // How a drive that was just opened calls itself.
    using Describe = std::function<DriveText(const FileRecord&)>;

    DeviceDrives(DriveDevice devices, DWORD desiredAccess) noexcept
        : devices_(devices), desiredAccess_(desiredAccess) {}

    // 0, or 4 if there is no drive or Windows is not of the NT family.
    std::int32_t open(const Describe& describe);
    void close() noexcept { drives_.clear(); }

    std::int32_t select(std::int32_t index) noexcept { return drives_.select(index); }
    [[nodiscard]] std::int32_t count() const noexcept { return drives_.count(); }
    [[nodiscard]] std::wstring letter(std::int32_t index) const { return drives_.at(index).letter; }
    [[nodiscard]] std::wstring name(std::int32_t index) const {
        return drives_.at(index).text.name();
    }

    // The open device of the selected drive; null while none is selected.
    [[nodiscard]] const FileRecord* selected() const noexcept {
        const Drive* drive = drives_.selected();
        return drive ? &drive->device : nullptr;
    }
    [[nodiscard]] const DriveDevice& devices() const noexcept { return devices_; }

private:
    void scan(const Describe& describe);

    DriveDevice devices_;
    DWORD desiredAccess_;
    DriveList<Drive> drives_;
};

// A backend over such a list: Contract is cCDAccess or a part of it that is already implemented.
template <typename Contract>
class DeviceBackend : public Contract {
public:
    std::int32_t InitMe() override {
        return drives_.open([this](const FileRecord& device) { return describe(device); });
    }
    std::int32_t DeInitMe() override {
        drives_.close();
        return CdStatus::done;
    }
    std::int32_t SelectDevice(std::int32_t index) override { return drives_.select(index); }
    std::wstring DeviceChar(std::int32_t index) override { return drives_.letter(index); }
    std::wstring DeviceName(std::int32_t index) override { return drives_.name(index); }
    std::int32_t DeviceCount() override { return drives_.count(); }

protected:
    DeviceBackend(DriveDevice devices, DWORD desiredAccess) noexcept
        : drives_(devices, desiredAccess) {}

    [[nodiscard]] virtual DriveText describe(const FileRecord& device) = 0;
    [[nodiscard]] const FileRecord* selected() const noexcept { return drives_.selected(); }
    [[nodiscard]] const DriveDevice& devices() const noexcept { return drives_.devices(); }

private:
    DeviceDrives drives_;
};

} // namespace corvina
