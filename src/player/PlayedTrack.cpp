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
namespace {

// Where a source is that was moved there. Sources are moved to whole seconds, or, without a
// lead-in, to the block of compressed sound before.
std::int64_t reachedMs(cSoundSTRM& source, std::int64_t asked) {
    constexpr std::int64_t longestBlock = 500;
    if (source.hasLeadIn())
        return asked;
    const std::int64_t reached = source.Info().Position();
    return reached < asked && reached >= asked - longestBlock ? reached : asked;
}

} // namespace

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
    const std::int64_t asked = std::int64_t{seconds} * 1000;
    std::int64_t reached = asked;
    try {
        reached = reachedMs(*source_, asked);
    } catch (const RuntimeError&) {
        // The source cannot say where it is.
    }
    moved_ = {.bytesBefore = converter_.bytesAhead(), .frame = format().framesOf(reached)};
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
    std::int32_t mode = SeekMode::seconds;
    if (source_->SeekTo(seconds, mode) == SourceResult::done)
        return true;
    // A source that cannot be moved can be opened again, which is its beginning.
    if (seconds != 0)
        return false;
    source_->CloseSource();
    return source_->OpenSource(file_) == SourceResult::done;
}

bool PlayedTrack::seek(std::int32_t milliseconds) {
    constexpr std::int32_t second = 1000;
    if (!open_ || !goTo(milliseconds / second) || !beginAgain())
        return false;
    moved_.reset();
    position_ = format().framesOf(reachedMs(*source_, milliseconds / second * second));
    // The rest is read and dropped.
    std::int64_t excess = (format().framesOf(milliseconds) - position_) * format().frameBytes();
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
