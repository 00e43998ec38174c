#pragma once

// CD drives through SCSI commands that Windows passes through. Needs the NT family and drives that
// may be opened for reading and writing. Statuses: see MmcAccess; also 3 bad index, 4 no drive.
//
// Only whether Windows took the request counts. A command that the drive itself refuses (CHECK
// CONDITION) is a success here: deliberate, nobody reads the SCSI status or the sense data.

#include "cd/DeviceDrives.h"
#include "cd/MmcAccess.h"

namespace corvina {

class cdSPTI final : public DeviceBackend<MmcAccess> {
public:
    explicit cdSPTI(DriveDevice devices = DriveDevice()) noexcept;

private:
    [[nodiscard]] DriveText describe(const FileRecord& device) override {
        return describeDrive(device);
    }
    [[nodiscard]] bool hasSelectedDrive() const noexcept override { return selected() != nullptr; }
    CommandResult execute(const MmcCommand& command, void* data, std::uint32_t bytes) override;

    [[nodiscard]] DriveText describeDrive(const FileRecord& device) const;
    CommandResult sendCommand(const FileRecord& device, const MmcCommand& command, void* data,
                              std::uint32_t bytes) const noexcept;
};

} // namespace corvina
