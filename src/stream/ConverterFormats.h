#pragma once

// What the converter decides by format records before it converts.

#include "stream/LinearFormat.h"

#include <cstdint>
#include <optional>
#include <windows.h>

#include <mmreg.h>

namespace corvina {

class cSoundSTRM;

// The record of the bytes that the source delivers: the source's own, unless that describes the
// samples in the file and the source delivers 16 bits whatever they are. Then one is made. Null
// without a record.
[[nodiscard]] const WAVEFORMATEX* deliveredRecord(cSoundSTRM& source, WAVEFORMATEX& made);

// Whether no field is 0 that codecs divide by without a look at it.
[[nodiscard]] bool isComplete(const WAVEFORMATEX& record);

// The bits of the output: 4-bit ADPCM plays as 8 bits, 24 and 32 bits as 16.
[[nodiscard]] std::uint16_t outputWidth(std::uint16_t sourceBits, bool force16Bit);

// No block of compressed sound is larger: a record counts up to 65535 samples in one, of half a
// byte each in two channels.
inline constexpr std::int64_t largestBlock = 128 * 1024;

// How far a codec may read in a buffer of that many bytes. Those of the platform read complete PCM
// samples, and as many compressed ones as the record counts, even if the record's blocks are too
// small for them.
[[nodiscard]] std::int64_t bytesInReach(const WAVEFORMATEX& format, std::int64_t bytes);

// The samples that are converted here if the audio compression manager refuses the record: it takes
// neither extensible records nor floating point, and few widths and numbers of channels. Its
// refusal of 8 or 16 bits in one or two channels is final.
[[nodiscard]] std::optional<LinearFormat> linearBeyondManager(const WAVEFORMATEX& record);

} // namespace corvina
