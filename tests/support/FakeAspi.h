#pragma once

// An ASPI that does not exist: the library functions by which cdASPI reaches it, every request
// block recorded.

#include "cd/AspiRecords.h"
#include "platform/LibraryApi.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {

class FakeAspi {
public:
    // The one ASPI of the test that is running, reset by this constructor.
    FakeAspi();

    [[nodiscard]] static const LibraryApi& libraries();

    // Puts a CD-ROM drive at a place on a bus; its type is reported with that status.
    void addCdRom(std::uint8_t adapter, std::uint8_t target,
                  std::uint8_t typeStatus = Aspi::complete) {
        cdRoms[{adapter, target}] = typeStatus;
    }

    bool loadable = true;
    bool exportsSupportInfo = true;
    bool exportsSendCommand = true;
    std::uint32_t supportInfo = 0x0101; // complete, one adapter
    std::vector<std::uint8_t> deafAdapters;
    // By adapter and target, what their type queries end with.
    std::map<std::pair<std::uint8_t, std::uint8_t>, std::uint8_t> cdRoms;
    // What a SCSI command ends with; may write to its data.
    std::function<std::uint8_t(const SRB_ExecSCSICmd&)> respond = [](const SRB_ExecSCSICmd&) {
        return Aspi::complete;
    };
    // Commands end on another thread, a while after they were sent.
    bool endsLate = false;

    int loaded = 0;
    int freed = 0;
    std::string loadedName;
    std::vector<SRB_HAInquiry> adapterInquiries;
    std::vector<SRB_GDEVBlock> typeQueries;
    std::vector<SRB_ExecSCSICmd> commands; // as they were sent
};

} // namespace corvina::test
