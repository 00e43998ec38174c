#pragma once

// Writes RIFF/WAVE files of any shape, honest and lying.
//
//   WavBytes().format(pcm(44100, 2, 16)).chunk("data", samples).bytes()

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>
#include <windows.h>

#include <mmsystem.h>

#include <mmreg.h>

namespace corvina::test {

using Bytes = std::vector<std::uint8_t>;

[[nodiscard]] inline WAVEFORMATEX pcm(DWORD rate, WORD channels, WORD bits) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.nBlockAlign = static_cast<WORD>(channels * ((bits + 7) / 8));
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    format.wBitsPerSample = bits;
    return format;
}

// The same bytes each time, without a pattern that a shift by a block would hide.
[[nodiscard]] inline Bytes noise(std::size_t count, std::uint32_t seed = 1) {
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    return bytes;
}

class WavBytes {
public:
    // Declares another size than the chunk has, if one is given.
    WavBytes& chunk(std::string_view id, const Bytes& content,
                    std::optional<std::uint32_t> declared = std::nullopt) {
        text(id);
        number(declared.value_or(static_cast<std::uint32_t>(content.size())));
        body_.insert(body_.end(), content.begin(), content.end());
        if (content.size() % 2 != 0)
            body_.push_back(0);
        return *this;
    }

    // The first bytes of the record, and further ones if the chunk has them.
    WavBytes& format(const WAVEFORMATEX& record, std::size_t size = 16, const Bytes& extra = {}) {
        const auto* const first = reinterpret_cast<const std::uint8_t*>(&record);
        Bytes content(first, first + std::min(size, sizeof record));
        content.resize(size);
        content.insert(content.end(), extra.begin(), extra.end());
        return chunk("fmt ", content);
    }

    [[nodiscard]] Bytes bytes(std::string_view form = "WAVE",
                              std::optional<std::uint32_t> riffSize = std::nullopt) const {
        WavBytes file;
        file.text("RIFF");
        file.number(riffSize.value_or(static_cast<std::uint32_t>(body_.size() + 4)));
        file.text(form);
        file.body_.insert(file.body_.end(), body_.begin(), body_.end());
        return file.body_;
    }

private:
    void text(std::string_view id) { body_.insert(body_.end(), id.begin(), id.end()); }
    void number(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            body_.push_back(static_cast<std::uint8_t>(value >> shift));
    }

    Bytes body_;
};

// A plain file: format chunk of 16 bytes, then the data.
[[nodiscard]] inline Bytes plainWav(const WAVEFORMATEX& record, const Bytes& data) {
    return WavBytes().format(record).chunk("data", data).bytes();
}

} // namespace corvina::test
