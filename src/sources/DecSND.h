#pragma once

// AU, AIFF, VOC and VOX files, decoded by libsndfile to 16-bit samples whatever the file holds.
//
// Without the library OpenSource, CloseSource, Read and SeekTo return 3; without an open file the
// last three return 1. A seek out of range returns 4. The library cannot seek in VOX files: these
// are decoded again up to the place. The tags are always empty.

#include "sources/SndfileLibrary.h"
#include "stream/SampleRounding.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>
#include <vector>

namespace corvina {

class DecSND final : public cSoundSTRM, public cSoundInf {
public:
    explicit DecSND(const LibraryApi& libraries = systemLibraryApi) : library_(libraries) {}
    DecSND(const DecSND&) = delete;
    DecSND& operator=(const DecSND&) = delete;
    ~DecSND() override;

    [[nodiscard]] std::wstring FormatName() const { return L"Sndfile Audio"; }

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override;
    bool EndOfStream() override;
    bool Seekable() override { return true; }
    // The bits and the block align are those of the file's own samples, which need not be the 16
    // bits that Read delivers: BitsPerSample and Force16Bit say these, and the converter goes by
    // them. A host reads the file's width here, so it stays.
    const WAVEFORMATEX* WFXPointer() override { return &format_; }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return true; }
    std::int32_t SampleRate() override;
    std::int16_t Channels() override;
    std::int16_t BitsPerSample() override { return 16; }
    // The bytes a second of the file's own samples, not bits.
    std::int32_t Bitrate() override;
    std::int32_t Position() override;
    // Of the low 32 bits of the number of frames: wrong from 2^31 frames on.
    std::int32_t Duration() override;

private:
    [[nodiscard]] std::int32_t readItems(void* to, std::int32_t items);
    [[nodiscard]] std::int32_t readFloats(void* to, std::int32_t items);
    [[nodiscard]] std::int32_t openFile(SndfileInfo& info);
    void skipTo(std::int32_t frame);
    [[nodiscard]] bool canSeek() const noexcept { return file_ == 0 || info_.seekable != 0; }
    [[nodiscard]] std::int32_t currentFrame();
    [[nodiscard]] std::int32_t milliseconds(std::int32_t frames) const;

    SndfileLibrary library_;
    std::wstring path_; // of the last OpenSource
    SndfileInfo info_{};
    std::int32_t file_ = 0;
    WAVEFORMATEX format_{};
    std::int32_t totalFrames_ = 0;
    std::int32_t decodedFrames_ = 0; // of a file that cannot be sought
    // Of the file opened last, also after it was closed: a host asks for times then, too.
    std::int32_t rate_ = 0;
    std::int32_t frames_ = 0;
    std::vector<float> floats_;
    SampleRounding rounding_;
    StrmTags tags_;
};

} // namespace corvina
