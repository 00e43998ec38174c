// Damaged files and failing platform calls, with every block of memory guarded.

#include "sources/DecWAV.h"

#include "runtime/RuntimeError.h"
#include "support/FaultyFiles.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using namespace test;

class HostileWav : public testing::Test {
protected:
    void SetUp() override { fileFaults.disarm(); }
    void TearDown() override { EXPECT_EQ(openFiles, 0); }

    // Uses everything a source offers. A run-time error is a result like any other.
    static std::int32_t useAll(DecWAV& wav, const std::wstring& path) {
        const std::int32_t result = wav.OpenSource(path);
        const auto attempt = [](auto&& body) {
            try {
                body();
            } catch (const RuntimeError&) {
            }
        };
        if (const WAVEFORMATEX* const record = wav.WFXPointer()) {
            std::uint8_t sum = 0;
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(record);
            for (std::size_t i = 0; i < sizeof *record + record->cbSize; ++i)
                sum = static_cast<std::uint8_t>(sum + bytes[i]);
            EXPECT_LE(sum, 255);
        }
        attempt([&] { (void)wav.Duration(); });
        attempt([&] { (void)wav.Position(); });
        attempt([&] { (void)wav.Bitrate(); });
        attempt([&] { (void)wav.EndOfStream(); });
        for (const std::int32_t mode : {0, 1, 2})
            for (const std::int32_t value : {0, 1, 50, 100, -1, 2147483647, -2147483647 - 1})
                attempt([&] {
                    std::int32_t m = mode;
                    (void)wav.SeekTo(value, m);
                });
        for (const std::int32_t bytes : {0, 1, 999, 1000, -1, -2147483647 - 1}) {
            Bytes buffer(1000);
            std::int32_t got = 0;
            attempt([&] { (void)wav.Read(buffer.data(), bytes, got); });
            EXPECT_LE(got, 1000);
        }
        wav.CloseSource();
        return result;
    }

    std::int32_t useAll(const Bytes& bytes) {
        DecWAV wav(faultyFileApi, faultyMmioApi);
        return useAll(wav, folder_.write(L"a.wav", bytes));
    }

    TempFolder folder_;
};

Bytes fileWithFormatSize(std::uint32_t declared) {
    return WavBytes().chunk("data", noise(100)).chunk("fmt ", Bytes(18, 1), declared).bytes();
}

TEST_F(HostileWav, a_format_chunk_that_claims_more_than_the_file_holds_is_refused) {
    EXPECT_EQ(useAll(fileWithFormatSize(18)), 0);
    for (const std::uint32_t size :
         {19u, 1000u, 65553u, 65554u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFF0u})
        EXPECT_EQ(useAll(fileWithFormatSize(size)), 1) << size;
}

TEST_F(HostileWav, a_data_chunk_may_claim_any_size) {
    for (const std::uint32_t size :
         {0u, 99u, 101u, 58375639u, 58375640u, 0x7FFFFFD3u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(
            useAll(WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(100), size).bytes()), 0)
            << size;
}

TEST_F(HostileWav, a_truncated_file_ends_at_its_last_byte) {
    const Bytes whole = WavBytes().format(pcm(44100, 2, 16), 18).chunk("data", noise(200)).bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length)
        EXPECT_EQ(useAll(Bytes(whole.begin(), whole.begin() + static_cast<int>(length))),
                  length < 46 ? 1 : 0)
            << length;
}

TEST_F(HostileWav, any_byte_of_the_header_may_be_anything) {
    const Bytes whole = plainWav(pcm(44100, 2, 16), noise(100));
    for (std::size_t at = 0; at < 44; ++at)
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<std::uint8_t>(value);
            useAll(damaged);
        }
}

TEST_F(HostileWav, garbage_behind_a_good_start_is_survived) {
    const Bytes start = WavBytes().format(pcm(44100, 2, 16)).bytes("WAVE", 0x7FFFFFFF);
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        Bytes file = start;
        const Bytes garbage = noise(500, seed);
        file.insert(file.end(), garbage.begin(), garbage.end());
        useAll(file);
    }
}

TEST_F(HostileWav, zero_fields_are_survived) {
    for (int field = 0; field < 5; ++field) {
        WAVEFORMATEX record = pcm(44100, 2, 16);
        (field == 0   ? record.nChannels
         : field == 1 ? record.nBlockAlign
         : field == 2 ? record.wBitsPerSample
                      : record.cbSize) = 0;
        if (field == 3)
            record.nSamplesPerSec = 0;
        if (field == 4)
            record.nAvgBytesPerSec = 0;
        EXPECT_EQ(useAll(plainWav(record, noise(100))), 0);
    }
    EXPECT_EQ(useAll(plainWav(WAVEFORMATEX{}, noise(100))), 0);
}

TEST_F(HostileWav, names_of_any_kind_return_1) {
    DecWAV wav(faultyFileApi, faultyMmioApi);
    for (const std::size_t length : {0u, 259u, 260u, 261u, 32768u})
        EXPECT_EQ(useAll(wav, std::wstring(length, L'n')), 1) << length;
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(10)));
    EXPECT_EQ(useAll(wav, path + std::wstring(1, L'\0') + L"x"), 1);
    EXPECT_EQ(useAll(wav, folder_.path() + L"\\\x4E00.wav"), 1);
    EXPECT_EQ(useAll(wav, folder_.path() + L"\\*.wav"), 1);
}

TEST_F(HostileWav, any_failure_of_the_platform_leaves_nothing_open_and_the_next_open_works) {
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(16000)));
    DecWAV wav(faultyFileApi, faultyMmioApi);
    forEachFaultAndPair(fileFaults, [&] {
        const std::int32_t result = useAll(wav, path);
        EXPECT_TRUE(result == 0 || result == 1);
        EXPECT_EQ(openFiles, 0);
    });
    EXPECT_EQ(useAll(wav, path), 0);
}

TEST_F(HostileWav, a_failure_while_opening_returns_1) {
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(16000)));
    for (const char* const function : {"CreateFile", "mmioOpen", "mmioDescend", "mmioRead",
                                       "mmioSeek", "ReadFile", "mmioStringToFOURCC"}) {
        DecWAV wav(faultyFileApi, faultyMmioApi);
        fileFaults.arm(function, 1, Faults::Lasting::forever);
        EXPECT_EQ(wav.OpenSource(path), 1) << function;
        fileFaults.disarm();
        EXPECT_EQ(wav.OpenSource(path), 0) << function;
    }
}

} // namespace
} // namespace corvina
