#pragma once

// The wave output functions of winmm that playback uses, and those that describe devices. A user
// keeps the table by reference: it must outlive the user.

#include <windows.h>

#include <mmsystem.h>

namespace corvina {

struct WaveApi {
    decltype(&::waveOutOpen) outOpen = &::waveOutOpen;
    decltype(&::waveOutPrepareHeader) outPrepareHeader = &::waveOutPrepareHeader;
    decltype(&::waveOutUnprepareHeader) outUnprepareHeader = &::waveOutUnprepareHeader;
    decltype(&::waveOutWrite) outWrite = &::waveOutWrite;
    decltype(&::waveOutReset) outReset = &::waveOutReset;
    decltype(&::waveOutPause) outPause = &::waveOutPause;
    decltype(&::waveOutRestart) outRestart = &::waveOutRestart;
    decltype(&::waveOutClose) outClose = &::waveOutClose;
    decltype(&::waveOutGetPosition) outGetPosition = &::waveOutGetPosition;
    decltype(&::waveOutGetNumDevs) outGetNumDevs = &::waveOutGetNumDevs;
    decltype(&::waveOutGetDevCapsA) outGetDevCaps = &::waveOutGetDevCapsA;
    decltype(&::waveInGetNumDevs) inGetNumDevs = &::waveInGetNumDevs;
    decltype(&::waveInGetDevCapsA) inGetDevCaps = &::waveInGetDevCapsA;
};

inline const WaveApi systemWaveApi;

} // namespace corvina
