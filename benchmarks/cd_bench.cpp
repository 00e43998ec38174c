// How fast a track streams from a virtual drive, compared with a bare loop of the same requests:
// from a drive without delay, and from one with the delay of an 8x drive.

#include "Figure.h"
#include "cd/IoControlCodes.h"
#include "cd/cdManager.h"
#include "support/VirtualDrive.h"

#include <array>
#include <cstring>
#include <list>
#include <windows.h>

#include <winioctl.h>

#include <ntddcdrm.h>
#include <ntddscsi.h>

namespace corvina::bench {
namespace {

using test::DiscImage;
using test::VirtualDrive;

constexpr std::int32_t sectorsPerRequest = 4;
using Block = std::array<std::uint8_t, sectorsPerRequest * bytesPerSector>;

class BareDrive {
public:
    explicit BareDrive(DWORD access)
        : handle_(::CreateFileA("\\\\.\\D:", access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, 0, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE)
            giveUp("the virtual drive cannot be opened");
    }
    BareDrive(const BareDrive&) = delete;
    BareDrive& operator=(const BareDrive&) = delete;
    ~BareDrive() { ::CloseHandle(handle_); }

    void request(DWORD code, void* input, DWORD inputBytes, void* output, DWORD outputBytes) {
        DWORD got = 0;
        if (!::DeviceIoControl(handle_, code, input, inputBytes, output, outputBytes, &got,
                               nullptr))
            giveUp("a bare request failed");
    }

private:
    HANDLE handle_;
};

double barePassThrough(std::int32_t sectors) {
    BareDrive drive(GENERIC_READ | GENERIC_WRITE);
    Block block;
    return secondsFor([&] {
        for (std::int32_t lba = 0; lba < sectors; lba += sectorsPerRequest) {
            struct {
                SCSI_PASS_THROUGH_DIRECT request;
                UCHAR sense[16];
            } packet{};
            packet.request.Length = sizeof(packet.request);
            packet.request.CdbLength = 12;
            packet.request.SenseInfoLength = 14;
            packet.request.DataIn = SCSI_IOCTL_DATA_IN;
            packet.request.DataTransferLength = sizeof(block);
            packet.request.TimeOutValue = 5;
            packet.request.DataBuffer = block.data();
            packet.request.SenseInfoOffset = sizeof(packet.request);
            const UCHAR command[] = {0xBE,
                                     0,
                                     0,
                                     0,
                                     static_cast<UCHAR>(lba >> 8),
                                     static_cast<UCHAR>(lba),
                                     0,
                                     0,
                                     sectorsPerRequest,
                                     0xF8,
                                     0,
                                     0};
            std::memcpy(packet.request.Cdb, command, sizeof(command));
            drive.request(IOCTL_SCSI_PASS_THROUGH_DIRECT, &packet, sizeof(packet), &packet,
                          sizeof(packet));
        }
    });
}

double bareDeviceIoControl(std::int32_t sectors) {
    BareDrive drive(GENERIC_READ);
    Block block;
    return secondsFor([&] {
        for (std::int32_t lba = 0; lba < sectors; lba += sectorsPerRequest) {
            RAW_READ_INFO read{};
            read.DiskOffset.QuadPart = lba * 2048;
            read.SectorCount = sectorsPerRequest;
            read.TrackMode = CDDA;
            drive.request(IOCTL_CDROM_RAW_READ, &read, sizeof(read), block.data(), sizeof(block));
        }
    });
}

// Reads the track in the pieces that the converter asks for.
double throughManager() {
    cdManager manager;
    if (!manager.InitManager() || !manager.SelectDevice(0) || manager.SelectTrack(1) != 0)
        giveUp("the manager finds no track in the virtual drive");
    std::vector<std::uint8_t> piece(88200);
    return secondsFor([&] {
        std::int32_t got = 0;
        while (manager.Read(piece.data(), static_cast<std::int32_t>(piece.size()), got) == 0)
            got = 0;
    });
}

struct Way {
    const char* name;
    std::vector<std::string> lines;
    double (*bare)(std::int32_t sectors);
};

void measure(const Way& way, VirtualDrive& drive) {
    constexpr std::int32_t sectors = 4000;
    const DiscImage disc({{true, sectors}});
    std::vector<std::string> lines = way.lines;
    lines.emplace_back("log");
    drive.load(disc, lines);
    const Pair seconds = interleaved(
        9, [] { return throughManager(); }, [&] { return way.bare(sectors); });
    const double megabytes = sectors * bytesPerSector / 1e6;
    report(std::string("CD track through ") + way.name + ", beside its bare requests, time",
           "ms/MB", seconds.value * 1000 / megabytes, seconds.reference * 1000 / megabytes,
           seconds.ratio, Judged::ratioAtMost, 1.05);
}

// 6.9 ms for four sectors: a little less than eight times the speed of playing them.
void measureSlow(const Way& way, VirtualDrive& drive) {
    constexpr std::int32_t sectors = 300;
    const DiscImage disc({{true, sectors}});
    std::vector<std::string> lines = way.lines;
    lines.insert(lines.end(), {"log", "delay-us 6900"});
    drive.load(disc, lines);
    const Pair seconds = interleaved(
        5, [] { return throughManager(); }, [&] { return way.bare(sectors); });
    constexpr int requests = sectors / sectorsPerRequest;
    report(std::string("CD track through ") + way.name + " at 6.9 ms a request, time", "ms/request",
           seconds.value * 1000 / requests, seconds.reference * 1000 / requests, seconds.ratio,
           Judged::ratioAtMost, 1.05);
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina::bench;
    if (!VirtualDrive::exists('d'))
        giveUp(
            "the test environment has no virtual CD drive: tools/test-environment --empty-drive");
    VirtualDrive drive('d');
    // Only that drive is to be found.
    std::list<VirtualDrive> others;
    for (const char letter : {'e', 'f'})
        if (VirtualDrive::exists(letter))
            others.emplace_back(letter).set({"absent"});
    for (const Way& way : {Way{"SCSI pass-through", {}, &barePassThrough},
                           Way{"device I/O control", {"read-only"}, &bareDeviceIoControl}}) {
        measure(way, drive);
        measureSlow(way, drive);
    }
}
