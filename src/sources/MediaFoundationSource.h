#pragma once

// Sound of MP4 files and AAC streams, decoded by the system's Media Foundation to 16 bits. More
// than two channels are mixed down to stereo; pictures are passed over. Tags are those of an MP4
// file's list.
//
// Without Media Foundation OpenSource returns 3; a file that it cannot read, or not within 10
// seconds, 1, and one without sound that it can decode 12. Without an open file CloseSource returns
// 1, Read 5 and SeekTo 4, which also is the result of a seek out of range. Where Media Foundation
// does not come back from a read or a seek within 10 seconds, the file is at its end: Read returns
// 5 and SeekTo 4 until it is opened again.

#include "sources/BoundedMediaReader.h"
#include "sources/DecodedSource.h"
#include "sources/StereoMixer.h"

#include <cstdint>
#include <vector>

namespace corvina {

class MediaFoundationSource final : public DecodedSource {
public:
    static constexpr DWORD longestCall = 10'000; // of Media Foundation, in milliseconds

    explicit MediaFoundationSource(const LibraryApi& libraries = systemLibraryApi,
                                   DWORD longestCallMs = longestCall)
        : library_(std::make_shared<MediaFoundationLibrary>(libraries)),
          longestCall_(longestCallMs) {}
    MediaFoundationSource(const MediaFoundationSource&) = delete;
    MediaFoundationSource& operator=(const MediaFoundationSource&) = delete;

    std::vector<std::wstring> Extensions() override;
    bool Seekable() override { return true; }
    std::int32_t OpenSource(const std::wstring& source) override;
    std::int32_t CloseSource() override;
    std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) override;
    std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) override;

    std::int32_t Position() override;
    std::int32_t Duration() override;

private:
    void forget();
    void describe(const std::wstring& path);
    [[nodiscard]] bool fetchBlock();
    void takeBlock();
    [[nodiscard]] bool seekTime(LONGLONG time);
    [[nodiscard]] LONGLONG timeOfBytes(std::size_t bytes) const;
    [[nodiscard]] std::size_t blockBytes() const noexcept {
        return block_.samples.size() * sizeof block_.samples[0];
    }

    std::shared_ptr<MediaFoundationLibrary> library_;
    DWORD longestCall_;
    std::unique_ptr<BoundedMediaReader> reader_; // null unless a file is open
    StereoMixer mix_;
    BoundedMediaReader::Block block_; // mixed; from offset_ on not yet delivered
    std::size_t offset_ = 0;          // in bytes
    LONGLONG startTime_ = 0;          // of the first block
    LONGLONG duration_ = 0;
    // Of the open file, as it says it; the highest number if it does not.
    LONGLONG soundEnd_ = 0;
};

} // namespace corvina
