#pragma once

// The sources over the real libraries and files of public tools: what is read and sought in them.

#include "stream/cSoundSTRM.h"
#include "support/BareDecoders.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {

// The samples of a WAV file with the plain 44-byte header.
inline Bytes samplesOf(const std::wstring& wav) {
    const Bytes bytes = fileBytes(mediaFile(wav));
    return {bytes.begin() + 44, bytes.end()};
}

struct Reading {
    Bytes bytes;
    std::int32_t result = 0; // the last
    int holes = 0;           // negative counts
};

// Reads to the end, in pieces of that many bytes.
inline Reading readToEnd(cSoundSTRM& source, std::int32_t piece = 8000) {
    Reading reading;
    Bytes buffer(static_cast<std::size_t>(piece));
    for (int reads = 0; reading.result == 0 && reads < 100'000; ++reads) {
        std::int32_t got = 0;
        reading.result = source.Read(buffer.data(), piece, got);
        reading.holes += got < 0;
        if (got > 0)
            reading.bytes.insert(reading.bytes.end(), buffer.begin(), buffer.begin() + got);
    }
    return reading;
}

inline void seekTo(cSoundSTRM& source, std::int32_t value, std::int32_t mode) {
    EXPECT_EQ(source.SeekTo(value, mode), 0);
}

// From the start, and from every place a seek can reach, a source gives what its bare library
// gives.
template <typename Source, typename Bare>
void expectSameAsBare(const std::wstring& name) {
    const std::wstring path = mediaFile(name);
    Source source;
    ASSERT_EQ(source.OpenSource(path), 0);
    Bare bare(path);
    const Reading whole = readToEnd(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_TRUE(source.EndOfStream());
    EXPECT_GT(whole.bytes.size(), 1000u);
    EXPECT_TRUE(whole.bytes == readRest(bare)) << toAnsi(name).text;
    for (const std::int32_t seconds : {2, 0, 1}) {
        seekTo(source, seconds, 1);
        EXPECT_EQ(source.Position(), seconds * 1000);
        bare.seekSeconds(seconds);
        EXPECT_TRUE(readToEnd(source).bytes == readRest(bare)) << seconds;
    }
    seekTo(source, 50, 0);
    const Bytes half = readToEnd(source).bytes;
    EXPECT_EQ(half.size(), whole.bytes.size() / 2);
    EXPECT_TRUE(std::equal(half.rbegin(), half.rend(), whole.bytes.rbegin()));
}

template <typename Source>
void expectEndBehindSeekToEnd(const std::wstring& name) {
    Source source;
    ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
    seekTo(source, 100, 0);
    char buffer[400];
    std::int32_t got = 7;
    EXPECT_EQ(source.Read(buffer, 400, got), 5);
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(source.EndOfStream());
    seekTo(source, 0, 0);
    EXPECT_EQ(source.Read(buffer, 400, got), 0);
    EXPECT_GT(got, 0);

    seekTo(source, 100, 0);
    EXPECT_EQ(source.CloseSource(), 0);
    ASSERT_EQ(source.OpenSource(mediaFile(name)), 0);
    EXPECT_EQ(source.Read(buffer, 400, got), 0) << "an opened file begins at its start";
}

// The medium plays the same under a name that the code page lacks, and under a path longer than
// MAX_PATH. extension: with its dot.
template <typename Source>
void expectSameUnderAnyName(const std::wstring& name, const std::wstring& extension) {
    TempFolder folder;
    const std::wstring verbatim = L"\\\\?\\";
    const std::wstring deep = folder.path() + L"\\" + std::wstring(200, L'd');
    ASSERT_TRUE(::CreateDirectoryW((verbatim + deep).c_str(), nullptr));
    const std::wstring longPath = deep + L"\\" + std::wstring(100, L'n') + extension;
    ASSERT_TRUE(::CopyFileW(mediaFile(name).c_str(), (verbatim + longPath).c_str(), FALSE));
    Source expected;
    ASSERT_EQ(expected.OpenSource(mediaFile(name)), 0);
    const Bytes samples = readToEnd(expected).bytes;
    EXPECT_FALSE(samples.empty());
    for (const std::wstring& path :
         {folder.write(L"\x4E00" + extension, fileBytes(mediaFile(name))), longPath}) {
        Source source;
        ASSERT_EQ(source.OpenSource(path), 0);
        EXPECT_TRUE(readToEnd(source).bytes == samples);
        source.CloseSource();
    }
    ::DeleteFileW((verbatim + longPath).c_str());
    ::RemoveDirectoryW((verbatim + deep).c_str());
}

} // namespace corvina::test
