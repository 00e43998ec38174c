#include "AsfFile.h"

#include "FileHandle.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace corvina::wine {
namespace {

constexpr GUID headerId{0x75B22630, 0x668E, 0x11CF, {0xA6, 0xD9, 0, 0xAA, 0, 0x62, 0xCE, 0x6C}};
constexpr GUID dataId{0x75B22636, 0x668E, 0x11CF, {0xA6, 0xD9, 0, 0xAA, 0, 0x62, 0xCE, 0x6C}};
constexpr GUID filePropertiesId{
    0x8CABDCA1, 0xA947, 0x11CF, {0x8E, 0xE4, 0, 0xC0, 0x0C, 0x20, 0x53, 0x65}};
constexpr GUID indexId{0x33000890, 0xE5B1, 0x11CF, {0x89, 0xF4, 0, 0xA0, 0xC9, 0x03, 0x49, 0xCB}};

// Everything in the file is in objects, which begin so.
#pragma pack(push, 1)
struct ObjectStart {
    GUID id;
    std::uint64_t size; // with this start
};
struct Header {
    ObjectStart start;
    std::uint32_t objects;
    std::uint16_t reserved;
};
struct FileProperties {
    ObjectStart start;
    std::uint8_t others[68];
    std::uint32_t smallestPacket;
    std::uint32_t largestPacket;
    std::uint32_t bitrate;
};
struct Data {
    ObjectStart start;
    GUID file;
    std::uint64_t packets;
    std::uint16_t reserved;
};
struct Index {
    ObjectStart start;
    GUID file;
    std::uint64_t interval;
    std::uint32_t largestCount;
    std::uint32_t entries;
};
#pragma pack(pop)
static_assert(sizeof(FileProperties) == 104);

constexpr std::size_t indexEntrySize = 6;

// No sound and no picture comes in a piece of this size.
constexpr std::uint32_t largestMediaObject = 16 * 1024 * 1024;

template <typename Object>
bool readObject(HANDLE file, std::uint64_t position, Object& object) {
    return readAt(file, position, &object, sizeof object) == sizeof object;
}

// Takes a packet apart. Behind the end everything is 0.
class PacketReader {
public:
    PacketReader(std::uint8_t* bytes, std::size_t size) : at_(bytes), left_(size) {}

    [[nodiscard]] std::uint8_t* at() const { return at_; }
    [[nodiscard]] std::size_t left() const { return left_; }

    void skip(std::size_t bytes) {
        bytes = std::min(bytes, left_);
        at_ += bytes;
        left_ -= bytes;
    }

    std::uint32_t number(std::size_t bytes) {
        std::uint32_t value = 0;
        std::memcpy(&value, at_, std::min(bytes, left_));
        skip(bytes);
        return value;
    }

    // A number whose length is in the two lowest bits of the type.
    std::uint32_t numberOfType(unsigned type) {
        constexpr std::size_t lengths[] = {0, 1, 2, 4};
        return number(lengths[type & 3]);
    }

private:
    std::uint8_t* at_;
    std::size_t left_;
};

// Cut to a packet's size, a media object is never complete and is left out.
void correctMediaObject(std::uint8_t* replicated, std::uint32_t packetSize) {
    std::uint32_t claimed = 0;
    std::memcpy(&claimed, replicated, sizeof claimed);
    if (claimed > largestMediaObject)
        std::memcpy(replicated, &packetSize, sizeof packetSize);
}

void correctPacket(std::uint8_t* bytes, std::size_t size) {
    PacketReader packet(bytes, size);
    if (const unsigned flags = size > 0 ? *bytes : 0; flags & 0x80) {
        const bool plain = (flags & 0x60) == 0;
        packet.skip(1 + (plain ? flags & 0x0F : 2)); // error correction
    }
    const std::uint32_t lengths = packet.number(1);
    const std::uint32_t payloadLengths = packet.number(1);
    packet.numberOfType(lengths >> 5); // the packet
    packet.numberOfType(lengths >> 1); // sequence
    packet.numberOfType(lengths >> 3); // padding
    packet.skip(6);                    // time and duration
    const bool several = lengths & 1;
    const std::uint32_t payloads = several ? packet.number(1) : 1;
    for (std::uint32_t left = payloads & 0x3F; left > 0; --left) {
        packet.skip(1);                           // stream
        packet.numberOfType(payloadLengths >> 4); // number of the media object
        packet.numberOfType(payloadLengths >> 2); // place in it
        const std::uint32_t replicated = packet.numberOfType(payloadLengths);
        if (replicated >= 8 && packet.left() >= 8)
            correctMediaObject(packet.at(), static_cast<std::uint32_t>(size));
        packet.skip(replicated);
        if (several)
            packet.skip(packet.numberOfType(payloads >> 6));
    }
}

// An index is read whole.
void correctIndex(std::uint8_t* bytes, std::size_t size) {
    Index index;
    if (size < sizeof index)
        return;
    std::memcpy(&index, bytes, sizeof index);
    if (index.start.id != indexId)
        return;
    const auto held = static_cast<std::uint32_t>((size - sizeof index) / indexEntrySize);
    index.entries = std::min(index.entries, held);
    std::memcpy(bytes, &index, sizeof index);
}

} // namespace

bool AsfFile::read(HANDLE file) {
    Header header;
    if (!readObject(file, 0, header) || header.start.id != headerId)
        return true;
    const std::uint64_t fileSize = sizeOf(file);
    if (header.start.size > fileSize)
        return false;
    std::uint64_t position = sizeof header;
    for (std::uint32_t left = header.objects; left > 0; --left) {
        ObjectStart object;
        if (position + sizeof object > header.start.size || !readObject(file, position, object) ||
            object.size < sizeof object || object.size > header.start.size - position)
            return false;
        FileProperties properties;
        if (object.id == filePropertiesId && readObject(file, position, properties)) {
            packetSize_ = properties.smallestPacket == properties.largestPacket
                              ? properties.largestPacket
                              : 0;
            bitrate_ = properties.bitrate;
        }
        position += object.size;
    }
    Data data;
    if (packetSize_ == 0 || !readObject(file, header.start.size, data) || data.start.id != dataId)
        return false;
    firstPacket_ = header.start.size + sizeof data;
    if (fileSize - firstPacket_ < packetSize_) // nothing to play
        return false;
    // Without a count, or with one that no file has, they go on to the end.
    const bool counted = data.packets > 0 && data.packets <= MAXDWORD;
    endOfPackets_ =
        counted ? firstPacket_ + data.packets * packetSize_ : std::numeric_limits<LONGLONG>::max();
    return true;
}

void AsfFile::correct(std::uint64_t position, std::uint8_t* bytes, std::size_t size) const {
    if (firstPacket_ == 0)
        return;
    correctIndex(bytes, size);
    if (position < firstPacket_ || position >= endOfPackets_)
        return;
    // The demuxer reads packets whole, but others may begin anywhere.
    const std::uint64_t behindStart = (position - firstPacket_) % packetSize_;
    std::uint64_t at = behindStart == 0 ? 0 : packetSize_ - behindStart;
    for (; at < size && position + at < endOfPackets_; at += packetSize_)
        correctPacket(bytes + at,
                      static_cast<std::size_t>(std::min<std::uint64_t>(packetSize_, size - at)));
}

} // namespace corvina::wine
