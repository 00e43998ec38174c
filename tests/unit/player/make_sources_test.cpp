// The sources of the player, in their list.

#include "player/MakeSources.h"
#include "player/SourceList.h"
#include "sources/DecAPE.h"
#include "sources/DecCDA.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "sources/DecWMAMP3.h"
#include "sources/MediaFoundationSource.h"
#include "sources/SndfileSource.h"
#include "sources/SourceAlias.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;

class RealSources : public ::testing::Test {
protected:
    RealSources() {
        for (auto& source : makeSources())
            list.add(std::move(source));
    }

    template <typename Source>
    [[nodiscard]] bool serves(const std::wstring& file) const {
        return dynamic_cast<Source*>(list.findForFile(file).get()) != nullptr;
    }

    SourceList list;
};

TEST_F(RealSources, stand_in_the_order_in_which_an_extension_is_looked_for) {
    EXPECT_EQ(list.count(), 11u);
    EXPECT_THAT(list.allExtensions(),
                ElementsAre(L"ape", L"ogg", L"wav", L"au", L"snd", L"aiff", L"aifc", L"voc", L"vox",
                            L"wma", L"mp3", L"wmv", L"cda", L"wave", L"bwf", L"rf64", L"mp2",
                            L"asf", L"flac", L"oga", L"opus", L"w64", L"caf", L"bw64", L"m4a",
                            L"m4b", L"mp4", L"aac"));
}

TEST_F(RealSources, serve_a_name_without_an_extension_with_the_first) {
    EXPECT_TRUE(serves<DecAPE>(L"song"));
}

TEST_F(RealSources, serve_their_extensions_in_any_case) {
    EXPECT_TRUE(serves<DecAPE>(L"song.APE"));
    EXPECT_TRUE(serves<DecOGG>(L"song.Ogg"));
    EXPECT_TRUE(serves<DecWAV>(L"song.wav"));
    EXPECT_TRUE(serves<DecSND>(L"song.aif"));
    EXPECT_TRUE(serves<DecWMAMP3>(L"song.MP3"));
    EXPECT_TRUE(serves<DecCDA>(L"D:\\Track01.cda"));
    EXPECT_TRUE(serves<SourceAlias<DecWAV>>(L"song.Wave"));
    EXPECT_TRUE(serves<SourceAlias<DecWMAMP3>>(L"song.mp2"));
    EXPECT_TRUE(serves<SndfileSource>(L"song.FLAC"));
    EXPECT_TRUE(serves<SndfileSource>(L"song.w64"));
    EXPECT_TRUE(serves<SourceAlias<DecWAV>>(L"song.BW64"));
    EXPECT_TRUE(serves<MediaFoundationSource>(L"song.m4a"));
}

TEST_F(RealSources, have_another_one_for_what_the_first_may_refuse) {
    for (const wchar_t* file : {L"song.Ogg", L"song.mp3"}) {
        const SourceList::Source next = list.findNextForFile(file, list.findForFile(file));
        EXPECT_NE(dynamic_cast<const SndfileSource*>(next.get()), nullptr) << file;
        EXPECT_EQ(list.findNextForFile(file, next), nullptr) << file;
    }
    EXPECT_EQ(list.findNextForFile(L"song.wma", list.findForFile(L"song.wma")), nullptr);
}

} // namespace
} // namespace corvina::test
