#pragma once

// Decodes one APE file with ffmpeg, block by block: a block is one sample of every channel. Tags
// and pictures in front of the sound or behind it are passed over.
//
// Constructing it opens the file and throws std::runtime_error if it is no APE file that can be
// decoded. Used by one thread at a time.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;

class ApeDecoder {
public:
    explicit ApeDecoder(const std::string& pathUtf8);

    [[nodiscard]] int sampleRate() const noexcept { return sampleRate_; }
    [[nodiscard]] int bitsPerSample() const noexcept { return bitsPerSample_; }
    [[nodiscard]] int channels() const noexcept { return channels_; }
    [[nodiscard]] int blockAlign() const noexcept {
        return channels_ * bitsPerSample_ / 8;
    } // bytes
    [[nodiscard]] std::int64_t totalBlocks() const noexcept { return totalBlocks_; }
    [[nodiscard]] std::int64_t currentBlock() const noexcept { return currentBlock_; }
    [[nodiscard]] std::int64_t durationMs() const noexcept;
    [[nodiscard]] std::int64_t positionMs() const noexcept;
    [[nodiscard]] std::int64_t averageKilobits() const noexcept; // a second

    // Writes up to that many interleaved little-endian blocks and returns how many; fewer only at
    // the end. A damaged frame is left out, as if the file went on behind it.
    std::int64_t read(std::uint8_t* buffer, std::int64_t blocks);

    // False if the block lies outside 0..totalBlocks or the file cannot be positioned.
    bool seek(std::int64_t block);

private:
    struct Free {
        void operator()(AVFormatContext* format) const noexcept;
        void operator()(AVCodecContext* codec) const noexcept;
        void operator()(AVFrame* frame) const noexcept;
        void operator()(AVPacket* packet) const noexcept;
    };

    // Brings the next decoded samples into pending_; false at the end.
    bool decodeMore();
    bool feed();
    bool readPacket();
    void interleave();

    std::unique_ptr<AVFormatContext, Free> format_;
    std::unique_ptr<AVCodecContext, Free> codec_;
    std::unique_ptr<AVFrame, Free> frame_;
    std::unique_ptr<AVPacket, Free> packet_;
    int streamIndex_ = 0; // of the sound
    int sampleRate_ = 0;
    int bitsPerSample_ = 0;
    int channels_ = 0;
    std::int64_t totalBlocks_ = 0;
    std::int64_t fileBytes_ = 0;
    std::int64_t currentBlock_ = 0;
    std::vector<std::uint8_t> pending_; // decoded and not yet handed out, from pendingAt_ on
    std::size_t pendingAt_ = 0;
    std::int64_t wantedFrom_ = 0; // blocks before it are dropped: a seek led into their frame
    std::int64_t nextDecoded_ = 0;
    bool drained_ = false;
};
