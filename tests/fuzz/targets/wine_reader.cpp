// What the wrapper of Wine's reader reads of a file itself: the objects of an ASF file, its
// packets, and the tags of both kinds.

#include "AsfFile.h"
#include "FileAttributes.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MediaStart.h"
#include "fuzz/ScratchFile.h"

#include <exception>
#include <tbytevectorstream.h>

namespace corvina::fuzz {
namespace {

void usePackets(std::span<const std::uint8_t> input) {
    static ScratchFile file(L".asf");
    file.fill(input);
    wine::AsfFile asf;
    if (!asf.read(file.handle()))
        return;
    (void)asf.bitrate();
    // As the demuxer reads: whole, in halves, and from anywhere.
    for (const std::size_t start : {std::size_t{0}, input.size() / 2, input.size() / 3}) {
        Bytes part(input.begin() + static_cast<std::ptrdiff_t>(start), input.end());
        asf.correct(start, part.data(), part.size());
        if (!asf.isAsf())
            require(std::equal(part.begin(), part.end(), input.end() - std::ptrdiff_t(part.size())),
                    "a file of another kind is left alone");
    }
    Bytes nothing;
    asf.correct(input.size(), nothing.data(), 0);
}

void readAttributes(TagLib::IOStream& stream) {
    (void)wine::isMpegAudio(stream);
    for (const wine::FileAttribute& attribute : wine::readFileAttributes(stream)) {
        require(!attribute.name.empty(), "an attribute has a name");
        require(attribute.type != WMT_TYPE_STRING ||
                    (attribute.value.size() >= 2 && attribute.value.size() % 2 == 0 &&
                     attribute.value.back() == 0),
                "a text ends");
    }
}

void useAttributes(std::span<const std::uint8_t> input) {
    const auto length = static_cast<unsigned>(input.size());
    TagLib::ByteVectorStream stream(
        TagLib::ByteVector(reinterpret_cast<const char*>(input.data()), length));
    try {
        readAttributes(stream);
    } catch (const std::exception&) { // no memory for a claimed size: the caller expects it
    }
}

std::vector<Bytes> asfSeeds() {
    return {mediaStart("tune.wma", 4200), mediaStart("tune.wmv", 4200)};
}

std::vector<Bytes> tagSeeds() {
    return {mediaStart("tune.mp3", 1500), mediaStart("tune.wma", 1000)};
}

const FuzzTarget asf{"wine_reader", &usePackets, &asfSeeds, 8192};
const FuzzTarget attributes{"wine_attributes", &useAttributes, &tagSeeds, 2048};

} // namespace
} // namespace corvina::fuzz
