#pragma once

// The registered cPlayer control, as a C++ host uses it: created through COM, called through its
// published interface, its events received. Use it on one thread, in an apartment (CoInitialize),
// which pumps messages while something plays.
//
// Members that return long return the control's result, 0 for success. A failure of COM itself
// throws _com_error.

#include "PlayerEvents.h"

#include <comdef.h>

#include <string>
#include <vector>

namespace corvina::app {

_COM_SMARTPTR_TYPEDEF(_cPlayer, __uuidof(_cPlayer));
_COM_SMARTPTR_TYPEDEF(IConnectionPoint, __uuidof(IConnectionPoint));

struct FileFormat {
    long bitrate = 0; // bits per second as stored
    long bitsPerSample = 0;
    short channels = 0;
    long sampleRate = 0; // Hz
    double seconds = 0;
};

struct FileTag {
    const wchar_t* name;
    std::wstring value;
};

struct OutputDevice {
    long index = 0;
    std::wstring name;
    short channels = 0;
};

class PlayerClient {
public:
    explicit PlayerClient(PlayerHandlers handlers);
    // Stops without waiting for DonePlay; no handler is called any more.
    ~PlayerClient();
    PlayerClient(const PlayerClient&) = delete;
    PlayerClient& operator=(const PlayerClient&) = delete;

    long open(const std::wstring& file);
    long start(const std::wstring& file, long device);
    long stop();
    long pause();
    long goOn();
    // Ends a playback at once, also one that the device does not finish; no DonePlay comes.
    void abandon();
    [[nodiscard]] bool isPlaying();
    [[nodiscard]] bool isPaused();
    [[nodiscard]] long positionSeconds();
    void seek(long seconds);

    // Address of the samples last sent to the device, until the next message is handled.
    [[nodiscard]] long audioData();
    void showAbout();

    // Of the file opened or started last.
    [[nodiscard]] FileFormat format();
    [[nodiscard]] std::vector<FileTag> tags(const std::wstring& file); // those that are not empty
    [[nodiscard]] std::vector<OutputDevice> devices();

    [[nodiscard]] std::wstring timeText(long seconds);
    [[nodiscard]] std::wstring errorText(long result);

private:
    _cPlayerPtr player_;
    IConnectionPointPtr events_;
    PlayerEventsPtr sink_;
    DWORD connection_ = 0;
};

} // namespace corvina::app
