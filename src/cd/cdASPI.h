#pragma once

// CD drives through ASPI for Win32 (wnaspi32.dll), the one way that also works outside the NT
// family. A command has no end but its completion: it cannot be cancelled and nothing limits the
// wait. Statuses: see MmcAccess; also 3 bad index, 4 no ASPI or no drive.
//
// The library stays loaded as long as the backend lives. DeInitMe leaves the list of drives as it
// is.

#include "cd/DriveDevice.h"
#include "cd/DriveList.h"
#include "cd/MmcAccess.h"
#include "stream/OptionalLibrary.h"

#include <string>

namespace corvina {

class cdASPI final : public MmcAccess {
public:
    explicit cdASPI(DriveDevice devices = DriveDevice(),
                    const LibraryApi& libraries = systemLibraryApi);
    cdASPI(const cdASPI&) = delete;
    cdASPI& operator=(const cdASPI&) = delete;

    std::int32_t InitMe() override;
    std::int32_t DeInitMe() override;
    std::int32_t SelectDevice(std::int32_t index) override { return drives_.select(index); }
    // The letter whose drive has the same place on the bus; only the NT family reports it.
    std::wstring DeviceChar(std::int32_t index) override;
    std::wstring DeviceName(std::int32_t index) override { return drives_.at(index).text.name(); }
    std::int32_t DeviceCount() override { return drives_.count(); }

private:
    struct Drive {
        std::uint8_t adapter = 0;
        std::uint8_t target = 0;
        std::uint8_t lun = 0; // no other is looked at
        DriveText text = {};
    };

    [[nodiscard]] bool hasSelectedDrive() const noexcept override;
    CommandResult execute(const MmcCommand& command, void* data, std::uint32_t bytes) override;

    void scan(std::int32_t adapters);
    void scanAdapter(std::uint8_t adapter);
    [[nodiscard]] bool isCdRom(std::uint8_t adapter, std::uint8_t target);
    [[nodiscard]] DriveText inquiry(const Drive& drive);
    CommandResult sendCommand(const Drive& drive, const MmcCommand& command, std::uint8_t direction,
                              void* data, std::uint32_t bytes);
    void send(void* block);

    DriveDevice devices_;
    OptionalLibrary library_;
    DriveList<Drive> drives_;
    bool ready_ = false;
};

} // namespace corvina
