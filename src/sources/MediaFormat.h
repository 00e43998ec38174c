#pragma once

// The format of the PCM that the Windows Media reader delivers: a wave format record with its extra
// bytes behind it. All zero until a format is taken over.

#include <cstdint>
#include <optional>
#include <vector>
#include <windows.h>

#include <mmreg.h>
#include <wmsdk.h>

namespace corvina {

class MediaFormat {
public:
    [[nodiscard]] const WAVEFORMATEX& record() const noexcept {
        return *reinterpret_cast<const WAVEFORMATEX*>(bytes_.data());
    }

    // Copies the record; what the block is too short for becomes zero. The record moves in memory.
    // False, and nothing copied, if there is no block to read.
    [[nodiscard]] bool takeOver(const BYTE* block, std::size_t blockBytes);

private:
    std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(sizeof(WAVEFORMATEX));
};

struct MediaOutput {
    DWORD number = 0;
    DWORD outputs = 0; // that the file has
};

// Lets the reader deliver its first output format that is uncompressed 16-bit PCM audio. Empty if
// it has none. The format of PCM of another width stays in format until a later one replaces it.
[[nodiscard]] std::optional<MediaOutput> selectPcmOutput(IWMSyncReader& reader,
                                                         MediaFormat& format);

// Switches off the streams of all other outputs: pictures, and sound in other languages. A file
// with one output is left alone.
void playOnly(IWMSyncReader& reader, const MediaOutput& output);

} // namespace corvina
