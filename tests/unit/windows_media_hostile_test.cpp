// Damaged files through the system's own reader, with every block of our memory guarded.

#include "runtime/RuntimeError.h"
#include "sources/DecWMAMP3.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace corvina {
namespace {

using namespace test;
using Bytes = std::vector<std::uint8_t>;

Bytes contents(const std::wstring& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    Bytes bytes(file == INVALID_HANDLE_VALUE ? 0 : ::GetFileSize(file, nullptr));
    DWORD got = 0;
    if (!bytes.empty())
        (void)::ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
    ::CloseHandle(file);
    return bytes;
}

class HostileMedia : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { ASSERT_FALSE(good_.empty()); }

    // Opens a file with these bytes and uses all that the source offers; what the open answered.
    std::int32_t use(const Bytes& bytes) {
        const std::wstring path = folder_.path() + L"\\" + name_;
        write(path, bytes);
        const std::int32_t result = source_.OpenSource(path);
        EXPECT_TRUE(result == 0 || result == 1 || result == 12) << result;
        if (result == 0) {
            readSome();
            for (const std::int32_t percent : {50, 0}) {
                std::int32_t mode = SeekMode::percent;
                const std::int32_t sought = source_.SeekTo(percent, mode);
                EXPECT_TRUE(sought == 0 || sought == 4) << sought;
                readSome();
            }
        }
        EXPECT_EQ(source_.CloseSource(), result == 0 ? 0 : 1);
        return result;
    }

    // No file here is as long as that when it is whole.
    void readSome() {
        std::int32_t result = 0;
        for (std::int32_t total = 0; result == 0 && total < 1'000'000;) {
            std::int32_t got = 0;
            result = source_.Read(buffer_.data(), static_cast<std::int32_t>(buffer_.size()), got);
            ASSERT_TRUE(result == 0 || result == 5) << result;
            total += got;
        }
    }

    void write(const std::wstring& path, const Bytes& bytes) {
        const HANDLE file =
            ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        (void)::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        ::CloseHandle(file);
        ASSERT_EQ(written, bytes.size());
    }

    TempFolder folder_;
    const std::wstring name_ =
        std::wstring(L"a.") + std::wstring(GetParam(), GetParam() + std::strlen(GetParam()));
    const std::wstring path_ = folder_.file(name_);
    const Bytes good_ = contents(mediaFile(L"short" + name_.substr(1)));
    Bytes buffer_ = Bytes(8000);
    DecWMAMP3 source_;
};

INSTANTIATE_TEST_SUITE_P(Kinds, HostileMedia, testing::Values("mp3", "wma"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(HostileMedia, bit_flipped_files_are_survived) {
    const int count = std::getenv("N") ? std::atoi(std::getenv("N")) : 10'000;
    const auto start = std::chrono::steady_clock::now();
    int opened = 0;
    for (int seed = 1; seed <= count; ++seed) {
        std::mt19937 random(static_cast<unsigned>(seed));
        Bytes bytes = good_;
        for (unsigned flips = 1 + random() % 8; flips > 0; --flips)
            bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1u << random() % 8);
        if (std::getenv("ONLY") && std::atoi(std::getenv("ONLY")) != seed) continue;
        if (std::getenv("V")) { std::printf("%d\n", seed); std::fflush(stdout); }
        opened += use(bytes) == 0;
        if (seed % 500 == 0) { std::printf("%d %d %lld\n", seed, opened, (long long)std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count()); std::fflush(stdout); }
    }
}

} // namespace
} // namespace corvina
