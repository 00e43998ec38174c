#include "sources/DecOGG.h"

#include "platform/AnsiText.h"
#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"
#include "stream/FileName.h"
#include "stream/PcmFormat.h"
#include "stream/SeekTarget.h"

#include <bit>
#include <cstring>
#include <optional>
#include <utility>

namespace corvina {
namespace {

constexpr std::int32_t librariesMissing = 4;
constexpr std::int32_t mostChannels = 2;
constexpr std::int32_t wholeFile = -1; // as a link of a chained file

constexpr const char* tagNames[] = {"artist", "album",       "title",
                                    "genre",  "tracknumber", "description"};

} // namespace

DecOGG::DecOGG(const LibraryApi& libraries, const FileApi& files)
    : access_(files), vorbisfile_(libraries), vorbis_(libraries), ogg_(libraries),
      runtime_(libraries) {
    librariesReady_ = runtime_.LoadDLL(L"msvcrt.dll") && ogg_.LoadDLL(L"ogg.dll") &&
                      vorbis_.LoadDLL(L"vorbis.dll") && vorbisfile_.LoadDLL(L"vorbisfile.dll");
    if (!librariesReady_)
        return;
    for (OptionalLibrary* library : {&runtime_, &ogg_, &vorbis_, &vorbisfile_})
        library->IsCDECL(true);
}

DecOGG::~DecOGG() {
    try {
        DecOGG::CloseSource();
    } catch (const RuntimeError&) {
        // The library lacks the function that frees its memory.
    }
}

std::int32_t DecOGG::OpenSource(const std::wstring& source) {
    if (!librariesReady_)
        return librariesMissing;
    if (file_ != 0)
        CloseSource();
    if (!access_.exists(source))
        return SourceResult::notOpen;
    const FileName name = fileName(source);
    file_ = name.fitsAnsi ? runtime_.CallFunc("fopen", name.ansi.c_str(), "rb")
                          : runtime_.CallFunc("_wfopen", name.wide.c_str(), L"rb");
    decoder_.fill(std::byte{0});
    if (vorbisfile_.CallFunc("ov_open", file_, decoder_.data(), 0, 0) < 0) {
        CloseSource();
        return SourceResult::notOpen;
    }
    const std::int32_t information = vorbisfile_.CallFunc("ov_info", decoder_.data(), wholeFile);
    // Deliberate: the decoder is not cleared here; the next open or close does it.
    if (information == 0)
        return SourceResult::notOpen;
    std::memcpy(&stream_, std::bit_cast<const void*>(information), sizeof stream_);
    if (stream_.rate < 1 || stream_.channels > mostChannels) {
        CloseSource();
        return SourceResult::notOpen;
    }
    const std::int32_t samples = vorbisfile_.CallFunc("ov_pcm_total", decoder_.data(), wholeFile);
    durationMs_ = roundToInt32(divide(samples, stream_.rate) * 1000);
    positionMs_ = 0;
    ended_ = false;
    atEnd_ = false;
    readTags();
    format_ = pcmFormat(static_cast<DWORD>(stream_.rate), static_cast<WORD>(stream_.channels), 16);
    opened_ = true;
    return SourceResult::done;
}

std::int32_t DecOGG::CloseSource() {
    opened_ = false;
    const std::int32_t file = std::exchange(file_, 0);
    if (file == 0)
        return SourceResult::done;
    // The library would close the C stream as well, and our own fclose would then meet a stream
    // that is closed, or already somebody else's. So the stream is taken out of the decoder first:
    // its first field is what it reads from, and without it the library closes nothing.
    std::memset(decoder_.data(), 0, sizeof(void*));
    std::optional<RuntimeError> notCleared;
    try {
        vorbisfile_.CallFunc("ov_clear", decoder_.data());
    } catch (const RuntimeError& error) {
        notCleared = error;
    }
    runtime_.CallFunc("fclose", file);
    if (notCleared)
        throw RuntimeError(*notCleared);
    return SourceResult::done;
}

std::int32_t DecOGG::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    if (!opened_)
        return SourceResult::notOpen;
    if (atEnd_) {
        bytesRead = 0;
        ended_ = true;
        return SourceResult::endOfData;
    }
    constexpr std::int32_t littleEndian = 0;
    constexpr std::int32_t bytesPerSample = 2;
    constexpr std::int32_t isSigned = 1;
    std::int32_t section = 0;
    bytesRead = vorbisfile_.CallFunc("ov_read", decoder_.data(), buffer, bytes, littleEndian,
                                     bytesPerSample, isSigned, &section);
    if (bytesRead == 0) {
        ended_ = true;
        return SourceResult::endOfData;
    }
    // A negative count is a hole in the data, behind which reading goes on: no result of its own.
    if (bytesRead > 0)
        positionMs_ = roundToInt32(
            positionMs_ + divide(divide(multiply32(bytesRead, 1000), stream_.rate) / bytesPerSample,
                                 stream_.channels));
    return SourceResult::done;
}

std::int32_t DecOGG::SeekTo(std::int32_t value, std::int32_t& mode) {
    if (!opened_)
        return SourceResult::done;
    const std::optional<double> seconds = seekTarget(
        *this, value, mode, [&] { return durationMs_ / 1000.0 / 100.0 * value; },
        [&] { return static_cast<double>(value); });
    if (!seconds)
        return SourceResult::outOfRange;
    positionMs_ = roundToInt32(*seconds * 1000);
    const auto words = std::bit_cast<std::array<std::int32_t, 2>>(*seconds);
    const std::int32_t refused =
        vorbisfile_.CallFunc("ov_time_seek", decoder_.data(), words[0], words[1]);
    // The library refuses the very end and keeps its position.
    atEnd_ = refused != 0 && positionMs_ >= durationMs_;
    ended_ = false;
    return SourceResult::done;
}

std::int16_t DecOGG::Channels() {
    return narrow16(stream_.channels);
}

void DecOGG::readTags() {
    tags_.ClearTags();
    for (const char* name : tagNames) {
        const std::int32_t block = vorbisfile_.CallFunc("ov_comment", decoder_.data(), wholeFile);
        std::wstring value = comment(block, name);
        if (!value.empty())
            tags_.AddTag(fromAnsi(name), std::move(value));
    }
}

// The first value of that name; empty if there is none.
std::wstring DecOGG::comment(std::int32_t block, const char* name) {
    if (block == 0)
        return {};
    const std::int32_t value = vorbis_.CallFunc("vorbis_comment_query", block, name, 0);
    return value == 0 ? std::wstring() : fromAnsiBytes(std::bit_cast<const char*>(value));
}

} // namespace corvina
