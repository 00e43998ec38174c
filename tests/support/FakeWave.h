#pragma once

// A wave output device that plays nothing: it keeps what is queued until a test lets it finish, and
// posts the messages of a real one. It is as strict as a driver about handles and headers, records
// every call and fails on command. One for a test program; fakeWave.reset() before each test.

#include "platform/WaveApi.h"
#include "support/Faults.h"

#include <cstring>
#include <deque>
#include <set>
#include <string>
#include <vector>

namespace corvina::test {

struct FakeWave {
    Faults faults;
    // "Open", "Prepare 0" (the number is the header's dwUser), "Reset" and so on, in order.
    std::vector<std::string> log;
    bool open = false;
    bool paused = false;
    HWND window = nullptr;
    // Every device gets the handle of the one before, as Wine's do.
    static constexpr std::uintptr_t handle = 0x8001;
    UINT device = 0;
    DWORD_PTR instance = 0;
    DWORD flags = 0;
    WAVEFORMATEX format{};
    std::deque<WAVEHDR*> queued;
    std::set<const WAVEHDR*> prepared;
    // What was written, and in how many pieces.
    std::vector<std::uint8_t> written;
    int writes = 0;
    int opens = 0;
    int closes = 0;
    // Where the device is: what it has finished since the last reset, and a part of the next
    // buffer.
    std::int64_t finishedFrames = 0;
    std::int64_t framesBeyond = 0;

    void reset() { *this = {}; }

    // The device has played its next buffer; false if none is queued or the device is paused.
    bool finishOne() {
        if (queued.empty() || paused)
            return false;
        finishedFrames += queued.front()->dwBufferLength * 8 /
                          static_cast<DWORD>(format.nChannels * format.wBitsPerSample);
        framesBeyond = 0;
        giveBack();
        return true;
    }
    void finishAll() {
        while (finishOne())
            ;
    }

    void giveBack() {
        WAVEHDR* const header = queued.front();
        queued.pop_front();
        header->dwFlags = (header->dwFlags & ~static_cast<DWORD>(WHDR_INQUEUE)) | WHDR_DONE;
        ::PostMessageA(window, MM_WOM_DONE, handle, reinterpret_cast<LPARAM>(header));
    }

