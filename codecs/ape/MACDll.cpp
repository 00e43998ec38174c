// The C interface of the Monkey's Audio decoder library, as far as a player of files needs it.
//
// A handle is a number that is never given out twice, so that one that was closed, or never
// existed, is known as such. Every function takes any argument: what is asked of no decoder, or
// with an impossible buffer, count or field, answers 0 or fails.

#include "ApeDecoder.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <windows.h>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace {

constexpr int succeeded = 0;
constexpr int failed = -1;

enum Field {
    sampleRate = 1003,
    bitsPerSample = 1004,
    channels = 1006,
    blockAlign = 1007, // bytes
    totalBlocks = 1016,
    lengthMs = 1017,
    averageKilobits = 1018, // a second
    positionMs = 2001,
};

class Decoders {
public:
    int add(std::shared_ptr<ApeDecoder> decoder) {
        const std::lock_guard lock(mutex_);
        decoders_.emplace(++last_, std::move(decoder));
        return last_;
    }
    std::shared_ptr<ApeDecoder> find(int handle) {
        const std::lock_guard lock(mutex_);
        const auto found = decoders_.find(handle);
        return found == decoders_.end() ? nullptr : found->second;
    }
    bool remove(int handle) {
        const std::lock_guard lock(mutex_);
        return decoders_.erase(handle) != 0;
    }

private:
    std::mutex mutex_;
    std::map<int, std::shared_ptr<ApeDecoder>> decoders_;
    int last_ = 0;
};

Decoders& decoders() {
    static Decoders instance;
    return instance;
}

// Path as the file layer of the decoder reads it, from the system's ANSI code page.
std::string utf8Path(const char* path) {
    const int length = MultiByteToWideChar(CP_ACP, 0, path, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, path, -1, wide.data(), length);
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, result.data(), size, nullptr, nullptr);
    result.pop_back();
    return result;
}

void quietDecoder() {
    av_log_set_level(AV_LOG_QUIET);
    // A header may claim any number of frames. A table of this size holds more than a week of
    // sound.
    av_max_alloc(64u << 20);
}

int clamped(std::int64_t value) {
    return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

int info(const ApeDecoder& decoder, int field) {
    switch (field) {
    case sampleRate:
        return decoder.sampleRate();
    case bitsPerSample:
        return decoder.bitsPerSample();
    case channels:
        return decoder.channels();
    case blockAlign:
        return decoder.blockAlign();
    case totalBlocks:
        return clamped(decoder.totalBlocks());
    case lengthMs:
        return clamped(decoder.durationMs());
    case averageKilobits:
        return clamped(decoder.averageKilobits());
    case positionMs:
        return clamped(decoder.positionMs());
    default:
        return 0;
    }
}

} // namespace

extern "C" {

int __stdcall c_APEDecompress_Create(const char* path, int* error) {
    int handle = 0;
    try {
        if (path) {
            quietDecoder();
            handle = decoders().add(std::make_shared<ApeDecoder>(utf8Path(path)));
        }
    } catch (const std::exception&) {
    }
    if (error)
        *error = handle ? succeeded : failed;
    return handle;
}

int __stdcall c_APEDecompress_GetInfo(int handle, int field, int, int) {
    const std::shared_ptr<ApeDecoder> decoder = decoders().find(handle);
    return decoder ? info(*decoder, field) : 0;
}

int __stdcall c_APEDecompress_GetData(int handle, char* buffer, int blocks, int* retrieved) {
    std::int64_t count = 0;
    int result = failed;
    try {
        const std::shared_ptr<ApeDecoder> decoder = decoders().find(handle);
        if (decoder && blocks >= 0 && (buffer || blocks == 0)) {
            count = decoder->read(reinterpret_cast<std::uint8_t*>(buffer), blocks);
            result = succeeded;
        }
    } catch (const std::exception&) {
    }
    if (retrieved)
        *retrieved = static_cast<int>(count);
    return result;
}

int __stdcall c_APEDecompress_Seek(int handle, int block) {
    const std::shared_ptr<ApeDecoder> decoder = decoders().find(handle);
    return decoder && decoder->seek(block) ? succeeded : failed;
}

int __stdcall c_APEDecompress_Destroy(int handle) {
    return decoders().remove(handle) ? succeeded : failed;
}
}
