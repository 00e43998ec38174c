#pragma once

// The registered cPlayer control, as a C++ host uses it: created through COM, called through its
// published interface, its events received. Use it on one thread, in an apartment (CoInitialize),
// which pumps messages while something plays.
//
// Members that return long return the control's result, 0 for success. A failure of COM itself
// throws _com_error.

#include "PlayerEvents.h"
#include "PlayerRecords.h"

#include <comdef.h>
#include <ocidl.h>
#include <olectl.h>

#include <string>
#include <vector>

namespace corvina::app {

_COM_SMARTPTR_TYPEDEF(_cPlayer, __uuidof(_cPlayer));
_COM_SMARTPTR_TYPEDEF(IPicture, __uuidof(IPicture));
_COM_SMARTPTR_TYPEDEF(IConnectionPoint, __uuidof(IConnectionPoint));

class PlayerClient {
public:
    explicit PlayerClient(PlayerHandlers handlers);
    // Stops at once; no handler is called any more.
    ~PlayerClient();
    PlayerClient(const PlayerClient&) = delete;
    PlayerClient& operator=(const PlayerClient&) = delete;

    long open(const std::wstring& file);
    long start(const std::wstring& file, long device);
    long stop();
    long pause();
    long goOn();
    // Ends a playback at once, also one that the device does not finish.
    void abandon();
    [[nodiscard]] PlayState state();
    [[nodiscard]] bool isPaused() { return state() == PLAY_PAUSED; }

    // What is heard of the file that plays, in milliseconds.
    [[nodiscard]] long positionMs();
    [[nodiscard]] long durationMs();
    // Jumps there at once; throws for a place outside the file, and if the file has no places.
    void jumpTo(long milliseconds);
    // How often the position is reported; 0 for never.
    void setPositionInterval(long milliseconds);
    // Peak of what is heard in channel 1 or 2, 0 to 100.
    [[nodiscard]] long level(long channel);

    // What follows without a gap; empty for nothing.
    void setNextFile(const std::wstring& file);
    void setLooping(bool on);
    // Output device by its name, for a start on device -1; empty for the system's choice.
    void setDevice(const std::wstring& name);
    void setRecover(bool on);
    void setCleanEnd(bool on);

    [[nodiscard]] long volume(); // 0 to 100
    void setVolume(long percent);
    [[nodiscard]] bool mute();
    void setMute(bool on);
    [[nodiscard]] long balance(); // -100 to 100
    void setBalance(long value);
    [[nodiscard]] float equalizerGain(long band); // of bands 1 to 10, in decibels
    void setEqualizerGain(long band, float decibels);

    void showAbout();
    // For another control, such as the graph, to which it is handed.
    [[nodiscard]] IDispatch* control() const noexcept { return player_.GetInterfacePtr(); }

    // Of the file opened or started last.
    [[nodiscard]] FileFormat format();
    [[nodiscard]] std::vector<FileTag> tags(const std::wstring& file); // those that are not empty
    [[nodiscard]] std::wstring formatName();
    // The picture that belongs to that file; null if there is none.
    [[nodiscard]] IPicturePtr cover();
    [[nodiscard]] std::vector<OutputDevice> devices();

    // Patterns of all files that can be played: "*.wav;*.mp3".
    [[nodiscard]] std::wstring extensions();
    [[nodiscard]] std::wstring timeText(long seconds);
    [[nodiscard]] std::wstring errorText(long result);

private:
    _cPlayerPtr player_;
    IConnectionPointPtr events_;
    PlayerEventsPtr sink_;
    DWORD connection_ = 0;
};

} // namespace corvina::app