    [[nodiscard]] bool owns(HWAVEOUT device_) const {
        return open && reinterpret_cast<std::uintptr_t>(device_) == handle;
    }
    void note(const char* call) { log.emplace_back(call); }
    void note(const char* call, const WAVEHDR* header) {
        log.push_back(std::string(call).append(" ").append(std::to_string(header->dwUser)));
    }
    [[nodiscard]] MMRESULT failure() const {
        return faults.code() != 0 ? static_cast<MMRESULT>(faults.code()) : MMSYSERR_ERROR;
    }
};

inline FakeWave fakeWave;

namespace fake {

inline MMRESULT WINAPI waveOutOpen(LPHWAVEOUT result, UINT device, LPCWAVEFORMATEX format,
                                   DWORD_PTR callback, DWORD_PTR instance, DWORD flags) {
    fakeWave.note("Open");
    if (fakeWave.faults.strikes("waveOutOpen"))
        return fakeWave.failure();
    if (fakeWave.open)
        return MMSYSERR_ALLOCATED;
    fakeWave.open = true;
    fakeWave.paused = false;
    fakeWave.window = reinterpret_cast<HWND>(callback);
    fakeWave.device = device;
    fakeWave.instance = instance;
    fakeWave.flags = flags;
    fakeWave.format = *format;
    fakeWave.prepared.clear();
    fakeWave.finishedFrames = 0;
    fakeWave.framesBeyond = 0;
    ++fakeWave.opens;
    *result = reinterpret_cast<HWAVEOUT>(FakeWave::handle);
    return 0;
}

inline MMRESULT WINAPI waveOutPrepareHeader(HWAVEOUT device, LPWAVEHDR header, UINT size) {
    fakeWave.note("Prepare", header);
    if (fakeWave.faults.strikes("waveOutPrepareHeader"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    if (size != sizeof(WAVEHDR))
        return MMSYSERR_INVALPARAM;
    header->dwFlags = WHDR_PREPARED;
    fakeWave.prepared.insert(header);
    return 0;
}

inline MMRESULT WINAPI waveOutUnprepareHeader(HWAVEOUT device, LPWAVEHDR header, UINT size) {
    fakeWave.note("Unprepare", header);
    if (fakeWave.faults.strikes("waveOutUnprepareHeader"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    if (size != sizeof(WAVEHDR))
        return MMSYSERR_INVALPARAM;
    if (header->dwFlags & WHDR_INQUEUE)
        return WAVERR_STILLPLAYING;
    header->dwFlags &= ~static_cast<DWORD>(WHDR_PREPARED);
    fakeWave.prepared.erase(header);
    return 0;
}

inline MMRESULT WINAPI waveOutWrite(HWAVEOUT device, LPWAVEHDR header, UINT size) {
    fakeWave.note("Write", header);
    if (fakeWave.faults.strikes("waveOutWrite"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    if (size != sizeof(WAVEHDR))
        return MMSYSERR_INVALPARAM;
    if (!(header->dwFlags & WHDR_PREPARED))
        return WAVERR_UNPREPARED;
    if (header->dwFlags & WHDR_INQUEUE)
        return WAVERR_STILLPLAYING;
    header->dwFlags = (header->dwFlags & ~static_cast<DWORD>(WHDR_DONE)) | WHDR_INQUEUE;
    const auto* data = reinterpret_cast<const std::uint8_t*>(header->lpData);
    fakeWave.written.insert(fakeWave.written.end(), data, data + header->dwBufferLength);
    ++fakeWave.writes;
    fakeWave.queued.push_back(header);
    return 0;
}

inline MMRESULT WINAPI waveOutReset(HWAVEOUT device) {
    fakeWave.note("Reset");
    if (fakeWave.faults.strikes("waveOutReset"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    fakeWave.paused = false;
    fakeWave.finishedFrames = 0;
    fakeWave.framesBeyond = 0;
    while (!fakeWave.queued.empty())
        fakeWave.giveBack();
    return 0;
}

inline MMRESULT WINAPI waveOutPause(HWAVEOUT device) {
    fakeWave.note("Pause");
    if (fakeWave.faults.strikes("waveOutPause"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    fakeWave.paused = true;
    return 0;
}

inline MMRESULT WINAPI waveOutRestart(HWAVEOUT device) {
    fakeWave.note("Restart");
    if (fakeWave.faults.strikes("waveOutRestart"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    fakeWave.paused = false;
    return 0;
}

inline MMRESULT WINAPI waveOutClose(HWAVEOUT device) {
    fakeWave.note("Close");
    if (fakeWave.faults.strikes("waveOutClose"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    if (!fakeWave.queued.empty())
        return WAVERR_STILLPLAYING;
    fakeWave.open = false;
    ++fakeWave.closes;
    ::PostMessageA(fakeWave.window, MM_WOM_CLOSE, fakeWave.handle, 0);
    return 0;
}

inline MMRESULT WINAPI waveOutGetPosition(HWAVEOUT device, LPMMTIME time, UINT) {
    if (fakeWave.faults.strikes("waveOutGetPosition"))
        return fakeWave.failure();
    if (!fakeWave.owns(device))
        return MMSYSERR_INVALHANDLE;
    time->wType = TIME_SAMPLES;
    time->u.sample = static_cast<DWORD>(fakeWave.finishedFrames + fakeWave.framesBeyond);
    return 0;
}

} // namespace fake

inline const WaveApi fakeWaveApi = [] {
    WaveApi api;
    api.outOpen = fake::waveOutOpen;
    api.outPrepareHeader = fake::waveOutPrepareHeader;
    api.outUnprepareHeader = fake::waveOutUnprepareHeader;
    api.outWrite = fake::waveOutWrite;
    api.outReset = fake::waveOutReset;
    api.outPause = fake::waveOutPause;
    api.outRestart = fake::waveOutRestart;
    api.outClose = fake::waveOutClose;
    api.outGetPosition = fake::waveOutGetPosition;
    return api;
}();

} // namespace corvina::test
