#pragma once

// MP4 files from nothing, with as little as a decoder needs. Every box can be another one.

#include "support/TagBytes.h"

#include <deque>
#include <string_view>

namespace corvina::test {

// The content of a movie's header, or of that of a track's media. wide: in the second version.
[[nodiscard]] inline Bytes mp4Times(std::uint32_t ticksPerSecond, std::uint64_t ticks,
                                    bool wide = false) {
    return wide ? joined({Bytes{1, 0, 0, 0}, Bytes(16), bigNumber(ticksPerSecond),
                          bigNumber(ticks, 8)})
                : joined({Bytes(12), bigNumber(ticksPerSecond), bigNumber(ticks)});
}

// The content of a track's own header.
[[nodiscard]] inline Bytes mp4TrackTimes(std::uint64_t ticks, bool wide = false) {
    return wide ? joined({Bytes{1, 0, 0, 0}, Bytes(24), bigNumber(ticks, 8)})
                : joined({Bytes(20), bigNumber(ticks)});
}

// The content of a list of edits that leaves out what is before that tick.
[[nodiscard]] inline Bytes mp4Edits(std::uint32_t from, std::uint32_t count = 1) {
    return joined({Bytes(4), bigNumber(count), bigNumber(0), bigNumber(from), bigNumber(0x10000)});
}

// The content of a table of numbers behind its version and flags.
[[nodiscard]] inline Bytes mp4Table(std::initializer_list<std::uint32_t> numbers) {
    Bytes result(4);
    for (const std::uint32_t number : numbers)
        result = joined({result, bigNumber(number)});
    return result;
}

// One second of sound: one sample of 40 bytes at the place where the data begins.
struct Mp4Track {
    static constexpr std::uint32_t data = 24;
    static constexpr std::uint32_t dataBytes = 40;

    Bytes header = mp4TrackTimes(1000);
    Bytes edits = {}; // none if there is nothing in it
    Bytes times = mp4Times(8000, 8000);
    Bytes handler = joined({Bytes(8), bytesOf("soun")});
    Bytes formats = joined({mp4Table({1, 16}), bytesOf("mp4a"), Bytes(8)});
    Bytes sampleTimes = mp4Table({1, 1, 8000});
    Bytes runs = mp4Table({1, 1, 1, 1});
    Bytes sizes = mp4Table({dataBytes, 1});
    std::string_view sizesName = "stsz";
    Bytes places = mp4Table({1, data});
    std::string_view placesName = "stco";
    // What stands at the ends.
    Bytes behindTrack = {};
    Bytes behindMedia = {};
    Bytes behindInformation = {};
    Bytes behindTables = {};

    [[nodiscard]] Bytes bytes() const {
        const Bytes tables =
            joined({mp4Box("stsd", formats), mp4Box("stts", sampleTimes), mp4Box("stsc", runs),
                    mp4Box(sizesName, sizes), mp4Box(placesName, places), behindTables});
        const Bytes information = joined({mp4Box("stbl", tables), behindInformation});
        const Bytes media = joined({mp4Box("mdhd", times), mp4Box("hdlr", handler),
                                    mp4Box("minf", information), behindMedia});
        const Bytes editBox = edits.empty() ? Bytes{} : mp4Box("edts", mp4Box("elst", edits));
        return mp4Box(
            "trak", joined({mp4Box("tkhd", header), editBox, mp4Box("mdia", media), behindTrack}));
    }
};

struct Mp4Movie {
    Bytes times = mp4Times(1000, 1000);
    std::deque<Mp4Track> tracks = {Mp4Track()};
    Bytes behind = {}; // in the movie

    [[nodiscard]] Bytes bytes() const {
        Bytes boxes = times.empty() ? Bytes{} : mp4Box("mvhd", times);
        for (const Mp4Track& track : tracks)
            boxes = joined({boxes, track.bytes()});
        return joined({mp4Box("ftyp", bytesOf("M4A xxxx")),
                       mp4Box("mdat", Bytes(Mp4Track::dataBytes)),
                       mp4Box("moov", joined({boxes, behind}))});
    }
};

} // namespace corvina::test
