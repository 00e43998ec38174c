#pragma once

// Ogg Vorbis files, decoded to 16-bit PCM by the vorbisfile library, which is loaded by name.
//
// OpenSource returns 4 if a library is missing, 1 if the file cannot be opened or has more than two
// channels. A library without one of the functions raises "Export missing!".

#include "stream/FileAccess.h"
#include "stream/OptionalLibrary.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvina {

class DecOGG final : public cSoundSTRM, public cSoundInf {
public:
    explicit DecOGG(const LibraryApi& libraries = systemLibraryApi,
                    const FileApi& files = systemFileApi);
    DecOGG(const DecOGG&) = delete;
    DecOGG& operator=(const DecOGG&) = delete;
    ~DecOGG() override;

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return {L"ogg"}; }
    bool EndOfStream() override { return ended_; }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return &format_; }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return true; }
    std::int32_t SampleRate() override { return stream_.rate; }
    std::int16_t Channels() override;
    std::int16_t BitsPerSample() override { return 16; }
    std::int32_t Bitrate() override { return stream_.bitrateNominal; }
    std::int32_t Position() override { return positionMs_; }
    std::int32_t Duration() override { return durationMs_; }

private:
    // The library's vorbis_info.
    struct StreamInformation {
        std::int32_t version;
        std::int32_t channels;
        std::int32_t rate;
        std::int32_t bitrateUpper;
        std::int32_t bitrateNominal;
        std::int32_t bitrateLower;
        std::int32_t bitrateWindow;
        std::int32_t codecSetup;
    };

    void readTags();
    [[nodiscard]] std::wstring comment(std::int32_t block, const char* name);

    FileAccess access_;
    // Unloaded from the last one up.
    OptionalLibrary vorbisfile_;
    OptionalLibrary vorbis_;
    OptionalLibrary ogg_;
    OptionalLibrary runtime_;
    bool librariesReady_ = false;
    std::int32_t file_ = 0; // the C stream
    bool opened_ = false;
    // The library's OggVorbis_File, of about 700 bytes, with space for a larger one.
    alignas(8) std::array<std::byte, 4096> decoder_{};
    StreamInformation stream_{};
    WAVEFORMATEX format_{};
    std::int32_t durationMs_ = 0;
    std::int32_t positionMs_ = 0;
    bool ended_ = false;
    bool atEnd_ = false; // sought to the very end, to which the library does not go
    StrmTags tags_;
};

} // namespace corvina
