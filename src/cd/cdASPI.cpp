#include "cd/cdASPI.h"

#include "cd/AspiRecords.h"
#include "runtime/RuntimeError.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corvina {

cdASPI::cdASPI(DriveDevice devices, const LibraryApi& libraries)
    : devices_(devices), library_(libraries) {}

std::int32_t cdASPI::InitMe() {
    ready_ = false;
    drives_.clear();
    if (library_.ModuleHandle() == 0 && !library_.LoadDLL(L"wnaspi32.dll"))
        return CdStatus::failed;
    library_.IsCDECL(true);
    try {
        const std::int32_t support = library_.CallFunc("GetASPI32SupportInfo");
        if ((support >> 8 & 0xFF) != Aspi::complete)
            return CdStatus::failed;
        ready_ = true;
        scan(support & 0xFF);
    } catch (const RuntimeError&) {
        // A library of that name without ASPI's functions is no ASPI.
        ready_ = false;
    }
    return ready_ && !drives_.isEmpty() ? CdStatus::done : CdStatus::failed;
}

std::int32_t cdASPI::DeInitMe() {
    ready_ = false;
    return CdStatus::done;
}

std::wstring cdASPI::DeviceChar(std::int32_t index) {
    const Drive& drive = drives_.at(index);
    if (!devices_.isWindowsNt())
        return {};
    for (wchar_t letter = firstDriveLetter; letter <= lastDriveLetter; ++letter) {
        const auto address = devices_.scsiAddress(std::wstring_view(&letter, 1));
        if (address && address->PortNumber == drive.adapter && address->TargetId == drive.target &&
            address->Lun == drive.lun)
            return std::wstring(1, letter);
    }
    return {};
}

bool cdASPI::hasSelectedDrive() const noexcept {
    return ready_ && drives_.selected();
}

CommandResult cdASPI::execute(const MmcCommand& command, void* data, std::uint32_t bytes) {
    return sendCommand(*drives_.selected(), command, Aspi::directionIn, data, bytes);
}

void cdASPI::scan(std::int32_t adapters) {
    for (std::int32_t adapter = 0; adapter < adapters; ++adapter)
        scanAdapter(static_cast<std::uint8_t>(adapter));
}

void cdASPI::scanAdapter(std::uint8_t adapter) {
    SRB_HAInquiry block{};
    block.header.SRB_Cmd = Aspi::hostAdapterInquiry;
    block.header.SRB_HaId = adapter;
    send(&block);
    if (block.header.SRB_Status != Aspi::complete)
        return;
    constexpr std::uint8_t targets = 8;
    for (std::uint8_t target = 0; target < targets; ++target)
        if (isCdRom(adapter, target)) {
            Drive drive{.adapter = adapter, .target = target};
            drive.text = inquiry(drive);
            drives_.add(std::move(drive));
        }
}

bool cdASPI::isCdRom(std::uint8_t adapter, std::uint8_t target) {
    SRB_GDEVBlock block{};
    block.header.SRB_Cmd = Aspi::getDeviceType;
    block.header.SRB_HaId = adapter;
    block.SRB_Target = target;
    send(&block);
    return block.header.SRB_Status == Aspi::complete && block.SRB_DeviceType == Aspi::cdRom;
}

DriveText cdASPI::inquiry(const Drive& drive) {
    alignas(driverAlignment) std::array<std::uint8_t, inquiryBytes> reply{};
    sendCommand(drive, Mmc::inquiry(), Aspi::directionIn, reply.data(), inquiryBytes);
    return driveText(reply);
}

CommandResult cdASPI::sendCommand(const Drive& drive, const MmcCommand& command,
                                  std::uint8_t direction, void* data, std::uint32_t bytes) {
    SRB_ExecSCSICmd block{};
    block.header.SRB_Cmd = Aspi::executeScsi;
    block.header.SRB_HaId = drive.adapter;
    block.header.SRB_Flags = direction;
    block.SRB_Target = drive.target;
    block.SRB_Lun = drive.lun;
    block.SRB_BufLen = bytes;
    block.SRB_BufPointer = data;
    block.SRB_SenseLen = senseLength;
    block.SRB_CDBLen = command.length;
    std::copy(command.bytes.begin(), command.bytes.end(), block.CDBByte);
    send(&block);
    // Deliberate: the wait has no timeout, no sleep and no event. The driver writes to this block,
    // on the stack, until the command has ended, so there is no leaving before.
    const volatile std::uint8_t& status = block.header.SRB_Status;
    while (status == Aspi::pending) {
    }
    return commandResult(status, block.SenseArea);
}

void cdASPI::send(void* block) {
    library_.CallFunc("SendASPI32Command", block);
}

} // namespace corvina
