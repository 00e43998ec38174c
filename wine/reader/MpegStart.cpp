#include "MpegStart.h"

#include "FileHandle.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace corvina::wine {
namespace {

constexpr std::size_t headerSize = 4;
constexpr int framesThatProve = 3;
constexpr std::uint64_t mostJunk = 64 * 1024;

// The bytes of a file, of which a piece is in memory. Behind the end everything is 0.
class FileBytes {
public:
    explicit FileBytes(HANDLE file) : file_(file), size_(sizeOf(file)) {}

    [[nodiscard]] std::uint64_t size() const { return size_; }

    [[nodiscard]] std::uint8_t operator[](std::uint64_t position) {
        if (position >= size_)
            return 0;
        if (position < at_ || position - at_ >= bytes_.size()) {
            at_ = position;
            bytes_.fill(0);
            (void)readAt(file_, at_, bytes_.data(), static_cast<DWORD>(bytes_.size()));
        }
        return bytes_[static_cast<std::size_t>(position - at_)];
    }

private:
    HANDLE file_;
    std::uint64_t size_;
    std::uint64_t at_ = ~std::uint64_t{0};
    std::array<std::uint8_t, 16 * 1024> bytes_{};
};

// The size of the tag at this position with its header; 0 if there is none.
std::uint64_t tagSize(FileBytes& file, std::uint64_t at) {
    constexpr std::uint8_t footerFlag = 0x10;
    if (file[at] != 'I' || file[at + 1] != 'D' || file[at + 2] != '3' || file[at + 3] == 0xFF ||
        file[at + 4] == 0xFF)
        return 0;
    std::uint64_t size = 0;
    for (int index = 6; index < 10; ++index) {
        const std::uint8_t byte = file[at + static_cast<unsigned>(index)];
        if (byte & 0x80)
            return 0;
        size = size << 7 | byte;
    }
    return size + (file[at + 5] & footerFlag ? 20 : 10);
}

struct Frame {
    unsigned kind = 0; // of the stream: version, layer and rate, the same in every frame
    std::uint32_t bytes = 0;
    std::uint32_t samples = 0; // of one channel
    std::uint32_t hertz = 0;
};

enum Version { version25 = 0, version2 = 2, version1 = 3 };
enum Layer { layer3 = 1, layer2 = 2, layer1 = 3 };

std::uint32_t kilobits(unsigned version, unsigned layer, unsigned index) {
    constexpr std::uint16_t rates[5][15] = {
        {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    };
    const unsigned row = version == version1 ? 3 - layer : layer == layer1 ? 3 : 4;
    return rates[row][index];
}

// The frame whose header is at this position. None has 0 bytes; a stream of frames without a stated
// bitrate is not recognised.
Frame frameAt(FileBytes& file, std::uint64_t at) {
    if (file[at] != 0xFF || (file[at + 1] & 0xE0) != 0xE0)
        return {};
    const unsigned version = file[at + 1] >> 3 & 3;
    const unsigned layer = file[at + 1] >> 1 & 3;
    const unsigned bitrate = file[at + 2] >> 4;
    const unsigned rate = file[at + 2] >> 2 & 3;
    const unsigned padding = file[at + 2] >> 1 & 1;
    if (version == 1 || layer == 0 || bitrate == 0 || bitrate == 15 || rate == 3)
        return {};
    constexpr std::uint32_t rates[] = {44100, 48000, 32000};
    const std::uint32_t hertz = rates[rate] >> (version == version1   ? 0
                                                : version == version2 ? 1
                                                                      : 2);
    const std::uint32_t bits = kilobits(version, layer, bitrate) * 1000;
    Frame frame;
    frame.kind = version << 4 | layer << 2 | rate;
    frame.hertz = hertz;
    frame.samples = layer == layer1 ? 384 : layer == layer3 && version != version1 ? 576 : 1152;
    if (layer == layer1)
        frame.bytes = (12 * bits / hertz + padding) * 4;
    else
        frame.bytes = (layer == layer3 && version != version1 ? 72 : 144) * bits / hertz + padding;
    return frame;
}

// Whether frames of one kind follow each other from here on, as far as the file goes.
bool isSound(FileBytes& file, std::uint64_t at) {
    const Frame first = frameAt(file, at);
    if (first.bytes < headerSize || at + first.bytes > file.size())
        return false;
    for (int more = 1; more < framesThatProve; ++more) {
        at += frameAt(file, at).bytes;
        if (at + headerSize > file.size())
            return true;
        const Frame next = frameAt(file, at);
        if (next.bytes < headerSize || next.kind != first.kind)
            return false;
    }
    return true;
}

bool hasTextAt(FileBytes& file, std::uint64_t at, const char* text) {
    for (; *text; ++text)
        if (file[at++] != static_cast<std::uint8_t>(*text))
            return false;
    return true;
}

// A frame without sound, in which an encoder wrote how many follow.
bool describesOthers(FileBytes& file, std::uint64_t at) {
    constexpr std::uint64_t places[] = {4 + 9, 4 + 17, 4 + 32};
    for (const std::uint64_t place : places)
        if (hasTextAt(file, at + place, "Xing") || hasTextAt(file, at + place, "Info"))
            return true;
    return hasTextAt(file, at + 4 + 32, "VBRI");
}

} // namespace

std::uint64_t lengthOfMpegFrames(HANDLE handle, std::uint64_t firstFrame) {
    constexpr std::uint64_t second = 10'000'000;
    constexpr std::uint64_t longest = 3600 * second;
    FileBytes file(handle);
    const Frame first = frameAt(file, firstFrame);
    std::uint64_t samples = 0;
    std::uint64_t at = firstFrame;
    if (first.bytes >= headerSize && describesOthers(file, at))
        at += first.bytes;
    std::uint64_t junk = 0;
    while (first.hertz != 0 && at + headerSize <= file.size() && junk <= mostJunk &&
           samples * second / first.hertz < longest) {
        const Frame frame = frameAt(file, at);
        const bool isOne = frame.kind == first.kind && frame.bytes >= headerSize;
        samples += isOne && at + frame.bytes <= file.size() ? frame.samples : 0;
        junk += isOne ? 0 : 1;
        at += isOne ? frame.bytes : 1;
    }
    return first.hertz == 0 ? 0 : samples * second / first.hertz;
}

std::optional<MpegStart> findMpegStart(HANDLE handle) {
    FileBytes file(handle);
    int tags = 0;
    bool gap = false;
    std::uint64_t junk = 0;
    for (std::uint64_t at = 0; at < file.size() && junk <= mostJunk;) {
        if (const std::uint64_t tag = tagSize(file, at)) {
            at += tag;
            ++tags;
            junk = 0;
        } else if (isSound(file, at)) {
            return MpegStart{at, tags <= 1 && !gap};
        } else {
            junk += file[at] != 0;
            gap = true;
            ++at;
        }
    }
    return std::nullopt;
}

} // namespace corvina::wine
