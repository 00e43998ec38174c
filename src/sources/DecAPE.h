#pragma once

// Monkey's Audio files, decoded by MACDll.dll, with the texts of the APE tag.
//
// A file that exists always opens, also one that the library refuses: its numbers are then 0 and no
// data comes. Without the library OpenSource raises a run-time error.

#include "sources/ApeLibrary.h"
#include "stream/FileAccess.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>

namespace corvina {

class DecAPE final : public cSoundSTRM, public cSoundInf {
public:
    explicit DecAPE(const LibraryApi& libraries = systemLibraryApi,
                    const FileApi& files = systemFileApi) noexcept
        : access_(files), library_(libraries) {}
    DecAPE(const DecAPE&) = delete;
    DecAPE& operator=(const DecAPE&) = delete;
    ~DecAPE() override;

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return {L"ape"}; }
    bool EndOfStream() override { return ended_; }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return &format_; }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return false; }
    std::int32_t SampleRate() override { return sampleRate_; }
    std::int16_t Channels() override { return channels_; }
    std::int16_t BitsPerSample() override { return bitsPerSample_; }
    std::int32_t Bitrate() override;
    // Asked of the decoder each time.
    std::int32_t Position() override;
    std::int32_t Duration() override { return lengthMs_; }

private:
    void readInformation();

    FileAccess access_;
    ApeLibrary library_;
    bool opened_ = false;
    std::int32_t decoder_ = 0; // may stay 0 in an opened source
    std::int32_t sampleRate_ = 0;
    std::int16_t channels_ = 0;
    std::int16_t bitsPerSample_ = 0;
    std::int32_t averageKilobits_ = 0; // a second
    std::int32_t lengthMs_ = 0;
    std::int32_t totalBlocks_ = 0;
    WAVEFORMATEX format_{};
    bool ended_ = false;
    StrmTags tags_;
};

} // namespace corvina
