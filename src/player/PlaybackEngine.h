#pragma once

// Moves decoded sound to a wave output device: a ring of eight 8000-byte buffers, each refilled
// from the track when the device returns it.
//
// Everything happens on the thread that owns the window, driven by that window's messages: there is
// no thread of its own and no lock. PlaybackState.h describes the states. A handler of any event
// may call every member. An exception that is thrown while a message is handled ends the playback
// and is reported through Err as "WindowProcOut".

#include "player/PlaybackLife.h"
#include "player/PlaybackOptions.h"
#include "player/PlaybackState.h"
#include "player/PlayerPlatform.h"
#include "player/SentSamples.h"
#include "player/TrackQueue.h"
#include "player/TrackSupply.h"
#include "player/WaveMessages.h"
#include "player/WaveOutput.h"
#include "player/WindowTimer.h"

#include <cstdint>

namespace corvina {

class PlaybackEngine {
public:
    // All must outlive the engine.
    PlaybackEngine(PlayerEvents& events, TrackSupply& supply, const PlaybackOptions& options,
                   const PlayerPlatform& platform);
    ~PlaybackEngine(); // disconnect
    PlaybackEngine(const PlaybackEngine&) = delete;
    PlaybackEngine& operator=(const PlaybackEngine&) = delete;

    // The window whose messages reach handleMessage from now on. Sets done, even during a
    // playback: that one then plays to its end and its DonePlay, and stop has nothing to stop.
    void connect(HWND window) noexcept;
    // Messages do not arrive any longer: a device still open is closed at once, without an event,
    // and nothing plays afterwards. Then reportEnds raises the Ended that are due.
    void disconnect() noexcept;
    void reportEnds() noexcept;

    // Returns 0, 5 if the track cannot be converted, or the device result.
    std::int32_t start(std::int32_t deviceIndex, TrackQueue::Track track);
    // MM_WOM_DONE refills and queues a buffer, or counts it at the end; MM_WOM_CLOSE sets done and
    // raises DonePlay. Others are ignored.
    void handleMessage(UINT message) noexcept;
    std::int32_t stop();
    std::int32_t pause() noexcept;
    std::int32_t resume() noexcept;

    // The sound settings, or the interval of PositionChanged, are others.
    void soundChanged();
    void intervalChanged() noexcept;
    // Drops what is queued and goes on at that time of the track that is heard. Does nothing if
    // nothing plays; raises error 5 if the source cannot be moved.
    void jump(std::int32_t milliseconds);
    // What is heard now; no track if nothing plays. The last place until the host is notified of
    // the end.
    [[nodiscard]] TrackQueue::Place heard();
    // The same in milliseconds: what is heard behind the end of the file, to the end of the last
    // block, is no part of it. 0 if nothing plays.
    [[nodiscard]] std::int32_t heardMs();
    // The peak of what is heard now, in parts of full scale. Mono sound has it in every channel.
    [[nodiscard]] double level(std::int32_t channel);
    // Somebody has moved a source, which may be the one that is played.
    void sourceMoved(const cSoundSTRM& source, std::int32_t seconds);
    // A playback that has not ended has this source.
    [[nodiscard]] bool uses(const cSoundSTRM* source) const noexcept;

    // A device plays, or has still to return its buffers.
    [[nodiscard]] bool playing() const noexcept;
    // Nothing plays, and the host was notified of that.
    [[nodiscard]] bool done() const noexcept { return done_; }
    // From a successful pause to a successful resume or the next start; stop leaves it.
    [[nodiscard]] bool paused() const noexcept { return paused_; }
    [[nodiscard]] PlayState playState() const noexcept { return life_.state(); }
    // The samples last sent to the device, as SentSamples has them.
    [[nodiscard]] const std::int16_t* audioData() const noexcept { return sent_.data(); }
    // False if nothing plays, or nothing was sent yet.
    [[nodiscard]] bool latestSamples(SampleBlock& block) const;

private:
    struct FailedReset {
        std::uint32_t session = 0;
        HWAVEOUT device = nullptr;
        bool operator==(const FailedReset&) const = default;
    };

    void enter(PlaybackState next) noexcept;
    void stopFeeding() noexcept;

    [[nodiscard]] bool closeFormerDevice() noexcept;
    std::int32_t openSession(std::int32_t deviceIndex, const WAVEFORMATEX& format);
    void abandonSession() noexcept;
    void endUnprimed();

    void bufferReturned();
    [[nodiscard]] bool refill();
    void fill(WaveBuffer& buffer);
    void countDrained();
    void closeDrained();
    void deviceClosed();
    [[nodiscard]] bool continueWithOther();

    std::int32_t resetDevice();
    void dropTracks();
    void abandonTracks() noexcept;
    void giveBackUnheard();
    void failPlayback(std::uint32_t session);
    void loseDevice();
    [[nodiscard]] bool recover(const TrackQueue::Place& place);
    [[nodiscard]] bool closeAtOnce() noexcept;

    void reportHeard();
    void startTimers() noexcept;
    void stopTimers() noexcept;
    void onTimer(void (PlaybackEngine::*task)()) noexcept;
    void watch();
    void reportPosition();

    PlayerEvents& events_;
    TrackSupply& supply_;
    const PlaybackOptions& options_;
    const PlaybackTrace trace_;
    WaveMessages messages_;
    WaveOutput output_;
    WindowTimer watchTimer_; // sees what is heard, and whether the device plays at all
    WindowTimer positionTimer_;
    PlaybackLife life_;

    PlaybackState state_ = PlaybackState::closed;
    bool done_ = true;
    bool paused_ = false;
    bool primed_ = false; // the messages that fill the ring were accepted
    std::int32_t deviceIndex_ = -1;
    std::size_t drained_ = 0; // buffers returned since feeding stopped
    std::size_t lost_ = 0;    // buffers that the device refused
    bool untried_ = false;    // Recover has opened the device, which has taken no buffer yet
    // Counts the starts.
    std::uint32_t playback_ = 0;
    // Counts the openings of the device, so that whoever raised an event notices that its handler
    // has begun another one.
    std::uint32_t session_ = 0;
    FailedReset reported_; // by the Err that is being raised
    TrackQueue tracks_;
    SentSamples sent_;
};

} // namespace corvina
