#pragma once

// A WAV source over the real file functions, and the files that it is tried with.

#include "sources/DecWAV.h"

#include "runtime/RuntimeError.h"
#include "support/FaultyFiles.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace corvina::test {

// Bytes of data from which on a read is cut exactly at the end.
inline constexpr std::int32_t largeData = 58'375'640;

class DecWAVTest : public testing::Test {
protected:
    void SetUp() override { fileFaults.disarm(); }

    std::int32_t open(const Bytes& bytes) {
        return wav_.OpenSource(folder_.write(std::to_wstring(++files_) + L".wav", bytes));
    }

    // 16-bit stereo at 44100 Hz.
    void openPlain(std::size_t dataBytes) {
        ASSERT_EQ(open(plainWav(pcm(44100, 2, 16), noise(dataBytes))), 0);
    }

    // Another chunk follows the data.
    void openWithMoreBehind(std::size_t dataBytes) {
        ASSERT_EQ(open(WavBytes()
                           .format(pcm(44100, 2, 16))
                           .chunk("data", noise(dataBytes))
                           .chunk("LIST", noise(2000, 9))
                           .bytes()),
                  0);
    }

    // A file of that many bytes of data (zeros that take no room) and more bytes behind them.
    void openSparse(std::int32_t dataBytes, std::int32_t behind) {
        const Bytes head = WavBytes()
                               .format(pcm(44100, 2, 16))
                               .chunk("data", {}, static_cast<std::uint32_t>(dataBytes))
                               .bytes();
        const std::wstring path = folder_.write(L"sparse.wav", head);
        const HANDLE file =
            ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ::SetFilePointer(file, dataBytes + behind, nullptr, FILE_END);
        ASSERT_TRUE(::SetEndOfFile(file));
        ::CloseHandle(file);
        ASSERT_EQ(wav_.OpenSource(path), 0);
    }

    std::int32_t read(std::int32_t bytes, std::int32_t& got) {
        buffer_.assign(static_cast<std::size_t>(bytes), 0xEE);
        return wav_.Read(buffer_.data(), bytes, got);
    }

    std::int32_t seek(std::int32_t value, std::int32_t mode) { return wav_.SeekTo(value, mode); }

    // Leaves that many bytes of the data unread.
    void leave(std::int32_t bytes, std::int32_t dataBytes) {
        Bytes skipped(static_cast<std::size_t>(dataBytes - bytes));
        std::int32_t got = 0;
        ASSERT_EQ(wav_.Read(skipped.data(), dataBytes - bytes, got), 0);
        ASSERT_EQ(got, dataBytes - bytes);
    }

    // Where the next byte comes from, counted from the first data byte.
    std::int32_t dataPosition(const Bytes& data) {
        std::int32_t got = 0;
        read(8, got);
        const auto found = std::search(data.begin(), data.end(), buffer_.begin(), buffer_.end());
        return static_cast<std::int32_t>(found - data.begin());
    }

    template <typename Body>
    static std::int32_t errorOf(Body&& body) {
        try {
            body();
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0;
    }

    TempFolder folder_;
    DecWAV wav_{faultyFileApi, faultyMmioApi};
    Bytes buffer_;
    int files_ = 0;
};

} // namespace corvina::test
