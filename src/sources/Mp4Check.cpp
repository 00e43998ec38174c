#include "sources/Mp4Check.h"

#include "sources/Mp4Boxes.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace corvina {
namespace {

using Box = Mp4Boxes::Box;

constexpr std::size_t versionAndFlags = 4;
constexpr std::uint64_t mostTicksPerSecond = 10'000'000;
// A movie may be longer than its longest track: it may begin late, and rounds up.
constexpr double mostSecondsWithoutTrack = 600;

// Sound that is worth handing on.
constexpr std::string_view soundFormats[] = {
    "mp4a", "alac", "ac-3", "ec-3", ".mp3", "mp3 ", "samr", "sawb", "Opus", "fLaC", "lpcm",
    "sowt", "twos", "in24", "in32", "fl32", "fl64", "ulaw", "alaw", "ima4", "raw ", "enca"};

struct Times {
    std::uint64_t ticksPerSecond = 0;
    std::uint64_t ticks = 0;
    [[nodiscard]] double seconds() const {
        return static_cast<double>(ticks) / static_cast<double>(ticksPerSecond);
    }
};

class Movie {
public:
    Movie(const std::wstring& path, const FileApi& files) : file_(path, files) {}

    [[nodiscard]] bool isMp4() const {
        constexpr std::string_view firstNames[] = {"ftyp", "moov", "mdat", "free",
                                                   "skip", "wide", "styp"};
        const std::vector<std::uint8_t> head = start(file_.whole(), 8);
        return head.size() == 8 &&
               std::any_of(std::begin(firstNames), std::end(firstNames),
                           [&](std::string_view name) {
                               return std::equal(name.begin(), name.end(), head.begin() + 4);
                           });
    }

    [[nodiscard]] bool hasSound() const {
        const Box movie = file_.child(file_.whole(), "moov");
        const std::optional<Times> times = timesOf(file_.child(movie, "mvhd"));
        if (!isTiled(movie) || !times)
            return false;
        const bool inFragments = file_.child(movie, "mvex").size > 0;
        bool sound = false;
        bool broken = false;
        double longest = 0;
        file_.forEach(movie, 0, [&](const Box& track) {
            if (!track.is("trak"))
                return;
            const Box media = file_.child(track, "mdia");
            const bool isSound = isOfKind(media, "soun");
            const std::optional<Times> own = timesOf(file_.child(media, "mdhd"));
            longest = std::max(longest, own ? own->seconds() : 0);
            // The decoder waits for the pictures too before it delivers sound.
            broken = broken || ((isSound || isOfKind(media, "vide")) &&
                                !(own && isWhole(track, media, *own, inFragments)));
            sound = sound || (isSound && isKnownSound(media));
        });
        return sound && !broken &&
               (longest == 0 || times->seconds() <= longest + mostSecondsWithoutTrack);
    }

private:
    [[nodiscard]] std::vector<std::uint8_t> start(Box box, std::uint64_t bytes) const {
        box.size = std::min(box.size, bytes);
        return file_.bytes(box);
    }

    // Whether the boxes in a box fill it. Some writers end the list with a few zeros.
    [[nodiscard]] bool isTiled(const Box& parent) const {
        std::uint64_t end = parent.content;
        file_.forEach(parent, 0, [&](const Box& box) { end = box.content + box.size; });
        return parent.content + parent.size - end < 8;
    }

    // Of a header of a movie or of a track's media.
    [[nodiscard]] std::optional<Times> timesOf(const Box& header) const {
        const std::vector<std::uint8_t> bytes = start(header, 32);
        if (bytes.size() < 20)
            return std::nullopt;
        const bool wide = bytes[0] == 1;
        if (wide && bytes.size() < 32)
            return std::nullopt;
        const Times times{.ticksPerSecond = bigEndian(&bytes[wide ? 20 : 12], 4),
                          .ticks = bigEndian(&bytes[wide ? 24 : 16], wide ? 8 : 4)};
        // All bits set stand for a length that nobody knows.
        const std::uint64_t unknown = wide ? ~std::uint64_t{0} : 0xFFFFFFFF;
        if (times.ticksPerSecond == 0 || times.ticksPerSecond > mostTicksPerSecond)
            return std::nullopt;
        return Times{times.ticksPerSecond, times.ticks == unknown ? 0 : times.ticks};
    }

    [[nodiscard]] bool isOfKind(const Box& media, std::string_view kind) const {
        const std::vector<std::uint8_t> handler = start(file_.child(media, "hdlr"), 12);
        return handler.size() == 12 && std::equal(kind.begin(), kind.end(), handler.begin() + 8);
    }

