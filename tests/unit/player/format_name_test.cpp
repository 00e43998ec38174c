// The format of a file in words, where the content says it and where only the name does.

#include "player/FormatName.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class FormatName : public ::testing::Test {
protected:
    std::wstring of(const std::wstring& name, const Bytes& content = {1, 2, 3}) {
        return formatName(folder.write(name, content));
    }
    TempFolder folder;
};

TEST_F(FormatName, is_what_the_content_says_whatever_the_file_is_called) {
    EXPECT_EQ(of(L"song.mp3", plainWav(pcm(8000, 1, 8), Bytes(8))), L"WAV, 8 bits");
}

TEST_F(FormatName, is_the_extensions_if_the_content_says_nothing) {
    EXPECT_EQ(of(L"song.OGG"), L"Ogg");
    EXPECT_EQ(of(L"song.aifc"), L"AIFF-C");
    EXPECT_EQ(of(L"song.other"), L"OTHER");
    EXPECT_EQ(formatName(L"no such file.mp3"), L"MP3");
    EXPECT_EQ(formatName(L"song"), L"");
}

TEST_F(FormatName, of_some_extensions_is_settled_whatever_they_hold) {
    EXPECT_EQ(of(L"track01.cda", plainWav(pcm(8000, 1, 8), Bytes(8))), L"Audio CD track");
    EXPECT_EQ(of(L"speech.VOX", plainWav(pcm(8000, 1, 8), Bytes(8))), L"Dialogic ADPCM");
}

} // namespace
} // namespace corvina::test
