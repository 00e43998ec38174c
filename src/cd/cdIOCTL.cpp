#include "cd/cdIOCTL.h"

#include "cd/CdAddress.h"
#include "cd/DriveTable.h"
#include "cd/IoControlCodes.h"

#include <cstddef>

namespace corvina {

static_assert(sizeof(RAW_READ_INFO) == 16);
static_assert(offsetof(RAW_READ_INFO, SectorCount) == 8 &&
              offsetof(RAW_READ_INFO, TrackMode) == 12);
static_assert(CDDA == 2);
static_assert(sizeof(DISK_GEOMETRY) == 24);

cdIOCTL::cdIOCTL(DriveDevice devices) noexcept : DeviceBackend(devices, GENERIC_READ) {}

std::int32_t cdIOCTL::GetTOC(std::unique_ptr<cTOC>& table) {
    table.reset();
    alignas(driverAlignment) CDROM_TOC record{};
    if (!selected() ||
        !devices().request(*selected(), IoRequest::readToc, nullptr, 0, &record, sizeof(record)))
        return CdStatus::failed;
    table = driveTable(record, AddressForm::msf);
    return CdStatus::done;
}

std::int32_t cdIOCTL::ReadSectorsRAW(std::int32_t lba, std::int32_t sectors, void* ptr) {
    // Deliberate: without a drive nothing is read, and that is no failure.
    if (!selected())
        return CdStatus::done;
    if (sectors < 0)
        return CdStatus::readFailed;
    // The driver wants the offset as if sectors were the 2048 bytes of a data disc.
    constexpr LONGLONG addressedSectorBytes = 2048;
    alignas(driverAlignment) RAW_READ_INFO read{};
    read.DiskOffset.QuadPart = lba * addressedSectorBytes;
    read.SectorCount = static_cast<ULONG>(sectors);
    read.TrackMode = CDDA;
    const auto bytes = static_cast<std::uint32_t>(bytesOfSectors(sectors));
    return devices().request(*selected(), IoRequest::rawRead, &read, sizeof(read), ptr, bytes)
               ? CdStatus::done
               : CdStatus::readFailed;
}

std::int32_t cdIOCTL::OpenCD() {
    return moveTray(IoRequest::ejectMedia);
}

std::int32_t cdIOCTL::CloseCD() {
    return moveTray(IoRequest::loadMedia);
}

bool cdIOCTL::IsDiscPresent() {
    alignas(driverAlignment) DISK_GEOMETRY geometry{};
    return selected() && devices().request(*selected(), IoRequest::driveGeometry, nullptr, 0,
                                           &geometry, sizeof(geometry));
}

DriveText cdIOCTL::describe(const FileRecord&) {
    return {.vendor = L"Generic", .product = L"CD-ROM drive", .revision = L"v1"};
}

std::int32_t cdIOCTL::moveTray(std::uint32_t code) const noexcept {
    if (!selected())
        return CdStatus::done;
    return devices().request(*selected(), code, nullptr, 0, nullptr, 0) ? CdStatus::done
                                                                        : CdStatus::failed;
}

} // namespace corvina
