#pragma once

// The byte stream of an audio source: every input family implements it and cSoundInf in one class.
//
// A source is created closed. OpenSource, then any number of Read and SeekTo, then CloseSource,
// which the source also does by itself when it is destroyed. Everything runs on the thread that
// owns the control. Failures are result codes; arithmetic overflow raises a run-time error.

#include "stream/LeadIn.h"
#include "stream/cSoundInf.h"

#include <cstdint>
#include <string>
#include <vector>
#include <windows.h>

#include <mmreg.h>

namespace corvina {

// Result codes that most sources share; each source's header lists what it returns.
namespace SourceResult {
inline constexpr std::int32_t done = 0;
inline constexpr std::int32_t notOpen = 1; // also: could not be opened
inline constexpr std::int32_t outOfRange = 3;
inline constexpr std::int32_t endOfData = 5;
} // namespace SourceResult

// How SeekTo reads its value.
namespace SeekMode {
inline constexpr std::int32_t percent = 0;
inline constexpr std::int32_t seconds = 1;
} // namespace SeekMode

class cSoundSTRM {
public:
    virtual ~cSoundSTRM() = default;

    // The same object as its description.
    virtual cSoundInf& Info() = 0;
    // Lower case, without the dot.
    virtual std::vector<std::wstring> Extensions() = 0;
    // The read position has reached or passed the end of the data.
    virtual bool EndOfStream() = 0;
    virtual bool Seekable() = 0;
    // The format of the bytes that Read delivers, in the source's own memory. Valid and unmoved
    // from a successful OpenSource to the next one or the source's end; null or all zeros before.
    // At least 18 bytes, and as many more as its cbSize says, are readable there.
    virtual const WAVEFORMATEX* WFXPointer() = 0;
    virtual std::int32_t OpenSource(const std::wstring& source) = 0;
    virtual std::int32_t CloseSource() = 0;
    // Copies up to bytes bytes to buffer; bytesRead is the number copied.
    virtual std::int32_t Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) = 0;
    // mode: see SeekMode. By reference as the interface has it; no source writes it.
    virtual std::int32_t SeekTo(std::int32_t value, std::int32_t& mode) = 0;

    // For whoever decodes the bytes, between a seek and the next Read. Whether the place sought is
    // reached by a lead-in, and the step back to where that begins.
    virtual bool hasLeadIn() { return false; }
    virtual LeadIn goToLeadIn() { return {}; }
};

} // namespace corvina
