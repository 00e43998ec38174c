#include "sources/DecOGG.h"

#include "platform/AnsiText.h"
#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "stream/PcmFormat.h"

#include <bit>
#include <cstring>

namespace corvina {
namespace {

constexpr std::int32_t librariesMissing = 4;
constexpr std::int32_t mostChannels = 2;
constexpr std::int32_t wholeFile = -1; // as a link of a chained file

constexpr const char* tagNames[] = {"artist", "album",       "title",
                                    "genre",  "tracknumber", "description"};

} // namespace

DecOGG::DecOGG(const LibraryApi& libraries, const FileApi& files)
    : access_(files), runtime_(libraries), ogg_(libraries), vorbis_(libraries),
      vorbisfile_(libraries) {
    librariesReady_ = runtime_.LoadDLL(L"msvcrt.dll") && ogg_.LoadDLL(L"ogg.dll") &&
                      vorbis_.LoadDLL(L"vorbis.dll") && vorbisfile_.LoadDLL(L"vorbisfile.dll");
    if (!librariesReady_)
        return;
    for (cDLL* library : {&runtime_, &ogg_, &vorbis_, &vorbisfile_})
        library->IsCDECL(true);
}

DecOGG::~DecOGG() {
    try {
        DecOGG::CloseSource();
    } catch (const RuntimeError&) {
        // The library lacks the function that frees its memory.
    }
    for (cDLL* library : {&runtime_, &ogg_, &vorbis_, &vorbisfile_})
        library->UnloadDLL();
}

std::int32_t DecOGG::OpenSource(const std::wstring& Source) {
    if (!librariesReady_)
        return librariesMissing;
    if (file_ != 0)
        CloseSource();
    if (!access_.exists(Source))
        return SourceResult::notOpen;
    file_ = runtime_.CallFunc("fopen", toAnsi(Source).text.c_str(), "rb");
    decoder_.fill(std::byte{0});
    if (vorbisfile_.CallFunc("ov_open", file_, decoder_.data(), 0, 0) < 0) {
        CloseSource();
        return SourceResult::notOpen;
    }
    const std::int32_t information = vorbisfile_.CallFunc("ov_info", decoder_.data(), wholeFile);
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

// The library would close the C stream as well, and our own fclose would then hit a stream that is
// closed, or already somebody else's. So the stream is taken out of the decoder first: its first
// field is what it reads from, and without it the library closes nothing.
void DecOGG::clearDecoder() {
    std::memset(decoder_.data(), 0, sizeof(void*));
    vorbisfile_.CallFunc("ov_clear", decoder_.data());
}

std::int32_t DecOGG::CloseSource() {
    opened_ = false;
    if (file_ == 0)
        return SourceResult::done;
    try {
        clearDecoder();
    } catch (const RuntimeError&) {
        runtime_.CallFunc("fclose", file_);
        file_ = 0;
        throw;
    }
    runtime_.CallFunc("fclose", file_);
    file_ = 0;
    return SourceResult::done;
}

std::int32_t DecOGG::Read(void* pBuffer, std::int32_t cBytes, std::int32_t& cBytesRead) {
    if (!opened_)
        return SourceResult::notOpen;
    if (atEnd_) {
        cBytesRead = 0;
        ended_ = true;
        return SourceResult::endOfData;
    }
    constexpr std::int32_t littleEndian = 0;
    constexpr std::int32_t bytesPerSample = 2;
    constexpr std::int32_t isSigned = 1;
    std::int32_t section = 0;
    cBytesRead = vorbisfile_.CallFunc("ov_read", decoder_.data(), pBuffer, cBytes, littleEndian,
                                      bytesPerSample, isSigned, &section);
    if (cBytesRead == 0) {
        ended_ = true;
        return SourceResult::endOfData;
    }
    // A negative count is a hole in the data, behind which reading goes on: no result of its own.
    if (cBytesRead > 0)
        positionMs_ =
            roundToInt32(positionMs_ +
                         divide(divide(multiply32(cBytesRead, 1000), stream_.rate) / bytesPerSample,
                                stream_.channels));
    return SourceResult::done;
}

std::int32_t DecOGG::SeekTo(std::int32_t Value, std::int32_t& Mode) {
    if (!opened_)
        return SourceResult::done;
    double seconds = 0;
    if (Mode == SeekMode::percent) {
        if (Value < 0 || Value > 100)
            return SourceResult::outOfRange;
        seconds = durationMs_ / 1000.0 / 100.0 * Value;
    } else if (Mode == SeekMode::seconds) {
        if (Value < 0 || Value > durationMs_ / 1000.0)
            return SourceResult::outOfRange;
        seconds = Value;
    }
    positionMs_ = roundToInt32(seconds * 1000);
    const auto words = std::bit_cast<std::array<std::int32_t, 2>>(seconds);
    const std::int32_t refused =
        vorbisfile_.CallFunc("ov_time_seek", decoder_.data(), words[0], words[1]);
    // The library refuses the very end, and stays where it was.
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

// The first value of that name; empty where there is none.
std::wstring DecOGG::comment(std::int32_t block, const char* name) {
    if (block == 0)
        return {};
    const std::int32_t value = vorbis_.CallFunc("vorbis_comment_query", block, name, 0);
    return value == 0 ? std::wstring() : fromAnsiBytes(std::bit_cast<const char*>(value));
}

} // namespace corvina
