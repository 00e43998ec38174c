#pragma once

// CD drives through Windows' own CD-ROM requests. Needs the NT family and drives that may be opened
// for reading.
//
// Statuses: 0 done; 3 bad index; 4 no drive, no table, tray request refused; 5 sectors not read.
// Without a selected drive ReadSectorsRAW, OpenCD and CloseCD do nothing and return 0, GetTOC
// returns 4.

#include "cd/DeviceDrives.h"
#include "cd/cCDAccess.h"

namespace corvina {

class cdIOCTL final : public DeviceBackend<cCDAccess> {
public:
    explicit cdIOCTL(DriveDevice devices = DriveDevice()) noexcept;

    std::int32_t GetTOC(std::unique_ptr<cTOC>& table) override;
    std::int32_t ReadSectorsRAW(std::int32_t lba, std::int32_t sectors, void* ptr) override;
    std::int32_t OpenCD() override;
    std::int32_t CloseCD() override;
    bool IsDiscPresent() override;

private:
    [[nodiscard]] DriveText describe(const FileRecord& device) override;
    std::int32_t moveTray(std::uint32_t code) const noexcept;
};

} // namespace corvina
