#pragma once

// Moves decoded sound to a wave output device: a ring of eight 8000-byte buffers, each refilled
// from the converter when the device returns it.
//
// Everything happens on the thread that owns the window, driven by that window's messages: there is
// no thread of its own and no lock. The states are those of PlaybackState.h:
//   start         opens the device and posts eight MM_WOM_DONE messages, which fill the ring
//   MM_WOM_DONE   while feeding, refills and queues the next buffer. The message that meets the
//                 end of the source, or stop, ends feeding; eight more close the device.
//   MM_WOM_CLOSE  stops what is left, sets done and raises DonePlay
// A handler of Err or DonePlay may call every member. An exception that is thrown while a message
// is handled ends the playback and is reported through Err as "WindowProcOut". The texts of the
// events are published, and older than the names of the functions here.

#include "player/PlaybackState.h"
#include "player/PlayerPlatform.h"
#include "player/WaveMessages.h"
#include "player/WaveRing.h"
#include "stream/cPCM.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace corvina {

class PlayerEvents;

class PlaybackEngine {
public:
    // source: where the player keeps its current source, null if none. All must outlive the engine.
    PlaybackEngine(PlayerEvents& events, cCallback* observer, cSoundSTRM* const& source,
                   const PlayerPlatform& platform) noexcept;
    ~PlaybackEngine(); // disconnect
    PlaybackEngine(const PlaybackEngine&) = delete;
    PlaybackEngine& operator=(const PlaybackEngine&) = delete;

    // The window whose messages reach handleMessage from now on. Sets done, even during a
    // playback: that one then plays to its end and its DonePlay, and stop has nothing to stop.
    void connect(HWND window) noexcept;
    // Messages do not arrive any longer: a device still open is closed at once, without an event,
    // and nothing plays afterwards.
    void disconnect() noexcept;

    // Returns 0, 5 if the source's format cannot be converted, or the device result.
    std::int32_t start(std::int32_t deviceIndex, WAVEFORMATEX format);
    void handleMessage(UINT message) noexcept;
    std::int32_t stop();
    std::int32_t pause() noexcept;
    std::int32_t resume() noexcept;

    // A device plays, or has still to return its buffers.
    [[nodiscard]] bool playing() const noexcept;
    // Nothing plays, and the host was notified of that.
    [[nodiscard]] bool done() const noexcept { return done_; }
    // From a successful pause to a successful resume or the next start; stop leaves it.
    [[nodiscard]] bool paused() const noexcept { return paused_; }
    // A copy of the samples last sent to the device, at a new address after every refill; null
    // before the first playback.
    [[nodiscard]] const std::int16_t* audioData() const noexcept { return audioData_.data(); }

private:
    struct FailedReset {
        std::uint32_t playback = 0;
        HWAVEOUT device = nullptr;
        bool operator==(const FailedReset&) const = default;
    };

    void enter(PlaybackState next) noexcept;
    void stopFeeding() noexcept;

    [[nodiscard]] bool closeFormerDevice() noexcept;
    [[nodiscard]] bool beginConversion();
    [[nodiscard]] MMRESULT openDevice(std::int32_t deviceIndex, WAVEFORMATEX format) noexcept;
    void abandonStart() noexcept;

    void bufferReturned();
    [[nodiscard]] bool refill();
    void countDrained();
    void closeDrained();
    void deviceClosed();

    std::int32_t resetDevice();
    void dropConversion();
    void failPlayback(std::uint32_t playback);
    [[nodiscard]] bool closeAtOnce() noexcept;

    PlayerEvents& events_;
    cCallback* const observer_;
    cSoundSTRM* const& source_;
    const WaveApi& wave_;
    const AcmApi& acm_;
    const PlaybackTrace trace_;
    WaveMessages messages_;

    PlaybackState state_ = PlaybackState::closed;
    bool done_ = true;
    bool paused_ = false;
    // Null while closed: the system gives a closed device's handle to the next one that opens,
    // which may be another control's.
    HWAVEOUT device_ = nullptr;
    // Buffers returned since feeding stopped.
    std::size_t drained_ = 0;
    // Counts the starts, so that whoever raised an event notices that its handler has begun another
    // playback.
    std::uint32_t playback_ = 0;
    FailedReset reported_; // by the Err that is being raised
    std::unique_ptr<cPCM> converter_;
    std::unique_ptr<WaveRing> ring_;
    std::vector<std::int16_t> audioData_;
};

} // namespace corvina
