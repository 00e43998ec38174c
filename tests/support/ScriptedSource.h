#pragma once

// A source that plays what a test lays down and does what a test says, reached through the player's
// own list: script.extensions and so on first, then Init. One for a test program.

#include "player/PlayerPlatform.h"
#include "runtime/RuntimeError.h"
#include "stream/StrmTags.h"
#include "stream/cSoundSTRM.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {

struct Script {
    std::vector<std::wstring> extensions{L"test"};
    WAVEFORMATEX format = pcm(44100, 2, 16);
    Bytes data;
    // Of the files with these names, in place of the above.
    std::map<std::wstring, Bytes> otherData;
    std::map<std::wstring, WAVEFORMATEX> otherFormats;
    std::map<std::wstring, std::int32_t> otherDurations;
    // SeekTo moves; otherwise it only returns seekResult.
    bool moves = false;
    std::int32_t openResult = 0;
    std::int32_t seekResult = 0;
    std::int32_t positionMs = 0;
    std::int32_t durationMs = 0;
    std::vector<std::pair<std::wstring, std::wstring>> tags;
    // Called before each Read, each CloseSource and each OpenSource; may throw.
    std::function<void()> onRead;
    std::function<void(const std::wstring& name)> onOpen;
    std::function<void()> onClose;

    // What the player did: "Open name", "Close", "Seek value mode".
    std::vector<std::wstring> log;
    // Under which of the system's ways to show errors it opened, read and sought.
    std::set<DWORD> errorModes;
    int sources = 0;
};

inline Script script;

class ScriptedSource final : public cSoundSTRM, public cSoundInf {
public:
    ScriptedSource() {
        ++script.sources;
        for (const auto& [name, value] : script.tags)
            tags_.AddTag(name, value);
    }
    ScriptedSource(const ScriptedSource&) = delete;
    ScriptedSource& operator=(const ScriptedSource&) = delete;
    ~ScriptedSource() override { --script.sources; }

    cSoundInf& Info() override { return *this; }
    std::vector<std::wstring> Extensions() override { return script.extensions; }
    bool EndOfStream() override { return position_ >= data().size(); }
    bool Seekable() override { return true; }
    const WAVEFORMATEX* WFXPointer() override { return &format(); }
    std::int32_t OpenSource(const std::wstring& Source) override {
        name_ = Source.substr(Source.find_last_of(L'\\') + 1);
        script.log.push_back(L"Open " + name_);
        script.errorModes.insert(::GetThreadErrorMode());
        if (script.onOpen)
            script.onOpen(name_);
        position_ = 0;
        open_ = script.openResult == 0;
        return script.openResult;
    }
    std::int32_t CloseSource() override {
        script.log.emplace_back(L"Close");
        if (script.onClose)
            script.onClose();
        open_ = false;
        return 0;
    }
    std::int32_t Read(void* pBuffer, std::int32_t cBytes, std::int32_t& cBytesRead) override {
        script.errorModes.insert(::GetThreadErrorMode());
        if (script.onRead)
            script.onRead();
        if (!open_)
            return SourceResult::notOpen;
        const std::size_t bytes =
            std::min(static_cast<std::size_t>(cBytes), data().size() - position_);
        if (bytes > 0)
            std::memcpy(pBuffer, data().data() + position_, bytes);
        position_ += bytes;
        cBytesRead = static_cast<std::int32_t>(bytes);
        return EndOfStream() ? SourceResult::endOfData : SourceResult::done;
    }
    std::int32_t SeekTo(std::int32_t Value, std::int32_t& Mode) override {
        script.log.push_back(L"Seek " + std::to_wstring(Value) + L" " + std::to_wstring(Mode));
        script.errorModes.insert(::GetThreadErrorMode());
        if (script.moves)
            position_ = std::min(static_cast<std::size_t>(Value) *
                                     static_cast<std::size_t>(format().nAvgBytesPerSec),
                                 data().size());
        return script.seekResult;
    }

    StrmTags* Tags() override { return &tags_; }
    bool Force16Bit() override { return false; }
    std::int32_t SampleRate() override {
        return static_cast<std::int32_t>(format().nSamplesPerSec);
    }
    std::int16_t Channels() override { return static_cast<std::int16_t>(format().nChannels); }
    std::int16_t BitsPerSample() override {
        return static_cast<std::int16_t>(format().wBitsPerSample);
    }
    std::int32_t Bitrate() override {
        return static_cast<std::int32_t>(format().nAvgBytesPerSec) * 8;
    }
    std::int32_t Position() override { return script.positionMs; }
    std::int32_t Duration() override {
        const auto found = script.otherDurations.find(name_);
        return found == script.otherDurations.end() ? script.durationMs : found->second;
    }

private:
    [[nodiscard]] const Bytes& data() const {
        const auto found = script.otherData.find(name_);
        return found == script.otherData.end() ? script.data : found->second;
    }
    [[nodiscard]] const WAVEFORMATEX& format() const {
        const auto found = script.otherFormats.find(name_);
        return found == script.otherFormats.end() ? script.format : found->second;
    }

    std::wstring name_;
    StrmTags tags_;
    std::size_t position_ = 0;
    bool open_ = false;
};

inline std::vector<std::unique_ptr<cSoundSTRM>> makeScriptedSources() {
    std::vector<std::unique_ptr<cSoundSTRM>> sources;
    sources.push_back(std::make_unique<ScriptedSource>());
    return sources;
}

} // namespace corvina::test
