#include "player/PlayedTrack.h"

#include "platform/ErrorBoxes.h"
#include "player/WaveLength.h"
#include "runtime/FirstFailure.h"
#include "runtime/RuntimeError.h"
#include "stream/PcmFormat.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corvina {

PlayedTrack::PlayedTrack(std::wstring file, std::shared_ptr<cSoundSTRM> source, const AcmApi& acm,
                         cCallback* observer)
    : file_(std::move(file)), source_(std::move(source)), observer_(observer), converter_(acm) {}

bool PlayedTrack::begin() {
    return open_ && converter_.InitConversion(*source_, observer_, false) &&
           (!mixed_ || converter_.mixToStereo());
}

// The search for a codec takes longer than all else of a jump.
bool PlayedTrack::beginAgain() {
    return open_ && (converter_.startAgain() || begin());
}

bool PlayedTrack::mixToStereo() {
    if (!mixed_)
        mixed_ = converter_.mixToStereo();
    return mixed_;
}

PlayedFormat PlayedTrack::format() const noexcept {
    return {.sampleRate = converter_.OutputSamplerate(),
            .channels = converter_.OutputChannels(),
            .bits = converter_.OutputBitsPerSample()};
}

WAVEFORMATEX PlayedTrack::sourceFormat() const {
    cSoundInf& info = source_->Info();
    return pcmFormat(static_cast<DWORD>(info.SampleRate()), static_cast<WORD>(info.Channels()),
                     static_cast<WORD>(info.BitsPerSample()));
}

std::optional<std::int64_t> PlayedTrack::frames() {
    if (!frames_)
        frames_ = countFrames(file_, *source_);
    return *frames_;
}

std::int32_t PlayedTrack::durationMs() {
    return corvina::durationMs(frames(), *source_);
}

std::int32_t PlayedTrack::read(void* destination, std::int32_t bytes, bool exactly) {
    const std::int32_t frameBytes = std::max(format().frameBytes(), 1);
    if (exactly && frames()) {
        const std::int64_t left = std::max<std::int64_t>(*frames() - position_, 0) * frameBytes;
        bytes = static_cast<std::int32_t>(std::min<std::int64_t>(bytes, left));
    }
    if (moved_)
        bytes = std::min(bytes, moved_->bytesBefore);
    std::int32_t delivered = 0;
    converter_.GetSamples(destination, bytes, delivered);
    position_ += delivered / frameBytes;
    if (moved_)
        moved_->bytesBefore = delivered == bytes ? moved_->bytesBefore - delivered : 0;
    return delivered;
}

void PlayedTrack::sourceMoved(std::int32_t seconds) {
    // A converter that has met the end of the source reads no more of it.
    if (!open_ || converter_.EndOfStream())
        return;
    moved_ = {.bytesBefore = converter_.bytesAhead(), .frame = frameReached(seconds)};
}

// Where a source is that was moved to that second. It may have gone to the block of compressed
// sound before, unless that is a lead-in.
std::int64_t PlayedTrack::frameReached(std::int32_t seconds) {
    if (const std::optional<std::int32_t> rate = misstatedRate(*source_))
        return std::int64_t{seconds} * *rate / source_->WFXPointer()->nBlockAlign;
    constexpr std::int64_t longestBlock = 500;
    const std::int64_t asked = std::int64_t{seconds} * 1000;
    if (source_->hasLeadIn())
        return format().framesOf(asked);
    try {
        const std::int64_t reached = source_->Info().Position();
        const bool isBlock = reached < asked && reached >= asked - longestBlock;
        return format().framesOf(isBlock ? reached : asked);
    } catch (const RuntimeError&) {
        return format().framesOf(asked); // it cannot say where it is
    }
}

// The second, as the source counts them, that holds the frame or begins before it.
std::int32_t PlayedTrack::secondOf(std::int64_t frame) {
    const std::optional<std::int32_t> rate = misstatedRate(*source_);
    return static_cast<std::int32_t>(rate ? frame * source_->WFXPointer()->nBlockAlign / *rate
                                          : frame / std::max(format().sampleRate, 1));
}

bool PlayedTrack::goOnWhereMoved() noexcept {
    if (!moved_ || moved_->bytesBefore > 0)
        return false;
    position_ = moved_->frame;
    moved_.reset();
    return true;
}

bool PlayedTrack::finished(bool exactly) {
    // The converter meets the end of the source up to half a second before its last sample has its
    // turn, so EndOfStream alone would cut the file short.
    return converter_.Exhausted() || (exactly && frames() && position_ >= *frames());
}

bool PlayedTrack::goTo(std::int32_t seconds) {
    const NoErrorBoxes quiet;
    try {
        std::int32_t mode = SeekMode::seconds;
        if (source_->SeekTo(seconds, mode) == SourceResult::done)
            return true;
    } catch (const RuntimeError&) {
        // A header of zeros says nothing of seconds.
    }
    // A source that cannot be moved can be opened again, which is its beginning.
    if (seconds != 0)
        return false;
    source_->CloseSource();
    return source_->OpenSource(file_) == SourceResult::done;
}

bool PlayedTrack::seek(std::int32_t milliseconds) {
    const std::int64_t wanted = format().framesOf(milliseconds);
    const std::int32_t second = secondOf(wanted);
    if (!open_ || !goTo(second) || !beginAgain())
        return false;
    moved_.reset();
    position_ = frameReached(second);
    // Sources are moved to whole seconds; the rest is read and dropped.
    std::int64_t excess = (wanted - position_) * format().frameBytes();
    std::array<std::uint8_t, 8000> dropped;
    while (excess > 0) {
        const auto piece =
            static_cast<std::int32_t>(std::min(excess, static_cast<std::int64_t>(dropped.size())));
        const std::int32_t got = read(dropped.data(), piece, false);
        if (got == 0)
            break;
        excess -= got;
    }
    return true;
}

void PlayedTrack::close() {
    if (!std::exchange(open_, false))
        return;
    FirstFailure failure;
    failure.guard([&] { source_->CloseSource(); });
    failure.guard([&] { converter_.CloseConverter(); });
    failure.rethrow();
}

} // namespace corvina
