#pragma once

// Moves decoded sound to a wave output device: a ring of eight 8000-byte buffers, each refilled
// from the converter when the device hands it back.
//
// Everything happens on the thread that owns the window, driven by that window's messages: there is
// no thread of its own and no lock. A playback lives so:
//   StartPlayAudio  opens the device and posts eight MM_WOM_DONE messages, which fill the ring
//   MM_WOM_DONE     refills and queues the next buffer while feeding; the message that meets
//                   the end of the source (or PlayStop) ends feeding, and eight more close the
//                   device
//   MM_WOM_CLOSE    stops what is left, sets done and raises DonePlay
// A handler of Err or DonePlay may call every member. A failure that is thrown while a message is
// handled ends the playback and is reported through Err as "WindowProcOut".

#include "platform/AcmApi.h"
#include "platform/WaveApi.h"
#include "platform/WindowApi.h"
#include "player/WaveBuffer.h"
#include "stream/cPCM.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace corvina {

class PlayerEvents;

class PlaybackEngine {
public:
    // source: where the player keeps its current source, null if none. All must outlive the engine.
    PlaybackEngine(PlayerEvents& events, cCallback* observer, cSoundSTRM* const& source,
                   const WaveApi& wave, const WindowApi& windows, const AcmApi& acm) noexcept;
    ~PlaybackEngine(); // Disconnect
    PlaybackEngine(const PlaybackEngine&) = delete;
    PlaybackEngine& operator=(const PlaybackEngine&) = delete;

    // The window whose messages reach WindowProcOut from now on. Sets done, also while something
    // plays: that plays on to its end and its DonePlay, and PlayStop has nothing to stop.
    void Connect(HWND window) noexcept {
        window_ = window;
        done_ = true;
    }
    // Messages do not arrive any longer: a device still open is closed here and now, without an
    // event, and nothing plays afterwards.
    void Disconnect() noexcept;

    // Answers 0, 5 when the source's format cannot be converted, or the device result.
    std::int32_t StartPlayAudio(std::int32_t deviceIndex, WAVEFORMATEX format);
    void WindowProcOut(UINT message) noexcept;
    std::int32_t PlayStop();
    std::int32_t PlayPause() noexcept;
    std::int32_t PlayUnPause() noexcept;

    // The number of bytes that the host asked for has no effect: every playback uses 8000.
    void RequestBufferSize(std::int32_t bytes) noexcept { bufferBytes_ = bytes; }
    void RewindRing() noexcept { current_ = playedBuffers - 1; }

    // A device plays or has still to give its buffers back.
    [[nodiscard]] bool playing() const noexcept { return playing_; }
    // Nothing plays, and the host was told so.
    [[nodiscard]] bool done() const noexcept { return done_; }
    [[nodiscard]] bool paused() const noexcept { return paused_; }
    // A copy of the samples last sent to the device, at a new address after every refill; null
    // before the first playback.
    [[nodiscard]] const std::int16_t* audioData() const noexcept { return audioData_.data(); }

private:
    enum class CloseMessage { keep, discardOne, discardAll };
    struct FailedReset {
        std::uint32_t playback = 0;
        HWAVEOUT device = nullptr;
        bool operator==(const FailedReset&) const = default;
    };

    [[nodiscard]] MMRESULT prepareRing();
    [[nodiscard]] BOOL primeRing() noexcept;
    void bufferReturned();
    [[nodiscard]] bool refill();
    void countDrained();
    void deviceClosed();
    std::int32_t StopPlayAudio();
    void StopPlayProc();
    void dropConversion();
    void failPlayback(std::uint32_t playback);
    [[nodiscard]] bool closeDevice() noexcept;
    void discardMessages(CloseMessage close) noexcept;
    [[nodiscard]] bool discardMessage(UINT message) noexcept;

    PlayerEvents& events_;
    cCallback* const observer_;
    cSoundSTRM* const& source_;
    const WaveApi& wave_;
    const WindowApi& windows_;
    const AcmApi& acm_;

    HWND window_ = nullptr;
    // Null while closed: the system gives a closed device's handle to the next one that opens,
    // which may be another control's.
    HWAVEOUT device_ = nullptr;
    bool feeding_ = false;
    bool playing_ = false;
    bool done_ = true;
    bool paused_ = false;
    std::int32_t bufferBytes_ = 0;
    std::size_t current_ = playedBuffers - 1;
    // Buffers returned since feeding stopped; full while there is no ring to drain.
    std::size_t drained_ = playedBuffers;
    std::int32_t lastReadLength_ = 0;
    // Counts the starts, so that whoever raised an event notices that its handler has begun another
    // playback.
    std::uint32_t playback_ = 0;
    FailedReset reported_; // by the Err that is being raised
    std::unique_ptr<cPCM> converter_;
    std::unique_ptr<WaveRing> ring_;
    std::vector<std::int16_t> audioData_;
};

} // namespace corvina
