#pragma once

// A source whose bytes, format and results a test lays down.

#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace corvina::test {

class MemorySource final : public cSoundSTRM, public cSoundInf {
public:
    MemorySource(const WAVEFORMATEX& record, Bytes content)
        : format(record), data(std::move(content)) {}

    WAVEFORMATEX format;
    Bytes data;
    std::size_t position = 0;
    bool force16Bit = false;
    bool hasFormat = true;
    // What BitsPerSample says, if not what the record says.
    std::optional<WORD> deliveredBits;
    // What Position says.
    std::int32_t reportedMs = 0;
    // Other than done: SeekTo does not move.
    std::int32_t seekResult = SourceResult::done;
    int opens = 0;
    int closes = 0;
    // The counts that Read was asked for.
    std::vector<std::int32_t> asked;
    // If set, the next bytes are to be decoded from there, as after a seek in compressed sound.
    struct SoughtPlace {
        std::size_t position = 0;
        LeadIn leadIn;
    };
    std::optional<SoughtPlace> sought;
    // If set, it is called instead of reading: buffer, count, count read by reference; the result.
    std::function<std::int32_t(void*, std::int32_t, std::int32_t&)> respond;

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return {L"memory"}; }
    bool EndOfStream() override { return position >= data.size(); }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return hasFormat ? &format : nullptr; }
    std::int32_t OpenSource(const std::wstring&) override {
        ++opens;
        position = 0;
        return SourceResult::done;
    }
    std::int32_t CloseSource() override {
        ++closes;
        return SourceResult::done;
    }

    std::int32_t Read(void* pBuffer, std::int32_t cBytes, std::int32_t& cBytesRead) override {
        asked.push_back(cBytes);
        if (respond)
            return respond(pBuffer, cBytes, cBytesRead);
        const std::size_t bytes =
            std::min(static_cast<std::size_t>(cBytes), data.size() - position);
        if (bytes > 0)
            std::memcpy(pBuffer, data.data() + position, bytes);
        position += bytes;
        cBytesRead = static_cast<std::int32_t>(bytes);
        return position == data.size() ? SourceResult::endOfData : SourceResult::done;
    }

    std::int32_t SeekTo(std::int32_t Value, std::int32_t&) override {
        if (seekResult != SourceResult::done)
            return seekResult;
        position = static_cast<std::size_t>(Value) * format.nAvgBytesPerSec;
        return SourceResult::done;
    }

    bool hasLeadIn() override { return sought.has_value(); }
    LeadIn goToLeadIn() override {
        const SoughtPlace place = *std::exchange(sought, std::nullopt);
        position = place.position;
        return place.leadIn;
    }

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return force16Bit; }
    std::int32_t SampleRate() override { return static_cast<std::int32_t>(format.nSamplesPerSec); }
    std::int16_t Channels() override { return static_cast<std::int16_t>(format.nChannels); }
    std::int16_t BitsPerSample() override {
        return static_cast<std::int16_t>(deliveredBits.value_or(format.wBitsPerSample));
    }
    std::int32_t Bitrate() override {
        return static_cast<std::int32_t>(format.nAvgBytesPerSec) * 8;
    }
    std::int32_t Position() override { return reportedMs; }
    std::int32_t Duration() override { return 0; }

private:
    StrmTags tags_;
};

} // namespace corvina::test
