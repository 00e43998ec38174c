#include "cd/DriveTable.h"

#include "cd/CdAddress.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace corvina {
namespace {

// Byte 4 is unused in the MSF form: minute, second and frame are bytes 5 to 7.
void convertMsfToLba(TrackDescriptor& descriptor) noexcept {
    auto address =
        static_cast<std::uint32_t>(msfToLba(descriptor[5], descriptor[6], descriptor[7]));
    for (std::size_t i = 8; i-- > 4; address >>= 8)
        descriptor[i] = static_cast<std::uint8_t>(address);
}

} // namespace

std::unique_ptr<cTOC> driveTable(const CDROM_TOC& record, AddressForm form) {
    const std::int32_t count = record.LastTrack + 1;
    auto table = std::make_unique<cTOC>();
    table->TrackCount(count);
    constexpr auto lastDescriptor = static_cast<std::int32_t>(std::size(CDROM_TOC{}.TrackData)) - 1;
    for (std::int32_t i = 0; i < count; ++i) {
        auto descriptor =
            std::bit_cast<TrackDescriptor>(record.TrackData[std::min(i, lastDescriptor)]);
        if (form == AddressForm::msf)
            convertMsfToLba(descriptor);
        table->StoreEntry(descriptor);
    }
    return table;
}

} // namespace corvina
