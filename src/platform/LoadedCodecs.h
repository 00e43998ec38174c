#pragma once

// Keeps the system's audio codecs in memory while it lives.
//
// To find a codec for a conversion, acmStreamOpen loads and unloads one after the other. Every
// start of a playback waits for this search; with all codecs loaded it takes about half as long.
//
// This is for speed alone: a codec that cannot be opened is skipped and nothing is reported.
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
