#pragma once

// What libsndfile decodes beyond the formats of DecSND: FLAC, also in Ogg, Opus, Vorbis of more
// than two channels, MPEG audio, W64, CAF and RF64. Always delivers 16 bits; samples beyond their
// range are clipped, and more than two channels are mixed down to stereo. FLAC, Opus, Vorbis and
// MPEG have tags.
//
// Without the library OpenSource, CloseSource, Read and SeekTo return 3; without an open file the
// last three return 1. OpenSource returns 1 for a file that the library refuses, and 12 for one
// with a number of channels or a rate that cannot be played. A seek out of range, or one that the
// library refuses, returns 4. What a closed file was, its format, times and tags, is known until
// the next open.

#include "sources/DecodedSource.h"
#include "sources/SndfileLibrary.h"
#include "sources/StereoMixer.h"

#include <cstdint>

namespace corvina {

class SndfileSource final : public DecodedSource {
public:
    explicit SndfileSource(const LibraryApi& libraries = systemLibraryApi) : library_(libraries) {}
    SndfileSource(const SndfileSource&) = delete;
    SndfileSource& operator=(const SndfileSource&) = delete;
    ~SndfileSource() override;

    std::vector<std::wstring> Extensions() override;
    bool Seekable() override { return info_.seekable != 0; }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    std::int32_t Position() override;
    std::int32_t Duration() override;

private:
    [[nodiscard]] bool prepare(const std::wstring& path);
    void forget();
    void readTags();
    [[nodiscard]] std::vector<DWORD> speakers();
    [[nodiscard]] std::int32_t readFrames(std::int16_t* to, std::int32_t frames);
    [[nodiscard]] std::int32_t readPiece(std::int16_t* to, std::int32_t frames);
    [[nodiscard]] std::int32_t decode(std::int16_t* to, std::int32_t frames);
    [[nodiscard]] bool seekFrame(std::int64_t frame);
    [[nodiscard]] std::int32_t milliseconds(std::int64_t frames) const;

    SndfileLibrary library_;
    SndfileInfo info_{};
    std::int32_t file_ = 0;
    StereoMixer mix_;
    std::vector<std::int16_t> unmixed_;
    std::vector<float> floats_;
    bool asFloat_ = false;
    std::int64_t totalFrames_ = 0; // 0: unknown
    std::int64_t nextFrame_ = 0;
};

} // namespace corvina
