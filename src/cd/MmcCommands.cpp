#include "cd/MmcCommands.h"

#include "platform/AnsiText.h"

#include <algorithm>

namespace corvina {
namespace {

// Writes the lowest bytes of a value, the most significant first.
void storeBigEndian(std::span<std::uint8_t> place, std::uint32_t value) noexcept {
    for (std::size_t i = place.size(); i-- > 0; value >>= 8)
        place[i] = static_cast<std::uint8_t>(value);
}

MmcCommand command(std::uint8_t opcode, std::uint8_t length) noexcept {
    MmcCommand result;
    result.bytes[0] = opcode;
    result.length = length;
    return result;
}

std::wstring field(std::span<const std::uint8_t> bytes) {
    std::string text(bytes.begin(), std::find(bytes.begin(), bytes.end(), std::uint8_t{0}));
    return fromAnsi(text);
}

} // namespace

namespace Mmc {

MmcCommand testUnitReady() noexcept {
    return command(0x00, 6);
}

MmcCommand inquiry() noexcept {
    MmcCommand result = command(0x12, 6);
    result.bytes[4] = inquiryBytes;
    return result;
}

MmcCommand startStopUnit(Tray tray) noexcept {
    MmcCommand result = command(0x1B, 6);
    result.bytes[4] = static_cast<std::uint8_t>(tray);
    return result;
}

MmcCommand readToc() noexcept {
    MmcCommand result = command(0x43, 10);
    storeBigEndian(std::span(result.bytes).subspan(7, 2), tocBytes);
    return result;
}

MmcCommand readCd(std::int32_t lba, std::int32_t sectors) noexcept {
    constexpr std::uint8_t everyByteOfASector = 0xF8;
    MmcCommand result = command(0xBE, 12);
    storeBigEndian(std::span(result.bytes).subspan(2, 4), static_cast<std::uint32_t>(lba));
    storeBigEndian(std::span(result.bytes).subspan(6, 3), static_cast<std::uint32_t>(sectors));
    result.bytes[9] = everyByteOfASector;
    return result;
}

} // namespace Mmc

CommandResult commandResult(std::uint8_t status,
                            std::span<const std::uint8_t, senseAreaBytes> sense) noexcept {
    CommandResult result{};
    result[0] = status;
    std::copy(sense.begin(), sense.end(), result.begin() + 1);
    return result;
}

DriveText driveText(std::span<const std::uint8_t, inquiryBytes> reply) {
    return {.vendor = field(reply.subspan<8, 8>()),
            .product = field(reply.subspan<16, 16>()),
            .revision = field(reply.subspan<32, 4>())};
}

} // namespace corvina
