#pragma once

// DecOGG over stand-ins for its libraries that write every call down.

#include "sources/DecOGG.h"
#include "support/StandIns.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvina::test {

inline constexpr std::int32_t cFile = 0x00F11E;
inline constexpr std::int32_t commentBlock = 0x00C0DE;

// What the stand-ins return.
struct OggResults {
    std::int32_t fopen = cFile;
    std::int32_t ovOpen = 0;
    bool hasInformation = true;
    std::array<std::int32_t, 8> information{0, 2, 44100, 0, 128000, 0, -1, 0};
    std::int32_t pcmTotal = 441000;
    std::int32_t ovRead = 0;
    std::int32_t ovTimeSeek = -1; // looked at for a seek to the end alone
    std::int32_t comments = commentBlock;
    std::map<std::string, std::string> values;
};

class OggCalls : public testing::Test {
protected:
    OggCalls() {
        results = {};
        libraries.add("msvcrt.dll",
                      {{"fopen", standIn(&standInFopen)}, {"fclose", standIn(&standInFclose)}});
        libraries.add("ogg.dll");
        libraries.add("vorbis.dll", {{"vorbis_comment_query", standIn(&vorbisCommentQuery)}});
        libraries.add("vorbisfile.dll", {{"ov_open", standIn(&ovOpen)},
                                         {"ov_info", standIn(&ovInfo)},
                                         {"ov_pcm_total", standIn(&ovPcmTotal)},
                                         {"ov_read", standIn(&ovRead)},
                                         {"ov_time_seek", standIn(&ovTimeSeek)},
                                         {"ov_comment", standIn(&ovComment)},
                                         {"ov_clear", standIn(&ovClear)}});
    }

    // An opened source whose opening is not among the calls.
    DecOGG& opened() {
        source_.emplace(StandIns::api());
        EXPECT_EQ(source_->OpenSource(path), 0);
        libraries.calls.clear();
        return *source_;
    }

    std::int32_t openResult() {
        DecOGG source(StandIns::api());
        const std::int32_t result = source.OpenSource(path);
        callsAtOpen = libraries.taken();
        return result;
    }

    static Call timeSeek(double seconds) {
        const auto words = std::bit_cast<std::array<std::int32_t, 2>>(seconds);
        return {"ov_time_seek", {state, words[0], words[1]}};
    }

    static std::int32_t seek(DecOGG& source, std::int32_t value, std::int32_t mode) {
        return source.SeekTo(value, mode);
    }

    static inline OggResults results;
    static inline std::string openedPath;
    static inline std::string openedMode;
    static inline std::int32_t firstWordAtClear = 0;
    static inline std::int32_t state = 0;
    static inline bool emptyAtOpen = false;

    TempFolder folder;
    std::wstring path = folder.write(L"a.ogg", {1});
    StandIns libraries;
    std::vector<Call> callsAtOpen;

private:
    static std::int32_t __cdecl standInFopen(const char* path, const char* mode) {
        openedPath = path;
        openedMode = mode;
        StandIns::record("fopen", {});
        return results.fopen;
    }
    static std::int32_t __cdecl standInFclose(std::int32_t file) {
        StandIns::record("fclose", {file});
        return 0;
    }
    static std::int32_t __cdecl ovOpen(std::int32_t file, std::int32_t* decoder,
                                       std::int32_t initial, std::int32_t bytes) {
        StandIns::record("ov_open", {file, initial, bytes});
        state = word(decoder);
        constexpr std::ptrdiff_t words = 176; // of the decoder's state
        emptyAtOpen = std::count(decoder, decoder + words, 0) == words;
        *decoder = file;
        return results.ovOpen;
    }
    static const std::int32_t* __cdecl ovInfo(std::int32_t decoder, std::int32_t link) {
        StandIns::record("ov_info", {decoder, link});
        return results.hasInformation ? results.information.data() : nullptr;
    }
    static std::int64_t __cdecl ovPcmTotal(std::int32_t decoder, std::int32_t link) {
        StandIns::record("ov_pcm_total", {decoder, link});
        return results.pcmTotal;
    }
    static std::int32_t __cdecl ovRead(std::int32_t decoder, std::int32_t buffer,
                                       std::int32_t bytes, std::int32_t endian, std::int32_t width,
                                       std::int32_t isSigned, std::int32_t* section) {
        StandIns::record("ov_read", {decoder, buffer, bytes, endian, width, isSigned});
        *section = 0;
        return results.ovRead;
    }
    static std::int32_t __cdecl ovTimeSeek(std::int32_t decoder, double seconds) {
        const auto words = std::bit_cast<std::array<std::int32_t, 2>>(seconds);
        StandIns::record("ov_time_seek", {decoder, words[0], words[1]});
        return results.ovTimeSeek;
    }
    static std::int32_t __cdecl ovComment(std::int32_t decoder, std::int32_t link) {
        StandIns::record("ov_comment", {decoder, link});
        return results.comments;
    }
    static const char* __cdecl vorbisCommentQuery(std::int32_t block, const char* name,
                                                  std::int32_t index) {
        StandIns::record(std::string("vorbis_comment_query ") + name, {block, index});
        const auto found = results.values.find(name);
        return found == results.values.end() ? nullptr : found->second.c_str();
    }
    static std::int32_t __cdecl ovClear(const std::int32_t* decoder) {
        StandIns::record("ov_clear", {word(decoder)});
        firstWordAtClear = *decoder;
        return 0;
    }

    std::optional<DecOGG> source_;
};

} // namespace corvina::test