    [[nodiscard]] bool isWhole(const Box& track, const Box& media, const Times& times,
                               bool inFragments) const {
        const Box information = file_.child(media, "minf");
        const Box tables = file_.child(information, "stbl");
        return isTiled(track) && isTiled(media) && isTiled(information) && isTiled(tables) &&
               beginsInside(file_.child(file_.child(track, "edts"), "elst"), times) &&
               holdTogether(tables, inFragments);
    }

    // Whether a list of edits, if there is one, begins in the track's media.
    [[nodiscard]] bool beginsInside(const Box& edits, const Times& times) const {
        const std::vector<std::uint8_t> bytes = start(edits, 20);
        if (bytes.size() < 20 || bytes[0] != 0 || times.ticks == 0)
            return true;
        const std::uint64_t from = bigEndian(&bytes[12], 4);
        constexpr std::uint64_t silence = 0xFFFFFFFF;
        return from == silence || from <= times.ticks;
    }

    // The number of entries of a table, if it has room for so many.
    [[nodiscard]] std::optional<std::uint64_t> entries(const Box& table, std::size_t at,
                                                       std::size_t entryBytes) const {
        const std::vector<std::uint8_t> bytes = start(table, at + 4);
        if (bytes.size() < at + 4)
            return std::nullopt;
        const std::uint64_t count = bigEndian(&bytes[at], 4);
        if (count > (table.size - at - 4) / entryBytes)
            return std::nullopt;
        return count;
    }

    [[nodiscard]] bool holdTogether(const Box& tables, bool inFragments) const {
        const std::optional<std::uint64_t> formats = formatsOf(file_.child(tables, "stsd"));
        const std::optional<std::uint64_t> times =
            entries(file_.child(tables, "stts"), versionAndFlags, 8);
        const Box runs = file_.child(tables, "stsc");
        const std::optional<std::uint64_t> runCount = entries(runs, versionAndFlags, 12);
        if (!formats || !times || !runCount)
            return false;
        if (inFragments)
            return true;
        const std::vector<std::uint8_t> run = start(runs, 20);
        return *times > 0 && *runCount > 0 && run.size() >= 20 && bigEndian(&run[8], 4) == 1 &&
               bigEndian(&run[12], 4) > 0 && bigEndian(&run[16], 4) >= 1 &&
               bigEndian(&run[16], 4) <= *formats && firstSampleIsThere(tables);
    }

    [[nodiscard]] std::optional<std::uint64_t> formatsOf(const Box& descriptions) const {
        constexpr std::uint64_t mostFormats = 100;
        const std::vector<std::uint8_t> bytes = start(descriptions, 16);
        if (bytes.size() < 16)
            return std::nullopt;
        const std::uint64_t count = bigEndian(&bytes[4], 4);
        const std::uint64_t size = bigEndian(&bytes[8], 4);
        if (count < 1 || count > mostFormats || size > descriptions.size - 8)
            return std::nullopt;
        return count;
    }

    // By the name of the first format.
    [[nodiscard]] bool isKnownSound(const Box& media) const {
        const Box tables = file_.child(file_.child(media, "minf"), "stbl");
        const std::vector<std::uint8_t> bytes = start(file_.child(tables, "stsd"), 16);
        return bytes.size() == 16 &&
               std::any_of(std::begin(soundFormats), std::end(soundFormats),
                           [&](std::string_view name) {
                               return std::equal(name.begin(), name.end(), bytes.begin() + 12);
                           });
    }

    [[nodiscard]] bool firstSampleIsThere(const Box& tables) const {
        const Box sizes = file_.child(tables, "stsz");
        if (sizes.size == 0) // a rare form of the table is left to the decoder
            return file_.child(tables, "stz2").size > 0;
        const Box places = file_.child(tables, "stco");
        const Box widePlaces = file_.child(tables, "co64");
        const bool wide = places.size == 0;
        const std::vector<std::uint8_t> place = start(wide ? widePlaces : places, 16);
        const std::optional<std::uint64_t> chunks =
            entries(wide ? widePlaces : places, versionAndFlags, wide ? 8 : 4);
        const std::vector<std::uint8_t> size = start(sizes, 16);
        if (!chunks || *chunks == 0 || place.size() < (wide ? 16U : 12U) || size.size() < 12)
            return false;
        std::uint64_t bytes = bigEndian(&size[4], 4);
        const std::uint64_t samples = bigEndian(&size[8], 4);
        if (bytes == 0) {
            if (!entries(sizes, 8, 4) || size.size() < 16)
                return false;
            bytes = bigEndian(&size[12], 4);
        }
        const std::uint64_t at = bigEndian(&place[8], wide ? 8 : 4);
        const std::uint64_t end = file_.whole().size;
        return samples > 0 && at <= end && bytes <= end - at;
    }

    Mp4Boxes file_;
};

} // namespace

bool mayBePlayed(const std::wstring& path, const FileApi& files) {
    const Movie movie(path, files);
    return !movie.isMp4() || movie.hasSound();
}

} // namespace corvina
