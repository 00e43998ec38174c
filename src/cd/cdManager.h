#pragma once

// Chooses a CD backend and streams one track of the selected drive as 16-bit stereo PCM of 44100
// Hz, which is what raw audio sectors are.
//
// InitManager, then SelectDevice, then SelectTrack, then any number of Read and SeekTo. Without a
// backend everything returns false, 0 or empty text; GetTOC alone expects one and raises Object
// variable not set. Nothing is cached but four sectors: each GetTOC asks the drive.

#include "cd/CdAddress.h"
#include "cd/CdBackends.h"
#include "cd/cCDAccess.h"
#include "stream/cSoundSTRM.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvina {

class cdManager final : public cSoundSTRM, public cSoundInf {
public:
    explicit cdManager(CdBackends backends = systemCdBackends());
    ~cdManager() override;
    cdManager(const cdManager&) = delete;
    cdManager& operator=(const cdManager&) = delete;

    // Tries SCSI pass-through, device I/O control (unless disabled) and ASPI, in this order, up to
    // the first that can be used; whether there was one. The flag is by reference as the interface
    // has it.
    bool InitManager(const bool& disableIoctl = false);
    bool SelectDevice(std::int32_t index);
    [[nodiscard]] std::int32_t DeviceCount();
    [[nodiscard]] std::wstring DeviceName(std::int32_t index);
    [[nodiscard]] std::wstring DeviceChar(std::int32_t index);
    bool OpenCD();
    bool CloseCD();
    [[nodiscard]] bool IsDiscPresent();
    // A new table; null if the drive has none to give.
    [[nodiscard]] std::unique_ptr<cTOC> GetTOC();
    // 0, or 3 for a number that is no track. A data track is not refused.
    std::int32_t SelectTrack(std::uint8_t track);

    // cSoundSTRM
    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return {L"cda"}; }
    bool EndOfStream() override { return sectorOffset_ >= trackLength_; }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return &format_; }
    // A track is opened by its number, never by a name: always 1.
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override { return SourceResult::done; }
    // bytesRead is also input: the bytes that buffer holds already. 0, or 5 when no more could be
    // read, be it the end of the track or the drive. A negative bytesRead and a null buffer raise
    // Invalid procedure call.
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    // 0, or 3 for a value out of range.
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    // cSoundInf
    StrmTags* Tags() override { return nullptr; }
    bool Force16Bit() override { return true; }
    std::int32_t SampleRate() override { return 44100; }
    std::int16_t Channels() override { return 2; }
    std::int16_t BitsPerSample() override { return 16; }
    std::int32_t Bitrate() override { return 1411200; }
    // Up to four sectors (53 ms) ahead of the bytes delivered: it counts what was read from the
    // drive.
    std::int32_t Position() override;
    std::int32_t Duration() override;

private:
    static constexpr std::int32_t sectorsPerRead = 4;
    static constexpr std::int32_t bufferBytes = sectorsPerRead * bytesPerSector;

    void addBackend(std::unique_ptr<cCDAccess> backend);
    [[nodiscard]] bool fillBuffer();
    [[nodiscard]] std::int32_t startOf(std::int32_t track);

    CdBackends makers_;
    std::vector<std::unique_ptr<cCDAccess>> candidates_;
    cCDAccess* backend_ = nullptr; // one of the candidates
    std::optional<cTOCTrack> track_;
    std::int32_t trackLength_ = 0;  // sectors
    std::int32_t sectorOffset_ = 0; // of the next sector to read, from the track's start
    alignas(driverAlignment) std::array<std::uint8_t, bufferBytes> buffer_{};
    std::int32_t bufferPosition_ = 0;
    std::int32_t bufferFill_ = 0;
    WAVEFORMATEX format_{};
};

} // namespace corvina
