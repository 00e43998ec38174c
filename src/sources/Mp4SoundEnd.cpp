#include "sources/Mp4SoundEnd.h"

#include "sources/Mp4Boxes.h"

#include <algorithm>

namespace corvina {
namespace {

using Box = Mp4Boxes::Box;

// A number of a header that stands behind its two dates, which are wider in the second version. 0
// if the header is shorter or the number says that it is not known.
std::uint64_t number(const std::vector<std::uint8_t>& header, std::size_t narrowAt,
                     std::size_t wideAt, bool maybeWide) {
    if (header.empty())
        return 0;
    const bool wide = header[0] == 1;
    const std::size_t at = wide ? wideAt : narrowAt;
    const std::size_t size = wide && maybeWide ? 8 : 4;
    if (header.size() < at + size)
        return 0;
    const std::uint64_t value = bigEndian(&header[at], size);
    const std::uint64_t unknown = size == 8 ? ~std::uint64_t{0} : 0xFFFFFFFF;
    return value == unknown ? 0 : value;
}

double seconds(std::uint64_t ticks, std::uint64_t ticksPerSecond) {
    return ticksPerSecond == 0 ? 0
                               : static_cast<double>(ticks) / static_cast<double>(ticksPerSecond);
}

class Movie {
public:
    explicit Movie(const std::wstring& path) : file_(path) {}

    [[nodiscard]] double soundEnd() const {
        const Box movie = file_.child(file_.whole(), "moov");
        const auto movieRate = number(file_.bytes(file_.child(movie, "mvhd")), 12, 20, false);
        double end = 0;
        bool found = false;
        file_.forEach(movie, 0, [&](const Box& track) {
            const Box media = file_.child(track, "mdia");
            if (found || !track.is("trak") || !isSound(media))
                return;
            found = true;
            // As it is presented, and as it is stored less what the presentation leaves out.
            end = std::max(
                seconds(number(file_.bytes(file_.child(track, "tkhd")), 20, 28, true), movieRate),
                storedSeconds(media) - leftOut(track, media));
        });
        return end;
    }

private:
    [[nodiscard]] bool isSound(const Box& media) const {
        const std::vector<std::uint8_t> handler = file_.bytes(file_.child(media, "hdlr"));
        constexpr std::string_view kind = "soun";
        return handler.size() >= 12 && std::equal(kind.begin(), kind.end(), handler.begin() + 8);
    }
    [[nodiscard]] std::uint64_t rate(const Box& media) const {
        return number(file_.bytes(file_.child(media, "mdhd")), 12, 20, false);
    }
    [[nodiscard]] double storedSeconds(const Box& media) const {
        return seconds(number(file_.bytes(file_.child(media, "mdhd")), 16, 24, true), rate(media));
    }
    // In the usual form of a list of edits, which has one of them.
    [[nodiscard]] double leftOut(const Box& track, const Box& media) const {
        const auto edits = file_.bytes(file_.child(file_.child(track, "edts"), "elst"));
        constexpr std::size_t version0Bytes = 20;
        if (edits.size() < version0Bytes || edits[0] != 0 || bigEndian(&edits[4], 4) != 1)
            return 0;
        constexpr std::uint64_t silence = 0xFFFFFFFF;
        const std::uint64_t from = bigEndian(&edits[12], 4);
        return from == silence ? 0 : seconds(from, rate(media));
    }

    Mp4Boxes file_;
};

} // namespace

std::optional<double> mp4SoundEnd(const std::wstring& path) {
    const double end = Movie(path).soundEnd();
    return end > 0 ? std::optional(end) : std::nullopt;
}

} // namespace corvina
