#pragma once

// One file on its way to the device: its source, and the converter that makes PCM of it.
//
// A running playback keeps its own source by sharing it with the player: whatever is opened
// meanwhile is another one. begin, then read until finished; seek and begin again at any time.
// Run-time errors of the source pass through. One thread.

#include "platform/AcmApi.h"
#include "player/PlayedFormat.h"
#include "stream/cPCM.h"
#include "stream/cSoundSTRM.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace corvina {

class PlayedTrack {
public:
    // source: has opened the file.
    PlayedTrack(std::wstring file, std::shared_ptr<cSoundSTRM> source, const AcmApi& acm,
                cCallback* observer);
    PlayedTrack(const PlayedTrack&) = delete;
    PlayedTrack& operator=(const PlayedTrack&) = delete;

    [[nodiscard]] const std::wstring& file() const noexcept { return file_; }
    [[nodiscard]] const cSoundSTRM* source() const noexcept { return source_.get(); }
    [[nodiscard]] const std::shared_ptr<cSoundSTRM>& sharedSource() const noexcept {
        return source_;
    }

    // Prepares the conversion from the place where the source is. False if none is possible.
    [[nodiscard]] bool begin();
    // For a device that takes no more channels: from now on there are two. False if there are not
    // more.
    [[nodiscard]] bool mixToStereo();
    [[nodiscard]] PlayedFormat format() const noexcept;
    // PCM in the numbers of the source, which the converter may change.
    [[nodiscard]] WAVEFORMATEX sourceFormat() const;
    [[nodiscard]] std::int32_t durationMs();

    // Copies up to that many bytes of PCM; how many. exactly: stops at the end of the data, where
    // other bytes of a WAV file may follow that are heard otherwise.
    [[nodiscard]] std::int32_t read(void* destination, std::int32_t bytes, bool exactly);
    // Nothing more comes.
    [[nodiscard]] bool finished(bool exactly);
    // The frame of the file that is read next.
    [[nodiscard]] std::int64_t position() const noexcept { return position_; }

    // Goes on at that time of the file. False if the source cannot: it is read where it was.
    [[nodiscard]] bool seek(std::int32_t milliseconds);
    // Somebody else has moved the source. What the converter holds comes before that place, and
    // read stops there until goOnWhereMoved, which is true if the next frame is the one moved to.
    void sourceMoved(std::int32_t seconds);
    [[nodiscard]] bool goOnWhereMoved() noexcept;
    // Closes source and converter. Harmless afterwards.
    void close();

private:
    struct Moved {
        std::int32_t bytesBefore = 0;
        std::int64_t frame = 0;
    };

    [[nodiscard]] bool beginAgain();
    [[nodiscard]] bool goTo(std::int32_t seconds);
    [[nodiscard]] std::int64_t frameReached(std::int32_t seconds);
    [[nodiscard]] std::int32_t secondOf(std::int64_t frame);
    [[nodiscard]] std::optional<std::int64_t> frames();

    const std::wstring file_;
    const std::shared_ptr<cSoundSTRM> source_;
    // The exact length, if the file says it; looked up when it is first needed.
    std::optional<std::optional<std::int64_t>> frames_;
    cCallback* const observer_;
    cPCM converter_;
    std::int64_t position_ = 0;
    std::optional<Moved> moved_;
    bool open_ = true;
    bool mixed_ = false;
};

} // namespace corvina
