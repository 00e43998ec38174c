#pragma once

// CD drives through ASPI for Win32 (wnaspi32.dll), the one way that also works outside the NT
// family. A command has no end but its completion: it cannot be cancelled and nothing limits the
// wait. Statuses: see MmcAccess; also 3 bad index, 4 no ASPI or no drive.
//
// The library stays loaded as long as the backend lives. DeInitMe leaves the list of drives as it
// is.

#include "cd/DriveDevice.h"
#include "cd/MmcAccess.h"
#include "stream/cDLL.h"

#include <string>
#include <vector>

namespace corvina {

class cdASPI final : public MmcAccess {
public:
    explicit cdASPI(DriveDevice devices = DriveDevice(),
                    const LibraryApi& libraries = systemLibraryApi);
    ~cdASPI() override;
    cdASPI(const cdASPI&) = delete;
    cdASPI& operator=(const cdASPI&) = delete;

    std::int32_t InitMe() override;
    std::int32_t DeInitMe() override;
    std::int32_t SelectDevice(std::int32_t index) override;
    // The letter whose drive has the same place on the bus; only the NT family tells.
    std::wstring DeviceChar(std::int32_t index) override;
    std::wstring DeviceName(std::int32_t index) override { return at(index).text.name(); }
    std::int32_t DeviceCount() override { return static_cast<std::int32_t>(drives_.size()); }

private:
    struct Drive {
        std::uint8_t adapter;
        std::uint8_t target;
        std::uint8_t lun;
        DriveText text;
    };

    [[nodiscard]] bool hasSelectedDrive() const noexcept override;
    CommandResult execute(const MmcCommand& command, void* data, std::uint32_t bytes) override;

    void scan(std::int32_t adapters);
    void scanAdapter(std::uint8_t adapter);
    [[nodiscard]] bool isCdRom(std::uint8_t adapter, std::uint8_t target);
    [[nodiscard]] DriveText inquiry(const Drive& drive);
    CommandResult ExecScsi(const Drive& drive, const MmcCommand& command, std::uint8_t direction,
                           void* data, std::uint32_t bytes);
    void send(void* block);
    [[nodiscard]] bool holds(std::int32_t index) const noexcept;
    [[nodiscard]] const Drive& at(std::int32_t index) const;

    DriveDevice devices_;
    cDLL library_;
    std::vector<Drive> drives_;
    std::int32_t selected_ = -1;
    bool ready_ = false;
};

} // namespace corvina
