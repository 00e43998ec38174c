#pragma once

// RIFF/WAVE files. Nothing is decoded: the bytes of the data chunk are handed out as they are, with
// the format chunk as it is stored, and the converter makes PCM of them.
//
// Positions and sizes are 32-bit signed. A position computed beyond that raises Overflow; a format
// record with an average rate of 0 makes times, and a block align of 0 makes seeks, raise the error
// of a division by zero. The time of no bytes at such a rate (the position of the first byte, the
// duration of empty data) raises Overflow, as 0 / 0 does. Times follow the record's average rate;
// but where compressed sound shows that rate to be wrong, they follow the sound. The tags are
// always empty.

#include "platform/MmioApi.h"
#include "sources/CompressedWave.h"
#include "stream/FileAccess.h"
#include "stream/RiffChunk.h"
#include "stream/StrmTags.h"
#include "stream/WaveChunks.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace corvina {

class DecWAV final : public cSoundSTRM, public cSoundInf {
public:
    explicit DecWAV(const FileApi& files = systemFileApi,
                    const MmioApi& mmio = systemMmioApi) noexcept
        : access_(files), mmio_(mmio) {}
    DecWAV(const DecWAV&) = delete;
    DecWAV& operator=(const DecWAV&) = delete;

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return {L"wav"}; }
    bool EndOfStream() override;
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override;
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;
    bool hasLeadIn() override { return soughtFrame_.has_value(); }
    LeadIn goToLeadIn() override;

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return false; }
    std::int32_t SampleRate() override;
    std::int16_t Channels() override;
    std::int16_t BitsPerSample() override;
    std::int32_t Bitrate() override;
    std::int32_t Position() override;
    std::int32_t Duration() override;

private:
    [[nodiscard]] WaveChunks findChunks(const std::wstring& path) const;
    [[nodiscard]] std::int32_t lengthInFile(const RiffChunk& data) const noexcept;
    [[nodiscard]] bool readFormat(const RiffChunk& chunk, std::vector<std::uint8_t>& bytes) const;
    bool goTo(std::int32_t position) const noexcept;
    [[nodiscard]] std::int32_t milliseconds(std::int32_t bytes) const;
    [[nodiscard]] std::int32_t bytesPerSecond() const noexcept;
    [[nodiscard]] std::int32_t endOfData() const;
    [[nodiscard]] std::int64_t framesCountedByWriter(const std::wstring& path) const;
    [[nodiscard]] std::int32_t bytesBefore(std::int32_t seconds) const;
    [[nodiscard]] std::optional<std::int64_t> frameAt(std::int32_t value, std::int32_t mode,
                                                      std::int32_t byteOffset) const;

    FileAccess access_;
    const MmioApi& mmio_;
    FileRecord file_;
    std::vector<FileRecord> replaced_; // still open, until the source is closed
    RiffChunk data_;
    std::vector<std::uint8_t> formatBytes_; // the chunk, with zeros behind it
    WAVEFORMATEX format_{};
    CompressedWave compressed_;
    std::optional<double> trueRate_;          // bytes a second, if not the record's
    std::optional<std::int64_t> soughtFrame_; // to be read next, in compressed sound
    StrmTags tags_;
};

} // namespace corvina
