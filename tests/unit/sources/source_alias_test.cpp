#include "sources/SourceAlias.h"

#include "sources/DecWAV.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(SourceAlias, has_its_own_extensions_and_plays_as_the_source_does) {
    TempFolder folder;
    SourceAlias<DecWAV> alias({L"wave", L"bwf"});
    EXPECT_THAT(alias.Extensions(), testing::ElementsAre(L"wave", L"bwf"));
    const std::wstring path = folder.write(L"a.wave", plainWav(pcm(8000, 1, 8), noise(8000)));
    ASSERT_EQ(alias.OpenSource(path), 0);
    EXPECT_EQ(alias.Info().Duration(), 1000);
    EXPECT_EQ(alias.WFXPointer()->nSamplesPerSec, 8000u);
    EXPECT_TRUE(alias.Seekable());
    std::int32_t mode = SeekMode::percent;
    EXPECT_EQ(alias.SeekTo(50, mode), 0);
    Bytes buffer(10);
    std::int32_t got = 0;
    EXPECT_EQ(alias.Read(buffer.data(), 10, got), 0);
    EXPECT_EQ(buffer[0], noise(8000)[4000]);
    EXPECT_FALSE(alias.EndOfStream());
    EXPECT_EQ(alias.CloseSource(), 0);
    EXPECT_EQ(alias.Read(buffer.data(), 10, got), 1);
}

TEST(SourceAlias, two_aliases_play_two_files) {
    TempFolder folder;
    SourceAlias<DecWAV> first({L"a"});
    SourceAlias<DecWAV> second({L"b"});
    ASSERT_EQ(first.OpenSource(folder.write(L"a", plainWav(pcm(8000, 1, 8), noise(8000)))), 0);
    ASSERT_EQ(second.OpenSource(folder.write(L"b", plainWav(pcm(8000, 1, 8), noise(4000)))), 0);
    EXPECT_EQ(first.Info().Duration(), 1000);
    EXPECT_EQ(second.Info().Duration(), 500);
}

} // namespace
} // namespace corvina::test
