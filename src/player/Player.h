#pragma once

// Everything the player control does, without COM: opening files, tags, position, the start and
// stop of playback. The control forwards to it member by member; members that a host calls have
// their published names. Failures are 32-bit results or RuntimeError.
//
// One thread, the one that owns the control's window. Events are raised from inside the calls and
// from handleMessage, and their handlers may call every member; whoever owns the Player keeps it
// alive until the outermost call has returned. Play states as a host sees them:
//   idle      IsPlaying false; PlayStart starts
//   playing   IsPlaying true; PlayStart returns -201; PlayStop, PlayPause, PlayUnPause work
//   draining  after the end of the file or PlayStop, while the queued buffers come back; as
//             playing
//   closed    the device is closed but its close message was not handled yet: IsPlaying is
//             still true, PlayStart starts a file, which that message then stops

#include "platform/LoadedCodecs.h"
#include "player/AudioDevices.h"
#include "player/FileFacts.h"
#include "player/NextTrack.h"
#include "player/PlaybackEngine.h"
#include "player/PlaybackSettings.h"
#include "player/PlayerEvents.h"
#include "player/PlayerPlatform.h"
#include "player/SourceList.h"
#include "player/TagTexts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <windows.h>

#include "Corvina.h"

namespace corvina {

class Player {
public:
    // observer sees each converted block; it is not kept alive. Everything passed in must outlive
    // the player.
    Player(PlayerEvents& events, cCallback* observer, const PlayerPlatform& platform = {});
    ~Player(); // shutdown
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    // Takes the control's window and attaches client to its wave messages. Always 0; a failed
    // attachment raises the subclassing errors. A second call adds the sources once more, as it
    // always has: a file is still opened by the first that fits, so only memory is spent.
    std::int32_t Init(HWND window, ISubclass& client);
    std::int32_t DeInit();
    // Closes the device at once and lets go of the window, without DonePlay: for the control's end.
    void shutdown() noexcept;
    // For the control's ISubclass.WindowProc. Messages other than the device's are ignored.
    void handleMessage(UINT message) noexcept;
    // The window that Init took is being destroyed: playback ends at once, without DonePlay.
    void windowDestroyed() noexcept;

    std::int32_t OpenAudioFile(const std::wstring& file);
    // bufferSize has no effect: every buffer has 8000 bytes. The parameter is published, and hosts
    // pass whatever they found in examples.
    std::int32_t PlayStart(const std::wstring& file, std::int32_t deviceIndex,
                           std::int32_t bufferSize);
    std::int32_t PlayStop();
    std::int32_t PlayPause();
    std::int32_t PlayUnPause();
    [[nodiscard]] bool IsPausedOut() const noexcept;
    [[nodiscard]] bool DonePlay() const noexcept;
    [[nodiscard]] bool IsPlaying() const noexcept;
    // Address of the samples last sent to the device; 0 before the first playback.
    [[nodiscard]] std::int32_t AudioDataOut() const noexcept;
    // For graphs that follow the player. False if nothing plays.
    [[nodiscard]] bool latestSamples(SampleBlock& block) const {
        return engine_.latestSamples(block);
    }

    std::int32_t GetID3Tags(const std::wstring& file);
    // The seven texts behind the Tag_ properties, to read and to write.
    [[nodiscard]] TagTexts& tagTexts() noexcept { return tags_; }

    // All raise Object not set (91) without an opened file.
    [[nodiscard]] std::int32_t Info_Bitrate() const;
    [[nodiscard]] std::int32_t Info_BitsPerSample() const;
    [[nodiscard]] std::int16_t Info_Channels() const;
    [[nodiscard]] double Info_Duration() const; // seconds
    [[nodiscard]] std::int32_t Info_Samplerate() const;

    [[nodiscard]] std::int32_t PositionGet() const; // seconds
    std::int32_t PositionSet(std::int32_t seconds);

    // To change by its own functions; soundChanged and intervalChanged bring it to a playback.
    [[nodiscard]] PlaybackSettings& settings() noexcept { return settings_; }
    void soundChanged() { engine_.soundChanged(); }
    void intervalChanged() noexcept { engine_.intervalChanged(); }
    [[nodiscard]] std::wstring NextFile() const { return next_.file(); }
    [[nodiscard]] PlayState State() const noexcept { return engine_.playState(); }
    // Of what is heard; 0 when nothing plays. Setting raises error 380 outside of the duration.
    [[nodiscard]] std::int32_t PositionMs();
    void setPositionMs(std::int32_t milliseconds);
    // Of what is heard, otherwise of the opened file; 0 without one.
    [[nodiscard]] std::int32_t DurationMs();
    // channel: 1 (left) or 2; 0 to 100.
    [[nodiscard]] std::int32_t Level(std::int32_t channel);
    [[nodiscard]] std::wstring Extensions() const; // "*.wav;*.mp3" and so on
    // Of the opened file, or of the next one when it is heard; of no file without one.
    [[nodiscard]] FileFacts& facts();

    [[nodiscard]] std::wstring GetSecondsAsTimeString(std::int32_t seconds) const;
    [[nodiscard]] std::wstring ErrorTextOut(std::int32_t number) const;

    [[nodiscard]] std::int32_t NumOfAudioDevices(std::int32_t direction) const;
    std::int32_t GetDetailsDevice(std::int32_t index, std::int32_t direction,
                                  AudioDevice& details) const;

private:
    [[nodiscard]] cSoundInf& openedFile() const;
    [[nodiscard]] cSoundSTRM* currentSource() const noexcept;
    [[nodiscard]] std::wstring describedFile() const;
    void closeCurrentSource();
    [[nodiscard]] SourceList::Source freshSource(const SourceList::Source& used);
    [[nodiscard]] std::int32_t deviceNamed(const std::wstring& name) const;

    PlayerEvents& events_;
    cCallback* const observer_;
    const PlayerPlatform platform_;
    SourceList sources_;
    SourceList::Source source_; // the current one
    std::wstring file_;         // that it was to open
    bool opened_ = false;       // and has opened
    PlaybackSettings settings_;
    NextTrack next_;
    TagTexts tags_;
    FileFacts facts_;
    std::optional<LoadedCodecs> codecs_; // from Init to DeInit: a start need not load them
    PlaybackEngine engine_;
    // Whose messages are attached, and to whom. The wave-input messages stay attached after DeInit.
    HWND window_ = nullptr;
    ISubclass* client_ = nullptr;
};

} // namespace corvina
