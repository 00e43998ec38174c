#pragma once

// Keeps the system's audio codecs in memory while it lives. To find one that converts,
// acmStreamOpen opens codec after codec, and each is loaded and unloaded for the question; where
// they are loaded already the search, which every start of a playback waits for, takes about half
// as long.
//
// An aid to speed alone: a codec that cannot be opened is passed over and nothing is reported.
// Any thread.

#include "platform/AcmApi.h"

#include <vector>

namespace corvina {

class LoadedCodecs {
public:
    explicit LoadedCodecs(const AcmApi& acm) noexcept;
    ~LoadedCodecs();
    LoadedCodecs(const LoadedCodecs&) = delete;
    LoadedCodecs& operator=(const LoadedCodecs&) = delete;

    [[nodiscard]] std::size_t count() const noexcept { return drivers_.size(); }

private:
    static BOOL CALLBACK onCodec(HACMDRIVERID codec, DWORD_PTR instance, DWORD support) noexcept;

    const AcmApi& acm_;
    std::vector<HACMDRIVER> drivers_;
};

} // namespace corvina
