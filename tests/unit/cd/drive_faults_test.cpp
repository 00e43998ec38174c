// A life of the manager with a disc, in which each call to the system fails, alone and in pairs,
// for each way to a drive.

#include "cd/IoControlCodes.h"
#include "cd/cdManager.h"
#include "runtime/RuntimeError.h"
#include "support/FakeDrives.h"
#include "support/Faults.h"

#include <cstring>
#include <gtest/gtest.h>
#include <ntddscsi.h>
#include <vector>

namespace corvina::test {
namespace {

Faults driveFaults;

BOOL WINAPI ioControl(HANDLE device, DWORD code, LPVOID input, DWORD inputBytes, LPVOID output,
                      DWORD outputBytes, LPDWORD got, LPOVERLAPPED state) {
    return !driveFaults.strikes("DeviceIoControl") &&
           FakeDrives::devices().ioControl(device, code, input, inputBytes, output, outputBytes,
                                           got, state);
}

UINT WINAPI driveType(LPCSTR root) {
    return driveFaults.strikes("GetDriveType") ? DRIVE_UNKNOWN
                                               : FakeDrives::devices().driveType(root);
}

BOOL WINAPI version(LPOSVERSIONINFOA record) {
    return !driveFaults.strikes("GetVersionEx") && FakeDrives::devices().version(record);
}

HANDLE WINAPI createFile(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                         DWORD disposition, DWORD flags, HANDLE pattern) {
    return driveFaults.strikes("CreateFile")
               ? INVALID_HANDLE_VALUE
               : FakeDrives::files().createFile(name, access, share, security, disposition, flags,
                                                pattern);
}

// A close that reports a failure has closed all the same.
BOOL WINAPI closeHandle(HANDLE handle) {
    const bool fails = driveFaults.strikes("CloseHandle");
    return FakeDrives::files().closeHandle(handle) && !fails;
}

const DeviceApi faultyDevices{&ioControl, &driveType, &version};
const FileApi faultyFiles = [] {
    FileApi files;
    files.createFile = &createFile;
    files.closeHandle = &closeHandle;
    return files;
}();

// Two tracks of sound and the end, in either form of addresses.
std::vector<std::uint8_t> table(std::size_t addressByte) {
    std::vector<std::uint8_t> bytes(804);
    bytes[2] = 1;
    bytes[3] = 2;
    for (std::uint8_t number = 1; number <= 3; ++number) {
        const std::size_t at = 4 + 8 * (number - std::size_t{1});
        bytes[at + 1] = 0x10;
        bytes[at + 2] = number == 3 ? std::uint8_t{170} : number;
        bytes[at + addressByte] = number;
    }
    return bytes;
}

void give(void* to, std::size_t room, const std::vector<std::uint8_t>& bytes) {
    if (to)
        std::memcpy(to, bytes.data(), std::min(room, bytes.size()));
}

// All requests succeed; those for the table get one.
bool respond(const DriveRequest& request) {
    constexpr std::uint8_t readTable = 0x43;
    if (request.code == IoRequest::scsiPassThroughDirect) {
        SCSI_PASS_THROUGH_DIRECT packet;
        std::memcpy(&packet, request.input.data(), sizeof packet);
        if (packet.Cdb[0] == readTable)
            give(packet.DataBuffer, packet.DataTransferLength, table(7));
    } else if (request.outputBytes >= 804) {
        give(request.output, request.outputBytes, table(6));
    }
    return true;
}

template <typename Call>
void raisingAtMost(Call call) {
    try {
        call();
    } catch (const RuntimeError&) { // an index of what was not found
    }
}

void readSome(cSoundSTRM& stream) {
    std::vector<std::uint8_t> buffer(12'000);
    std::int32_t got = 0;
    const std::int32_t result = stream.Read(buffer.data(), 12'000, got);
    EXPECT_TRUE(result == 0 || result == 5) << result;
    EXPECT_TRUE(got >= 0 && got <= 12'000) << got;
}

void playDisc(cdManager& manager) {
    cSoundSTRM& stream = manager;
    (void)manager.IsDiscPresent();
    (void)manager.GetTOC();
    for (std::uint8_t track = 1; track <= 2; ++track)
        if (manager.SelectTrack(track) == 0) {
            std::int32_t mode = 0;
            readSome(stream);
            raisingAtMost([&] { (void)stream.SeekTo(50, mode); });
            readSome(stream);
        }
    (void)manager.OpenCD();
    (void)manager.CloseCD();
}

// deviceIoControl: the drive opens for reading only, so that commands do not pass through.
void live(bool deviceIoControl) {
    FakeDrives machine;
    machine.addCdRom('D');
    machine.addCdRom('E');
    if (deviceIoControl)
        machine.refuseWrite = {'D', 'E'};
    machine.respond = &respond;
    {
        cdManager manager(systemCdBackends(faultyDevices, faultyFiles));
        if (manager.InitManager())
            for (std::int32_t drive = 0; drive < manager.DeviceCount(); ++drive) {
                EXPECT_LE(manager.DeviceName(drive).size(), 30u);
                if (manager.SelectDevice(drive))
                    playDisc(manager);
            }
    }
    EXPECT_TRUE(machine.open.empty()) << "a drive is left open";
}

TEST(DriveFaults, of_every_call_alone_and_in_pairs_are_survived_through_commands) {
    forEachFaultAndPair(
        driveFaults, [] { live(false); }, 2);
}

TEST(DriveFaults, of_every_call_alone_and_in_pairs_are_survived_through_requests) {
    forEachFaultAndPair(
        driveFaults, [] { live(true); }, 2);
}

// Without a failure the disc is found and read either way, so that the others have what can fail.
TEST(DriveFaults, without_any_the_disc_is_played) {
    for (const bool deviceIoControl : {false, true}) {
        driveFaults.disarm();
        live(deviceIoControl);
        EXPECT_GT(driveFaults.calls("DeviceIoControl"), 15);
        EXPECT_EQ(driveFaults.calls("CloseHandle"), 2);
    }
}

} // namespace
} // namespace corvina::test
