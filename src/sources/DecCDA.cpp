#include "sources/DecCDA.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace corvina {
namespace {

constexpr std::int32_t noTrack = 4; // no drive, or none with the track

constexpr std::size_t trackFileBytes = 44;
using TrackFile = std::array<std::uint8_t, trackFileBytes>;

bool holdsText(const TrackFile& file, std::size_t offset, std::string_view text) {
    return std::equal(text.begin(), text.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
}

// Frame, second and minute stand in this order.
std::int32_t addressAt(const TrackFile& file, std::size_t offset) {
    return msfToLba(file[offset + 2], file[offset + 1], file[offset]);
}

} // namespace

struct DecCDA::TrackPlace {
    std::int32_t start = 0;  // LBA
    std::int32_t length = 0; // sectors, less the 150 that every MSF address is ahead by
};

DecCDA::DecCDA(const FileApi& files, CdBackends backends)
    : files_(files), manager_(std::move(backends)), ready_(manager_.InitManager()) {}

std::int32_t DecCDA::OpenSource(const std::wstring& source) {
    if (!ready_)
        return noTrack;
    // Windows shows track files in the root of a drive, one backslash deep: a deeper path is not
    // even opened. Slashes are not counted.
    if (std::count(source.begin(), source.end(), L'\\') >= 2)
        return SourceResult::notOpen;
    TrackPlace place;
    if (!readTrackFile(source, place))
        return SourceResult::notOpen;
    return selectTrackAt(place) ? SourceResult::done : noTrack;
}

bool DecCDA::readTrackFile(const std::wstring& path, TrackPlace& place) const {
    const FileRecord record = files_.openForReading(path);
    TrackFile file{};
    const std::int32_t got = files_.read(record, file.data(), trackFileBytes);
    if (got != static_cast<std::int32_t>(trackFileBytes) || !holdsText(file, 0, "RIFF") ||
        !holdsText(file, 12, "fmt ") || !holdsText(file, 8, "CDDA"))
        return false;
    place = {.start = addressAt(file, 36), .length = addressAt(file, 40)};
    return true;
}

bool DecCDA::selectTrackAt(const TrackPlace& place) {
    for (std::int32_t drive = 0; drive < manager_.DeviceCount(); ++drive) {
        if (!manager_.SelectDevice(drive))
            continue;
        const std::unique_ptr<cTOC> table = manager_.GetTOC();
        const std::int32_t count = table ? table->TrackCount() : 0;
        // The last entry, the lead-out, has no next one and so matches nothing.
        for (std::int32_t t = 1; t < count; ++t) {
            if (table->track(t)->StartLBA() != place.start)
                continue;
            const std::int64_t sectors =
                std::int64_t{table->track(t + 1)->StartLBA()} - place.start;
            if (sectors - pregapSectors == place.length &&
                manager_.SelectTrack(static_cast<std::uint8_t>(t)) == SourceResult::done)
                return true;
        }
    }
    return false;
}

} // namespace corvina
