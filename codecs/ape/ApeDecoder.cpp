#include "ApeDecoder.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

void ApeDecoder::Free::operator()(AVFormatContext* format) const noexcept {
    avformat_close_input(&format);
}
void ApeDecoder::Free::operator()(AVCodecContext* codec) const noexcept {
    avcodec_free_context(&codec);
}
void ApeDecoder::Free::operator()(AVFrame* frame) const noexcept {
    av_frame_free(&frame);
}
void ApeDecoder::Free::operator()(AVPacket* packet) const noexcept {
    av_packet_free(&packet);
}

namespace {

void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

// One sample of a plane as the file's own width, little-endian.
void store(std::uint8_t* target, const std::uint8_t* plane, int index, int format) {
    switch (format) {
    case AV_SAMPLE_FMT_U8P:
        target[0] = plane[index];
        break;
    case AV_SAMPLE_FMT_S16P:
        std::memcpy(target, plane + 2 * index, 2);
        break;
    default: // 24 bits in the upper part of 32
        std::memcpy(target, plane + 4 * index + 1, 3);
        break;
    }
}

} // namespace

ApeDecoder::ApeDecoder(const std::string& pathUtf8) {
    // The protocol is named so that no part of the path can be taken for one. The format is named
    // because a guess from the first bytes does not reach behind a large tag.
    AVFormatContext* format = nullptr;
    require(avformat_open_input(&format, ("file:" + pathUtf8).c_str(), av_find_input_format("ape"),
                                nullptr) == 0,
            "not an APE file");
    format_.reset(format);
    // Pictures in the tags are streams of their own.
    streamIndex_ = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    require(streamIndex_ >= 0, "no sound");
    const AVStream& stream = *format->streams[streamIndex_];
    const AVCodecParameters& parameters = *stream.codecpar;

    const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
    require(codec != nullptr, "no decoder");
    codec_.reset(avcodec_alloc_context3(codec));
    frame_.reset(av_frame_alloc());
    packet_.reset(av_packet_alloc());
    require(codec_ && frame_ && packet_, "no memory");
    require(avcodec_parameters_to_context(codec_.get(), &parameters) >= 0, "bad parameters");
    require(avcodec_open2(codec_.get(), codec, nullptr) == 0, "not decodable");

    sampleRate_ = parameters.sample_rate;
    bitsPerSample_ = parameters.bits_per_coded_sample;
    channels_ = parameters.ch_layout.nb_channels;
    totalBlocks_ = stream.duration;
    fileBytes_ = std::max<std::int64_t>(0, avio_size(format->pb));
    require(sampleRate_ > 0 && totalBlocks_ > 0 && (channels_ == 1 || channels_ == 2) &&
                (bitsPerSample_ == 8 || bitsPerSample_ == 16 || bitsPerSample_ == 24),
            "unsupported format");
}

std::int64_t ApeDecoder::durationMs() const noexcept {
    return totalBlocks_ * 1000 / sampleRate_;
}

std::int64_t ApeDecoder::positionMs() const noexcept {
    return currentBlock_ * 1000 / sampleRate_;
}

std::int64_t ApeDecoder::averageKilobits() const noexcept {
    const std::int64_t duration = durationMs();
    return duration == 0 ? 0 : fileBytes_ * 8 / duration; // bits a millisecond
}

std::int64_t ApeDecoder::read(std::uint8_t* buffer, std::int64_t blocks) {
    const std::int64_t wanted = std::min(blocks, totalBlocks_ - currentBlock_);
    const auto align = static_cast<std::size_t>(blockAlign());
    std::int64_t done = 0;
    while (done < wanted) {
        if (pendingAt_ == pending_.size() && !decodeMore())
            break;
        const auto ready = static_cast<std::int64_t>((pending_.size() - pendingAt_) / align);
        const std::int64_t count = std::min(ready, wanted - done);
        const std::size_t bytes = static_cast<std::size_t>(count) * align;
        std::memcpy(buffer, pending_.data() + pendingAt_, bytes);
        buffer += bytes;
        pendingAt_ += bytes;
        done += count;
    }
    currentBlock_ += done;
    return done;
}

bool ApeDecoder::seek(std::int64_t block) {
    if (block < 0 || block > totalBlocks_)
        return false;
    pending_.clear();
    pendingAt_ = 0;
    avcodec_flush_buffers(codec_.get());
    currentBlock_ = block;
    drained_ = block == totalBlocks_;
    if (drained_)
        return true;
    // The frame that holds the block begins at or before it.
    wantedFrom_ = block;
    if (av_seek_frame(format_.get(), streamIndex_, block, AVSEEK_FLAG_BACKWARD) < 0) {
        drained_ = true;
        return false;
    }
    return true;
}

bool ApeDecoder::decodeMore() {
    while (!drained_) {
        const int result = avcodec_receive_frame(codec_.get(), frame_.get());
        if (result == 0) {
            interleave();
            av_frame_unref(frame_.get());
            if (pendingAt_ < pending_.size())
                return true;
        } else if (result == AVERROR_EOF) {
            drained_ = true;
        } else if (!feed()) {
            drained_ = true;
        }
    }
    return false;
}

// Reads the next packet of the sound; false at the end.
bool ApeDecoder::readPacket() {
    // A frame whose place in the file is impossible is refused before it is read.
    int refusals = avformat_index_get_entries_count(format_->streams[streamIndex_]);
    for (;;) {
        const int result = av_read_frame(format_.get(), packet_.get());
        if (result == 0 && packet_->stream_index == streamIndex_)
            return true;
        if (result == 0)
            av_packet_unref(packet_.get()); // a picture
        else if (result != AVERROR(EIO) || refusals-- <= 0)
            return false;
    }
}

// Gives the decoder its next packet, or the end. A damaged one is refused here or when its frames
// are asked for; either way the next follows.
bool ApeDecoder::feed() {
    if (!readPacket())
        return avcodec_send_packet(codec_.get(), nullptr) == 0;
    nextDecoded_ = packet_->pts;
    avcodec_send_packet(codec_.get(), packet_.get());
    av_packet_unref(packet_.get());
    return true;
}

void ApeDecoder::interleave() {
    const int first = static_cast<int>(
        std::clamp<std::int64_t>(wantedFrom_ - nextDecoded_, 0, frame_->nb_samples));
    nextDecoded_ += frame_->nb_samples;
    pendingAt_ = 0;
    pending_.resize(static_cast<std::size_t>(frame_->nb_samples - first) *
                    static_cast<std::size_t>(blockAlign()));
    std::uint8_t* target = pending_.data();
    for (int index = first; index < frame_->nb_samples; ++index) {
        for (int channel = 0; channel < channels_; ++channel) {
            store(target, frame_->extended_data[channel], index, frame_->format);
            target += bitsPerSample_ / 8;
        }
    }
}
