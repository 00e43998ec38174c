#pragma once

// Tracks of audio CDs, opened by the track files ("Track01.cda") that Windows shows in the root of
// a disc. Such a file holds no sound but a place on a disc: the first drive whose disc has a track
// of that start and that length is played, whatever drive the file lies on.
//
// Results of OpenSource: 0; 1 no usable track file, or a path with two backslashes or more; 4 no
// drive, or no drive with the track. Read returns 5 at the end of the track and for a drive that
// fails. The drive operations return what the manager returns (cd/cdManager.h).

#include "cd/cdManager.h"
#include "stream/FileAccess.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <memory>
#include <string>
#include <vector>

namespace corvina {

class DecCDA final : public cSoundSTRM, public cSoundInf {
public:
    explicit DecCDA(const FileApi& files = systemFileApi, CdBackends backends = systemCdBackends());
    DecCDA(const DecCDA&) = delete;
    DecCDA& operator=(const DecCDA&) = delete;

    [[nodiscard]] std::int32_t DeviceCount() { return manager_.DeviceCount(); }
    [[nodiscard]] std::wstring DeviceName(std::int32_t index) { return manager_.DeviceName(index); }
    [[nodiscard]] std::wstring DeviceChar(std::int32_t index) { return manager_.DeviceChar(index); }
    bool SelectDevice(std::int32_t index) { return manager_.SelectDevice(index); }
    [[nodiscard]] std::unique_ptr<cTOC> toc() { return manager_.GetTOC(); }
    [[nodiscard]] bool DiscPresent() { return manager_.IsDiscPresent(); }
    bool OpenCD() { return manager_.OpenCD(); }
    bool CloseCD() { return manager_.CloseCD(); }

    // cSoundSTRM
    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return stream_.Extensions(); }
    bool EndOfStream() override { return stream_.EndOfStream(); }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return stream_.WFXPointer(); }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override { return stream_.CloseSource(); }
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override {
        return stream_.Read(buffer, bytes, bytesRead);
    }
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override {
        return stream_.SeekTo(value, mode);
    }

    // cSoundInf
    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return true; }
    std::int32_t SampleRate() override { return info_.SampleRate(); }
    std::int16_t Channels() override { return info_.Channels(); }
    std::int16_t BitsPerSample() override { return info_.BitsPerSample(); }
    std::int32_t Bitrate() override { return info_.Bitrate(); }
    std::int32_t Position() override { return info_.Position(); }
    std::int32_t Duration() override { return info_.Duration(); }

private:
    struct TrackPlace;

    [[nodiscard]] bool readTrackFile(const std::wstring& path, TrackPlace& place) const;
    [[nodiscard]] bool selectTrackAt(const TrackPlace& place);

    FileAccess files_;
    cdManager manager_;
    cSoundSTRM& stream_ = manager_;
    cSoundInf& info_ = manager_;
    StrmTags tags_; // stays empty
    bool ready_;
};

} // namespace corvina
