#pragma once

// The drive commands of the two backends that speak SCSI: their bytes, their data lengths, and what
// the replies say. All of them take data in or none.

#include "runtime/Text.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace corvina {

struct MmcCommand {
    std::array<std::uint8_t, 16> bytes{};
    std::uint8_t length = 0; // 6, 10 or 12
};

enum class Tray : std::uint8_t { eject = 2, loadAndStart = 3 };

inline constexpr std::uint16_t tocBytes = 804;
inline constexpr std::uint8_t inquiryBytes = 76;
inline constexpr std::uint8_t senseLength = 14; // asked for
inline constexpr std::size_t senseAreaBytes = 16;

namespace Mmc {

[[nodiscard]] MmcCommand testUnitReady() noexcept;
[[nodiscard]] MmcCommand inquiry() noexcept;
[[nodiscard]] MmcCommand startStopUnit(Tray tray) noexcept;
// The whole table, addresses as LBA.
[[nodiscard]] MmcCommand readToc() noexcept;
// Whole sectors of any type, sync and headers and error correction included.
[[nodiscard]] MmcCommand readCd(std::int32_t lba, std::int32_t sectors) noexcept;

} // namespace Mmc

// What came of a command: byte 0 is 1 when it was done, the sense data follows. The record holds 19
// bytes of it although a sense area has only 16; the rest is 0.
using CommandResult = std::array<std::uint8_t, 20>;

[[nodiscard]] CommandResult
commandResult(std::uint8_t status, std::span<const std::uint8_t, senseAreaBytes> sense) noexcept;
[[nodiscard]] inline bool isDone(const CommandResult& result) noexcept {
    return result[0] == 1;
}

// How a drive calls itself.
struct DriveText {
    std::wstring vendor;
    std::wstring product;
    std::wstring revision;

    [[nodiscard]] std::wstring name() const { return join({vendor, product, revision}, L" "); }
};

// The fields of an INQUIRY reply, with their blanks, each up to its first byte of 0.
[[nodiscard]] DriveText driveText(std::span<const std::uint8_t, inquiryBytes> reply);

} // namespace corvina
