#pragma once

// The decoder libraries used as plainly as can be, to compare the sources with. Each class opens a
// file, hands out its bytes from the start on (fewer than asked are no end, 0 are) and seeks.

#include "platform/AnsiText.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::test {

template <typename Function>
[[nodiscard]] Function exportOf(const char* library, const char* name) {
    const FARPROC found = ::GetProcAddress(::LoadLibraryA(library), name);
    if (!found)
        throw std::runtime_error(std::string(library) + " lacks " + name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

class BareOgg {
public:
    explicit BareOgg(const std::wstring& path) {
        const auto open = exportOf<int (*)(FILE*, void*, const char*, long)>(library, "ov_open");
        FILE* const file = std::fopen(toAnsi(path).text.c_str(), "rb");
        if (!file || open(file, state_.data(), nullptr, 0) != 0)
            throw std::runtime_error("ov_open");
    }
    BareOgg(const BareOgg&) = delete;
    BareOgg& operator=(const BareOgg&) = delete;
    ~BareOgg() { exportOf<int (*)(void*)>(library, "ov_clear")(state_.data()); }

    std::int32_t read(void* to, std::int32_t bytes) {
        int section = 0;
        return read_(state_.data(), to, bytes, 0, 2, 1, &section);
    }
    void seekSeconds(double seconds) { timeSeek_(state_.data(), seconds); }

private:
    static constexpr const char* library = "vorbisfile.dll";
    using Read = long (*)(void*, void*, int, int, int, int, int*);
    alignas(16) std::array<std::byte, 4096> state_{};
    Read read_ = exportOf<Read>(library, "ov_read");
    int (*timeSeek_)(void*, double) = exportOf<int (*)(void*, double)>(library, "ov_time_seek");
};

class BareSnd {
public:
    explicit BareSnd(const std::wstring& path) {
        const auto open = exportOf<void* (*)(const char*, int, std::int32_t*)>(library, "sf_open");
        file_ = open(toAnsi(path).text.c_str(), 16, info_.data());
        if (!file_)
            throw std::runtime_error("sf_open");
    }
    BareSnd(const BareSnd&) = delete;
    BareSnd& operator=(const BareSnd&) = delete;
    ~BareSnd() { exportOf<int (*)(void*)>(library, "sf_close")(file_); }

    std::int32_t read(void* to, std::int32_t bytes) {
        return static_cast<std::int32_t>(read_(file_, to, bytes / 2)) * 2;
    }
    void seekSeconds(double seconds) {
        seek_(file_, static_cast<std::int64_t>(seconds * info_[2]), 0);
    }

private:
    static constexpr const char* library = "libsndfile.dll";
    using Read = std::int64_t (*)(void*, void*, std::int64_t);
    using Seek = std::int64_t (*)(void*, std::int64_t, int);
    alignas(8) std::array<std::int32_t, 8> info_{}; // third: the rate
    void* file_ = nullptr;
    Read read_ = exportOf<Read>(library, "sf_read_short");
    Seek seek_ = exportOf<Seek>(library, "sf_seek");
};

class BareApe {
public:
    explicit BareApe(const std::wstring& path) {
        const auto create = exportOf<std::int32_t(__stdcall*)(const char*, std::int32_t*)>(
            library, "c_APEDecompress_Create");
        std::int32_t error = 0;
        decoder_ = create(toAnsi(path).text.c_str(), &error);
        if (!decoder_)
            throw std::runtime_error("c_APEDecompress_Create");
        const auto info = exportOf<std::int32_t(__stdcall*)(std::int32_t, std::int32_t, int, int)>(
            library, "c_APEDecompress_GetInfo");
        rate_ = info(decoder_, 1003, 0, 0);
        blockAlign_ = info(decoder_, 1007, 0, 0);
    }
    BareApe(const BareApe&) = delete;
    BareApe& operator=(const BareApe&) = delete;
    ~BareApe() {
        exportOf<std::int32_t(__stdcall*)(std::int32_t)>(library,
                                                         "c_APEDecompress_Destroy")(decoder_);
    }

    std::int32_t read(void* to, std::int32_t bytes) {
        std::int32_t blocks = 0;
        getData_(decoder_, to, bytes / blockAlign_, &blocks);
        return blocks * blockAlign_;
    }
    void seekSeconds(double seconds) {
        seek_(decoder_, static_cast<std::int32_t>(seconds * rate_));
    }

private:
    static constexpr const char* library = "MACDll.dll";
    using GetData = std::int32_t(__stdcall*)(std::int32_t, void*, std::int32_t, std::int32_t*);
    using Seek = std::int32_t(__stdcall*)(std::int32_t, std::int32_t);
    std::int32_t decoder_ = 0;
    std::int32_t rate_ = 0;
    std::int32_t blockAlign_ = 0;
    GetData getData_ = exportOf<GetData>(library, "c_APEDecompress_GetData");
    Seek seek_ = exportOf<Seek>(library, "c_APEDecompress_Seek");
};

template <typename Decoder>
[[nodiscard]] std::vector<std::uint8_t> readRest(Decoder& decoder) {
    std::vector<std::uint8_t> result;
    std::vector<std::uint8_t> buffer(8000);
    for (;;) {
        const std::int32_t got = decoder.read(buffer.data(), 8000);
        if (got <= 0)
            return result;
        result.insert(result.end(), buffer.begin(), buffer.begin() + got);
    }
}

} // namespace corvina::test
