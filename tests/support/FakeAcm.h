#pragma once

// An audio compression manager that copies bytes, records what it is asked and lies on command. One
// for a test program; fakeAcm.reset() before each test.

#include "platform/AcmApi.h"
#include "support/Faults.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace corvina::test {

struct FakeAcm {
    struct Opening {
        const WAVEFORMATEX* source;
        WAVEFORMATEX output;
        HACMDRIVER driver;
        const WAVEFILTER* filter;
        DWORD_PTR callback;
        DWORD_PTR instance;
        DWORD flags;
    };
    struct Conversion {
        DWORD sourceLength;
        DWORD capacity;
        DWORD flags;
    };

    Faults faults;
    int openStreams = 0;
    int preparedHeaders = 0;
    int wrongHeaders = 0; // of another size than a header has, or with flags
    int openDrivers = 0;
    std::vector<Opening> openings;
    std::vector<Conversion> conversions;
    std::vector<DWORD> measured;
    // Output widths that no codec makes.
    std::vector<WORD> refusedBits;
    // Source bytes for an output buffer of that many bytes.
    std::function<DWORD(DWORD)> sourceSize;
    // What a conversion does, in place of copying; its result.
    std::function<MMRESULT(ACMSTREAMHEADER&)> conversion;

    void reset() { *this = {}; }
};

inline FakeAcm fakeAcm;

// A conversion that takes that many bytes and delivers them as they are.
inline MMRESULT copySound(ACMSTREAMHEADER& header, DWORD bytes) {
    if (bytes > 0)
        std::memcpy(header.pbDst, header.pbSrc, bytes);
    header.cbSrcLengthUsed = header.cbDstLengthUsed = bytes;
    return MMSYSERR_NOERROR;
}

namespace fake {

inline HACMSTREAM acmHandle() {
    return reinterpret_cast<HACMSTREAM>(&fakeAcm);
}

inline MMRESULT WINAPI acmStreamOpen(LPHACMSTREAM stream, HACMDRIVER driver, LPWAVEFORMATEX source,
                                     LPWAVEFORMATEX output, LPWAVEFILTER filter, DWORD_PTR callback,
                                     DWORD_PTR instance, DWORD flags) {
    fakeAcm.openings.push_back({source, *output, driver, filter, callback, instance, flags});
    const auto& refused = fakeAcm.refusedBits;
    if (fakeAcm.faults.strikes("acmStreamOpen") ||
        std::find(refused.begin(), refused.end(), output->wBitsPerSample) != refused.end())
        return ACMERR_NOTPOSSIBLE;
    ++fakeAcm.openStreams;
    *stream = acmHandle();
    return 0;
}

inline MMRESULT WINAPI acmStreamSize(HACMSTREAM stream, DWORD bytes, LPDWORD result, DWORD flags) {
    fakeAcm.measured.push_back(bytes);
    if (stream != acmHandle() || fakeAcm.faults.strikes("acmStreamSize"))
        return MMSYSERR_INVALHANDLE;
    const bool bytesAreOutput = flags == ACM_STREAMSIZEF_DESTINATION;
    *result = bytesAreOutput && fakeAcm.sourceSize ? fakeAcm.sourceSize(bytes) : bytes;
    return 0;
}

inline void checkHeader(const ACMSTREAMHEADER& header, DWORD flags) {
    if (header.cbStruct != sizeof header || flags != 0)
        ++fakeAcm.wrongHeaders;
}

inline MMRESULT WINAPI acmStreamPrepareHeader(HACMSTREAM, LPACMSTREAMHEADER header, DWORD flags) {
    checkHeader(*header, flags);
    if (fakeAcm.faults.strikes("acmStreamPrepareHeader"))
        return MMSYSERR_NOMEM;
    ++fakeAcm.preparedHeaders;
    return 0;
}

inline MMRESULT WINAPI acmStreamConvert(HACMSTREAM stream, LPACMSTREAMHEADER header, DWORD flags) {
    fakeAcm.conversions.push_back({header->cbSrcLength, header->cbDstLength, flags});
    if (stream != acmHandle() || fakeAcm.faults.strikes("acmStreamConvert"))
        return MMSYSERR_ERROR;
    if (fakeAcm.conversion)
        return fakeAcm.conversion(*header);
    return copySound(*header, std::min(header->cbSrcLength, header->cbDstLength));
}

inline MMRESULT WINAPI acmStreamUnprepareHeader(HACMSTREAM, LPACMSTREAMHEADER header, DWORD flags) {
    checkHeader(*header, flags);
    --fakeAcm.preparedHeaders;
    return fakeAcm.faults.strikes("acmStreamUnprepareHeader") ? MMSYSERR_ERROR : 0;
}

// A close that reports a failure has closed all the same.
inline MMRESULT WINAPI acmStreamClose(HACMSTREAM, DWORD) {
    --fakeAcm.openStreams;
    return fakeAcm.faults.strikes("acmStreamClose") ? MMSYSERR_ERROR : 0;
}

// Two codecs are installed.
inline MMRESULT WINAPI acmDriverEnum(ACMDRIVERENUMCB callback, DWORD_PTR instance, DWORD) {
    if (fakeAcm.faults.strikes("acmDriverEnum"))
        return MMSYSERR_NODRIVER;
    for (const std::uintptr_t codec : {1u, 2u})
        if (!callback(reinterpret_cast<HACMDRIVERID>(codec), instance, 0))
            break;
    return 0;
}

inline MMRESULT WINAPI acmDriverOpen(LPHACMDRIVER driver, HACMDRIVERID, DWORD) {
    if (fakeAcm.faults.strikes("acmDriverOpen"))
        return MMSYSERR_NODRIVER;
    ++fakeAcm.openDrivers;
    *driver = reinterpret_cast<HACMDRIVER>(&fakeAcm);
    return 0;
}

inline MMRESULT WINAPI acmDriverClose(HACMDRIVER, DWORD) {
    --fakeAcm.openDrivers;
    return fakeAcm.faults.strikes("acmDriverClose") ? MMSYSERR_ERROR : 0;
}

} // namespace fake

inline const AcmApi fakeAcmApi{fake::acmStreamOpen,
                               fake::acmStreamSize,
                               fake::acmStreamPrepareHeader,
                               fake::acmStreamConvert,
                               fake::acmStreamUnprepareHeader,
                               fake::acmStreamClose,
                               fake::acmDriverEnum,
                               fake::acmDriverOpen,
                               fake::acmDriverClose};

} // namespace corvina::test
