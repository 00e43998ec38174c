#pragma once

// MP3, WMA and WMV files, decoded by the system's Windows Media runtime (wmvcore.dll), whose
// synchronous reader delivers 16-bit PCM. The runtime is loaded when the source is created; without
// it every open fails. Of a file with several streams all but the chosen sound are switched off:
// the pictures of a WMV file do not come.
//
// Results: OpenSource 0, 1 the reader cannot open the file, 3 no reader, 12 no 16-bit PCM or no
// header. CloseSource 0, 1 not open, 3 no reader. Read 0, 5. SeekTo 0, 4 refused.
//
// Times are the reader's own, 100 nanoseconds each; as milliseconds they raise Overflow beyond 32
// bits. A seek in seconds in a file whose duration is 0 raises the error of the division 0 / 0.

#include "com/ComPtr.h"
#include "sources/MediaAttributes.h"
#include "sources/MediaFormat.h"
#include "stream/OptionalLibrary.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>
#include <vector>

namespace corvina {

class DecWMAMP3 final : public cSoundSTRM, public cSoundInf {
public:
    explicit DecWMAMP3(const LibraryApi& libraries = systemLibraryApi);
    DecWMAMP3(const DecWMAMP3&) = delete;
    DecWMAMP3& operator=(const DecWMAMP3&) = delete;
    ~DecWMAMP3() override;

    [[nodiscard]] std::wstring FormatName() const { return L"Windows Media Audio"; }

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override;
    // Once true it stays so until CloseSource, whatever is sought and read after.
    bool EndOfStream() override { return endOfStream_; }
    bool Seekable() override { return true; }
    // The record exists from the beginning; it is all zero until a format is found.
    const WAVEFORMATEX* WFXPointer() override { return &format_.record(); }
    // An open source is not closed first: the reader decides whether it takes another file.
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return true; }
    std::int32_t SampleRate() override;
    std::int16_t Channels() override;
    std::int16_t BitsPerSample() override;
    std::int32_t Bitrate() override;
    // Of the start of the block that was fetched last.
    std::int32_t Position() override;
    std::int32_t Duration() override;

private:
    void createReader();
    [[nodiscard]] bool prepareReader();
    void closeReader() noexcept;
    void dropSample() noexcept;
    [[nodiscard]] bool fetchNextSample();
    void copySample(std::uintptr_t target, std::int32_t bytes) noexcept;

    // The reader is released before its library is unloaded.
    OptionalLibrary library_;
    ComPtr<IWMSyncReader> reader_; // null without the runtime
    MediaFormat format_;
    MediaAttributes attributes_;
    StrmTags tags_;
    QWORD position_ = 0; // the time of the last block, written by the reader
    bool open_ = false;
    bool endOfStream_ = false;
    // The block that was fetched last. Its memory is kept for the next one.
    std::vector<std::uint8_t> sample_;
    std::int32_t sampleLength_ = 0; // 0 when none is held
    std::int32_t sampleOffset_ = 0; // what Read has delivered of it
};

} // namespace corvina
