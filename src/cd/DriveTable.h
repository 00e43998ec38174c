#pragma once

// From the record in which a drive returns its table of contents to a cTOC.

#include "cd/cTOC.h"

#include <cstddef>
#include <memory>
#include <windows.h>

#include <winioctl.h>

#include <ntddcdrm.h>

namespace corvina {

static_assert(sizeof(CDROM_TOC) == 804);
static_assert(offsetof(CDROM_TOC, FirstTrack) == 2 && offsetof(CDROM_TOC, LastTrack) == 3 &&
              offsetof(CDROM_TOC, TrackData) == 4);
static_assert(sizeof(TRACK_DATA) == sizeof(TrackDescriptor));
static_assert(offsetof(TRACK_DATA, TrackNumber) == 2 && offsetof(TRACK_DATA, Address) == 4);

enum class AddressForm { msf, lba };

// The table has an entry for each track up to the last and one for the lead-out. The record holds
// 100 descriptors; a last track beyond them repeats the last descriptor.
[[nodiscard]] std::unique_ptr<cTOC> driveTable(const CDROM_TOC& record, AddressForm form);

} // namespace corvina
