#pragma once

// Where a frame of sound lies in the data of a WAVE file that holds compressed sound: ADPCM,
// IMA ADPCM and GSM 6.10 in blocks of equal length, MPEG layer III in frames that are looked up.
// Of any other sound nothing is known here, and need not be: its bytes are its frames.

#include "stream/FileAccess.h"
#include "stream/LeadIn.h"
#include "stream/RiffChunk.h"

#include <cstdint>
#include <optional>
#include <windows.h>

#include <mmreg.h>

namespace corvina {

class CompressedWave {
public:
    CompressedWave() = default;
    // The record's extra bytes must be readable.
    CompressedWave(const WAVEFORMATEX& record, const RiffChunk& data) noexcept;

    [[nodiscard]] bool isKnown() const noexcept { return framesInBlock_ > 0 || isMpeg(); }
    [[nodiscard]] bool isMpeg() const noexcept;

    // Some writers leave another rate in the record, or none. The true one in bytes a second, if
    // the record's own cannot be. counted: frames by the file's count, or 0. Of MPEG sound without
    // a count all frames may be looked up, which moves the file's position.
    [[nodiscard]] std::optional<double> rateInsteadOfRecord(const FileAccess& access,
                                                            const FileRecord& file,
                                                            std::int64_t counted) const;

    // The first frame of the block there, in bytes from the start of the data. Nothing for MPEG
    // sound.
    [[nodiscard]] std::optional<std::int64_t> frameOfBlockAt(std::int32_t bytes) const noexcept;

    struct Place {
        std::int32_t offset = 0; // in the file, where the lead-in begins
        LeadIn leadIn;
    };
    // Nothing if the frame lies behind the data. Moves the file's position.
    [[nodiscard]] std::optional<Place> placeOf(std::int64_t frame, const FileAccess& access,
                                               const FileRecord& file) const;

private:
    [[nodiscard]] std::optional<Place> blockOf(std::int64_t frame) const noexcept;
    [[nodiscard]] std::optional<Place> mpegFrameOf(std::int64_t frame, const FileAccess& access,
                                                   const FileRecord& file) const;

    WAVEFORMATEX record_{};
    RiffChunk data_;
    std::int32_t framesInBlock_ = 0;
};

} // namespace corvina
