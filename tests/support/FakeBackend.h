#pragma once

// A CD backend over discs that exist only as tables: what it was asked is recorded, the
// 32-bit words of a sector that it reads all hold the sector's number.

#include "cd/CdAddress.h"
#include "cd/CdBackends.h"
#include "cd/cCDAccess.h"

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace corvina::test {

struct FakeDisc {
    struct Entry {
        std::uint8_t number;
        std::int32_t start;
        std::uint8_t control = 0;
    };
    std::vector<Entry> entries; // the lead-out last

    [[nodiscard]] std::unique_ptr<cTOC> table() const {
        auto result = std::make_unique<cTOC>();
        result->TrackCount(static_cast<std::int32_t>(entries.size()));
        for (const Entry& entry : entries) {
            const auto start = static_cast<std::uint32_t>(entry.start);
            result->StoreEntry(
                {0, static_cast<std::uint8_t>(0x10 | entry.control), entry.number, 0,
                 static_cast<std::uint8_t>(start >> 24), static_cast<std::uint8_t>(start >> 16),
                 static_cast<std::uint8_t>(start >> 8), static_cast<std::uint8_t>(start)});
        }
        return result;
    }
};

// What a drive of the machine holds; null tables cannot be read.
struct FakeMachine {
    struct Read {
        std::int32_t lba;
        std::int32_t sectors;
    };

    std::vector<FakeDisc> drives;
    std::function<bool()> tableReadable = [] { return true; };
    std::function<bool(std::int32_t)> sectorReadable = [](std::int32_t) { return true; };
    // Sectors of which nothing is delivered although the read succeeds.
    std::function<bool(std::int32_t)> refused = [](std::int32_t) { return false; };
    std::function<bool(std::int32_t)> selectable = [](std::int32_t) { return true; };
    std::int32_t trayStatus = 0;
    bool discPresent = true;

    int tablesRead = 0;
    std::vector<Read> reads;
    std::vector<const void*> buffers; // of the reads
    std::vector<std::int32_t> selections;
};

class FakeBackend final : public cCDAccess {
public:
    using Log = std::vector<std::string>;

    FakeBackend(std::string name, FakeMachine& machine, Log& log, std::int32_t initStatus)
        : name_(std::move(name)), machine_(machine), log_(log), initStatus_(initStatus) {
        log_.push_back(name_ + " made");
    }
    ~FakeBackend() override { log_.push_back(name_ + " gone"); }

    std::int32_t InitMe() override {
        log_.push_back(name_ + " InitMe");
        return initStatus_;
    }
    std::int32_t DeInitMe() override {
        log_.push_back(name_ + " DeInitMe");
        return 0;
    }
    std::int32_t SelectDevice(std::int32_t index) override {
        machine_.selections.push_back(index);
        if (index < 0 || index >= DeviceCount() || !machine_.selectable(index))
            return CdStatus::badIndex;
        selected_ = index;
        return 0;
    }
    std::wstring DeviceChar(std::int32_t index) override {
        return std::wstring(1, static_cast<wchar_t>(L'D' + index));
    }
    std::wstring DeviceName(std::int32_t index) override {
        return L"drive " + std::to_wstring(index);
    }
    std::int32_t DeviceCount() override {
        return static_cast<std::int32_t>(machine_.drives.size());
    }
    std::int32_t GetTOC(std::unique_ptr<cTOC>& clsTOC) override {
        clsTOC.reset();
        ++machine_.tablesRead;
        if (!machine_.tableReadable())
            return CdStatus::failed;
        clsTOC = machine_.drives.at(static_cast<std::size_t>(selected_)).table();
        return 0;
    }
    std::int32_t ReadSectorsRAW(std::int32_t LBA, std::int32_t sectors, void* ptr) override {
        machine_.reads.push_back({LBA, sectors});
        machine_.buffers.push_back(ptr);
        if (!machine_.sectorReadable(LBA))
            return CdStatus::readFailed;
        if (machine_.refused(LBA))
            return 0;
        auto* place = static_cast<std::uint8_t*>(ptr);
        for (std::int32_t sector = 0; sector < sectors; ++sector)
            for (std::int32_t i = 0; i < bytesPerSector; i += 4, place += 4) {
                const std::int32_t word = LBA + sector;
                std::memcpy(place, &word, sizeof(word));
            }
        return 0;
    }
    std::int32_t OpenCD() override { return machine_.trayStatus; }
    std::int32_t CloseCD() override { return machine_.trayStatus; }
    bool IsDiscPresent() override { return machine_.discPresent; }

private:
    std::string name_;
    FakeMachine& machine_;
    Log& log_;
    std::int32_t initStatus_;
    std::int32_t selected_ = 0;
};

// Three backends over one machine, each with the status that its InitMe returns.
struct FakeBackends {
    FakeMachine machine;
    FakeBackend::Log log;
    std::int32_t spti = 0;
    std::int32_t ioctl = 0;
    std::int32_t aspi = 0;

    [[nodiscard]] CdBackends makers() {
        return {.spti = [this] { return make("SPTI", spti); },
                .ioctl = [this] { return make("IOCTL", ioctl); },
                .aspi = [this] { return make("ASPI", aspi); }};
    }

private:
    std::unique_ptr<cCDAccess> make(const std::string& name, std::int32_t status) {
        return std::make_unique<FakeBackend>(name, machine, log, status);
    }
};

} // namespace corvina::test
