#pragma once

// Sound of MP4 files and AAC streams, decoded by the system's Media Foundation to 16 bits. More
// than two channels are mixed down to stereo; pictures are passed over. Tags are those of an MP4
// file's list.
//
// Without Media Foundation OpenSource returns 3; a file that it cannot read 1, and one without
// sound that it can decode 12. Without an open file CloseSource returns 1, Read 5 and SeekTo 4,
// which also is the result of a seek out of range.

#include "sources/MediaFoundationLibrary.h"
#include "sources/StereoMixer.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>
#include <vector>

namespace corvina {

class MediaFoundationSource final : public cSoundSTRM, public cSoundInf {
public:
    explicit MediaFoundationSource(const LibraryApi& libraries = systemLibraryApi)
        : library_(libraries) {}
    MediaFoundationSource(const MediaFoundationSource&) = delete;
    MediaFoundationSource& operator=(const MediaFoundationSource&) = delete;
    ~MediaFoundationSource() override { MediaFoundationSource::CloseSource(); }

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override;
    bool EndOfStream() override { return ended_; }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return &format_; }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return true; }
    std::int32_t SampleRate() override;
    std::int16_t Channels() override { return static_cast<std::int16_t>(format_.nChannels); }
    std::int16_t BitsPerSample() override {
        return static_cast<std::int16_t>(format_.wBitsPerSample);
    }
    std::int32_t Bitrate() override { return bitrate_; }
    std::int32_t Position() override;
    std::int32_t Duration() override;

private:
    [[nodiscard]] bool prepare(const std::wstring& path);
    void forget();
    [[nodiscard]] bool selectSound();
    [[nodiscard]] bool readFormat();
    [[nodiscard]] bool fetchSample();
    [[nodiscard]] bool takeSample(IMFSample& sample, LONGLONG time);
    [[nodiscard]] bool seekTime(LONGLONG time);
    [[nodiscard]] LONGLONG timeOfBytes(std::size_t bytes) const;

    MediaFoundationLibrary library_;
    ComPtr<IMFSourceReader> reader_;
    WAVEFORMATEX format_{}; // of what Read delivers
    DWORD channels_ = 0;    // of what the reader delivers
    StereoMixer mix_;
    std::vector<std::uint8_t> sample_; // from offset_ on not yet delivered
    std::size_t offset_ = 0;
    LONGLONG sampleTime_ = 0; // of its start, in units of 100 nanoseconds
    LONGLONG startTime_ = 0;  // of the first sample
    LONGLONG duration_ = 0;
    std::int32_t bitrate_ = 0;
    bool ended_ = false;
    StrmTags tags_;
};

} // namespace corvina
