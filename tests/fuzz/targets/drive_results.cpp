// What drives say: their names, their tables of contents, their sectors. Each request takes its
// success and its data from the input; the three ways to a drive are taken in turn.

#include "cd/IoControlCodes.h"
#include "cd/cdManager.h"
#include "fuzz/FuzzTarget.h"
#include "runtime/RuntimeError.h"
#include "support/FakeDrives.h"

#include <cstring>
#include <ntddscsi.h>

namespace corvina::fuzz {
namespace {

using test::DriveRequest;
using test::FakeDrives;

// Most requests succeed, so that an input of zeros goes a long way.
bool respondFrom(Taker& input, const DriveRequest& request) {
    const bool refused = input.byte() == 0xEE;
    void* to = request.output;
    std::size_t bytes = request.outputBytes;
    if (request.code == IoRequest::scsiPassThroughDirect) {
        SCSI_PASS_THROUGH_DIRECT packet;
        std::memcpy(&packet, request.input.data(), sizeof packet);
        to = packet.DataBuffer;
        bytes = packet.DataTransferLength;
    }
    const std::span<const std::uint8_t> data = input.take(bytes);
    if (to)
        std::copy(data.begin(), data.end(), static_cast<std::uint8_t*>(to));
    return !refused;
}

template <typename Use>
void attempt(Use&& use) {
    try {
        use();
    } catch (const RuntimeError&) { // an index that there is not: promised
    }
}

void walk(const cTOC& table) {
    const std::int32_t count = table.TrackCount();
    require(count >= 1 && count <= 256, "a table has at most a track for each number of a byte");
    for (std::int32_t index = 1; index <= count; ++index) {
        const cTOCTrack* const track = table.track(index);
        require(track != nullptr, "each index has an entry");
        require(track->CTL() < 16 && track->ADR() < 16, "control and form are half a byte each");
        (void)track->StartLBA();
        (void)track->IsAudio();
    }
    require(!table.track(0) && !table.track(count + 1), "there is nothing outside the table");
}

void playTrack(cdManager& manager, std::uint8_t number) {
    if (manager.SelectTrack(number) != 0)
        return;
    cSoundSTRM& stream = manager;
    std::int32_t mode = 0;
    for (const std::int32_t percent : {0, 99, 100}) {
        attempt([&] { (void)stream.SeekTo(percent, mode); });
        std::vector<std::uint8_t> buffer(3000);
        std::int32_t got = 0;
        attempt([&] { (void)stream.Read(buffer.data(), 3000, got); });
        require(got >= 0 && got <= 3000, "a read returns no more than was asked for");
    }
    attempt([&] { (void)stream.Info().Duration(); });
    attempt([&] { (void)stream.Info().Position(); });
}

void useDrives(std::span<const std::uint8_t> bytes) {
    Taker input(bytes);
    FakeDrives machine;
    const std::uint8_t choice = input.byte();
    machine.addCdRom('D');
    if (choice & 1)
        machine.addCdRom('E');
    if (choice & 2)
        machine.refuseWrite = {'D', 'E'}; // not by pass-through
    machine.respond = [&input](const DriveRequest& request) { return respondFrom(input, request); };
    {
        cdManager manager(systemCdBackends(FakeDrives::devices(), FakeDrives::files()));
        if (!manager.InitManager())
            return;
        for (std::int32_t drive = 0; drive < manager.DeviceCount(); ++drive) {
            require(manager.DeviceName(drive).size() <= 30, "a name has three fields");
            (void)manager.DeviceChar(drive);
            if (!manager.SelectDevice(drive))
                continue;
            (void)manager.IsDiscPresent();
            if (const auto table = manager.GetTOC())
                walk(*table);
            playTrack(manager, input.byte());
        }
    }
    require(machine.open.empty(), "every drive is closed in the end");
}

Bytes disc(std::uint8_t choice, std::size_t name, std::size_t entryAddress) {
    Bytes bytes;
    bytes.reserve(4096);
    bytes.push_back(choice);
    if (name != 0) {
        bytes.resize(bytes.size() + 1 + name, 'D');
        bytes.push_back(0); // test unit ready
    } else {
        bytes.resize(bytes.size() + 1 + 24); // geometry
    }
    for (int times = 0; times < 3; ++times) {
        Bytes table(1 + 804);
        table[3] = 1;
        table[4] = 2;
        std::uint8_t number = 0;
        for (std::size_t at = 5; number < 3; at += 8) {
            ++number;
            table[at + 1] = 0x10;
            table[at + 2] = number == 3 ? 170 : number;
            table[at + entryAddress] = number;
        }
        bytes.insert(bytes.end(), table.begin(), table.end());
        if (times == 0)
            bytes.push_back(1); // the track to play
    }
    return bytes;
}

std::vector<Bytes> driveSeeds() {
    return {disc(0, 76, 7), disc(2, 0, 6), {1}, {3}};
}

const FuzzTarget drives{"drive_results", &useDrives, &driveSeeds, 4096};

} // namespace
} // namespace corvina::fuzz
