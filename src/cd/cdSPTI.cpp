#include "cd/cdSPTI.h"

#include "cd/IoControlCodes.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace corvina {
namespace {

struct PassThrough {
    SCSI_PASS_THROUGH_DIRECT request;
    std::array<UCHAR, senseAreaBytes> sense;
};

static_assert(sizeof(SCSI_PASS_THROUGH_DIRECT) == 44);
static_assert(offsetof(SCSI_PASS_THROUGH_DIRECT, ScsiStatus) == 2 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, CdbLength) == 6 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, SenseInfoLength) == 7 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, DataIn) == 8 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, DataTransferLength) == 12 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, TimeOutValue) == 16 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, DataBuffer) == 20 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, SenseInfoOffset) == 24 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, Cdb) == 28);
static_assert(sizeof(PassThrough) == 60 && offsetof(PassThrough, sense) == 44);

constexpr ULONG timeoutSeconds = 5;

} // namespace

cdSPTI::cdSPTI(DriveDevice devices) noexcept
    : DeviceBackend(devices, GENERIC_READ | GENERIC_WRITE) {}

CommandResult cdSPTI::execute(const MmcCommand& command, void* data, std::uint32_t bytes) {
    return sendCommand(*selected(), command, data, bytes);
}

DriveText cdSPTI::describeDrive(const FileRecord& device) const {
    alignas(driverAlignment) std::array<std::uint8_t, inquiryBytes> reply{};
    sendCommand(device, Mmc::inquiry(), reply.data(), inquiryBytes);
    return driveText(reply);
}

CommandResult cdSPTI::sendCommand(const FileRecord& device, const MmcCommand& command, void* data,
                                  std::uint32_t bytes) const noexcept {
    alignas(driverAlignment) PassThrough packet{};
    packet.request.Length = sizeof(packet.request);
    packet.request.CdbLength = command.length;
    packet.request.SenseInfoLength = senseLength;
    packet.request.DataIn = SCSI_IOCTL_DATA_IN;
    packet.request.DataTransferLength = bytes;
    packet.request.TimeOutValue = timeoutSeconds;
    packet.request.DataBuffer = data;
    packet.request.SenseInfoOffset = offsetof(PassThrough, sense);
    std::copy(command.bytes.begin(), command.bytes.end(), packet.request.Cdb);
    const bool taken = devices().request(device, IoRequest::scsiPassThroughDirect, &packet,
                                         sizeof(packet), &packet, sizeof(packet));
    return commandResult(taken ? 1 : 0, packet.sense);
}

} // namespace corvina
