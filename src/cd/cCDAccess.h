#pragma once

// One way to reach the CD drives of this machine: the contract of the three backends.
//
// InitMe once; DeviceCount, DeviceName and DeviceChar at any time after it; SelectDevice before the
// operations on a drive; DeInitMe once at the end. Everything is synchronous, on the thread that
// owns the control. Statuses are 32-bit results, 0 for success; each backend's header lists its
// own. Indexes count from 0; DeviceChar and DeviceName raise Subscript out of range for any other.

#include "cd/cTOC.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace corvina {

// Of every data buffer that is handed to a drive's driver: as much as any adapter asks for.
inline constexpr std::size_t driverAlignment = 16;

class cCDAccess {
public:
    virtual ~cCDAccess() = default;

    // Finds the drives. 0 when the backend can be used.
    virtual std::int32_t InitMe() = 0;
    // Closes what InitMe opened.
    virtual std::int32_t DeInitMe() = 0;
    virtual std::int32_t SelectDevice(std::int32_t index) = 0;
    // The drive letter, one character; empty if it is not known.
    virtual std::wstring DeviceChar(std::int32_t index) = 0;
    virtual std::wstring DeviceName(std::int32_t index) = 0;
    virtual std::int32_t DeviceCount() = 0;
    // On success table is a new table; on failure it is left empty.
    virtual std::int32_t GetTOC(std::unique_ptr<cTOC>& table) = 0;
    // Reads whole sectors of 2352 bytes; the buffer at ptr holds sectors times as many.
    virtual std::int32_t ReadSectorsRAW(std::int32_t lba, std::int32_t sectors, void* ptr) = 0;
    // The tray out, the tray in.
    virtual std::int32_t OpenCD() = 0;
    virtual std::int32_t CloseCD() = 0;
    virtual bool IsDiscPresent() = 0;
};

// The statuses that the backends share.
namespace CdStatus {
inline constexpr std::int32_t done = 0;
inline constexpr std::int32_t badIndex = 3;
inline constexpr std::int32_t failed = 4; // no drive, no table, tray request refused
inline constexpr std::int32_t readFailed = 5;
inline constexpr std::int32_t noDrive = 9; // none selected
} // namespace CdStatus

} // namespace corvina
