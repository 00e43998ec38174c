#include "cd/MmcAccess.h"

#include "cd/CdAddress.h"
#include "cd/DriveTable.h"

namespace corvina {

static_assert(tocBytes == sizeof(CDROM_TOC));

std::int32_t MmcAccess::GetTOC(std::unique_ptr<cTOC>& table) {
    table.reset();
    if (!hasSelectedDrive())
        return CdStatus::noDrive;
    alignas(driverAlignment) CDROM_TOC record{};
    if (!isDone(execute(Mmc::readToc(), &record, tocBytes)))
        return CdStatus::failed;
    table = driveTable(record, AddressForm::lba);
    return CdStatus::done;
}

std::int32_t MmcAccess::ReadSectorsRAW(std::int32_t lba, std::int32_t sectors, void* ptr) {
    if (!hasSelectedDrive())
        return CdStatus::noDrive;
    if (sectors < 0)
        return CdStatus::readFailed;
    const auto bytes = static_cast<std::uint32_t>(bytesOfSectors(sectors));
    return isDone(execute(Mmc::readCd(lba, sectors), ptr, bytes)) ? CdStatus::done
                                                                  : CdStatus::readFailed;
}

std::int32_t MmcAccess::OpenCD() {
    return moveTray(Tray::eject);
}

std::int32_t MmcAccess::CloseCD() {
    return moveTray(Tray::loadAndStart);
}

// The sense data is not looked at: a drive that was reached counts as holding a disc.
bool MmcAccess::IsDiscPresent() {
    return hasSelectedDrive() && isDone(execute(Mmc::testUnitReady(), nullptr, 0));
}

std::int32_t MmcAccess::moveTray(Tray tray) {
    if (!hasSelectedDrive())
        return CdStatus::noDrive;
    return isDone(execute(Mmc::startStopUnit(tray), nullptr, 0)) ? CdStatus::done
                                                                 : CdStatus::failed;
}

} // namespace corvina
