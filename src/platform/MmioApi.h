#pragma once

// The RIFF file functions of winmm. A user keeps the table by reference: it must outlive the user.

#include <windows.h>

#include <mmsystem.h>

namespace corvina {

struct MmioApi {
    decltype(&::mmioOpenA) open = &::mmioOpenA;
    decltype(&::mmioStringToFOURCCA) stringToFourcc = &::mmioStringToFOURCCA;
    decltype(&::mmioDescend) descend = &::mmioDescend;
    decltype(&::mmioRead) read = &::mmioRead;
    decltype(&::mmioSeek) seek = &::mmioSeek;
    decltype(&::mmioClose) close = &::mmioClose;
};

inline const MmioApi systemMmioApi;

} // namespace corvina
