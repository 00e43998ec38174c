// The C interface of the Monkey's Audio decoder library, as far as a player of files needs it.
//
// A handle is a number that is never given out twice, so that one that was closed, or never
// existed, is recognised. Every function takes any argument: a call for a handle that is none, or
// with an impossible buffer, count or field, returns 0 or fails.

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

std::wstring widePath(const char* ansiPath) {
    const int length = MultiByteToWideChar(CP_ACP, 0, ansiPath, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(length, 1)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, ansiPath, -1, wide.data(), length);
    wide.pop_back();
    return wide;
}

// The path in the encoding that the decoder opens files by.
std::string utf8Path(const wchar_t* path) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, path, -1, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, path, -1, result.data(), size, nullptr, nullptr);
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

// path() is called where what it throws is caught.
template <typename Path>
int create(const Path& path, int* error) {
    int handle = 0;
    try {
        quietDecoder();
        handle = decoders().add(std::make_shared<ApeDecoder>(path()));
    } catch (const std::exception&) {
    }
    if (error)
        *error = handle ? succeeded : failed;
    return handle;
}

} // namespace

extern "C" {

int __stdcall c_APEDecompress_Create(const char* path, int* error) {
    return create([=] { return utf8Path(path ? widePath(path).c_str() : L""); }, error);
}

int __stdcall c_APEDecompress_CreateW(const wchar_t* path, int* error) {
    return create([=] { return utf8Path(path ? path : L""); }, error);
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
