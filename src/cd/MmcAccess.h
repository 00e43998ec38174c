#pragma once

// What the two backends that speak SCSI have in common: every operation on the selected drive. Each
// brings its own way of finding drives and of sending a command.
//
// Statuses: 0 done; 4 the command failed; 5 sectors not read; 9 no drive selected.

#include "cd/MmcCommands.h"
#include "cd/cCDAccess.h"

namespace corvina {

class MmcAccess : public cCDAccess {
public:
    std::int32_t GetTOC(std::unique_ptr<cTOC>& table) final;
    std::int32_t ReadSectorsRAW(std::int32_t lba, std::int32_t sectors, void* ptr) final;
    std::int32_t OpenCD() final;
    std::int32_t CloseCD() final;
    bool IsDiscPresent() final;

protected:
    [[nodiscard]] virtual bool hasSelectedDrive() const noexcept = 0;
    // Sends a command to the selected drive and waits for its end.
    virtual CommandResult execute(const MmcCommand& command, void* data, std::uint32_t bytes) = 0;

private:
    std::int32_t moveTray(Tray tray);
};

} // namespace corvina
