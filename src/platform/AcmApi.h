#pragma once

// The functions of the audio compression manager: conversion, and the codecs. A user keeps the
// table by reference: it must outlive the user.

#include "platform/ApiHandle.h"

#include <windows.h>

#include <mmsystem.h>

#include <mmreg.h>

#include <msacm.h>

namespace corvina {

struct AcmApi {
    decltype(&::acmStreamOpen) streamOpen = &::acmStreamOpen;
    decltype(&::acmStreamSize) streamSize = &::acmStreamSize;
    decltype(&::acmStreamPrepareHeader) streamPrepareHeader = &::acmStreamPrepareHeader;
    decltype(&::acmStreamConvert) streamConvert = &::acmStreamConvert;
    decltype(&::acmStreamUnprepareHeader) streamUnprepareHeader = &::acmStreamUnprepareHeader;
    decltype(&::acmStreamClose) streamClose = &::acmStreamClose;
    decltype(&::acmDriverEnum) driverEnum = &::acmDriverEnum;
    decltype(&::acmDriverOpen) driverOpen = &::acmDriverOpen;
    decltype(&::acmDriverClose) driverClose = &::acmDriverClose;
};

inline const AcmApi systemAcmApi;

struct AcmStreamTraits {
    using Api = AcmApi;
    using Handle = HACMSTREAM;
    static Handle none() noexcept { return nullptr; }
    static void close(const Api& api, Handle stream) noexcept { api.streamClose(stream, 0); }
};
using AcmStream = ApiHandle<AcmStreamTraits>;

} // namespace corvina
