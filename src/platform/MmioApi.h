#pragma once

// The RIFF file functions of winmm. A user keeps the table by reference: it must outlive the user.

#include "platform/ApiHandle.h"

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

struct MmioHandleTraits {
    using Api = MmioApi;
    using Handle = HMMIO;
    static Handle none() noexcept { return nullptr; }
    static void close(const Api& api, Handle file) noexcept { api.close(file, 0); }
};
using MmioHandle = ApiHandle<MmioHandleTraits>;

} // namespace corvina
