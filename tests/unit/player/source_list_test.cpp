// The source list: which source opens a file.

#include "player/SourceList.h"
#include "runtime/RuntimeError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The list asks a source for its extensions each time, so each of these keeps its own.
class NamedSource final : public cSoundSTRM {
public:
    explicit NamedSource(std::vector<std::wstring> extensions)
        : extensions_(std::move(extensions)) {}
    cSoundInf& Info() override { throwObjectNotSet(); }
    std::vector<std::wstring> Extensions() override { return extensions_; }
    bool EndOfStream() override { return true; }
    bool Seekable() override { return false; }
    const WAVEFORMATEX* WFXPointer() override { return nullptr; }
    std::int32_t OpenSource(const std::wstring&) override { return 1; }
    std::int32_t CloseSource() override { return 0; }
    std::int32_t Read(void*, std::int32_t, std::int32_t&) override { return 1; }
    std::int32_t SeekTo(std::int32_t, std::int32_t&) override { return 0; }

private:
    std::vector<std::wstring> extensions_;
};

class Sources : public ::testing::Test {
protected:
    SourceList::Source add(std::vector<std::wstring> extensions) {
        SourceList::Source added = std::make_shared<NamedSource>(std::move(extensions));
        list.add(added);
        return added;
    }

    SourceList list;
    SourceList::Source ape = add({L"ape"});
    SourceList::Source wav = add({L"wav"});
    SourceList::Source snd = add({L"au", L"snd", L"aiff"});
    SourceList::Source again = add({L"wav"});
};

TEST(FileExtension, is_the_text_after_the_last_dot) {
    EXPECT_EQ(fileExtension(L"C:\\a.b\\song.tar.MP3"), L"MP3");
    EXPECT_EQ(fileExtension(L"song"), L"");
    EXPECT_EQ(fileExtension(L"song."), L"");
    EXPECT_EQ(fileExtension(L""), L"");
    EXPECT_EQ(fileExtension(L"C:\\a.b\\song"), L"b\\song") << "a dot of the folder counts too";
}

TEST_F(Sources, behind_one_that_refuses_have_the_next_of_the_whole_extension) {
    EXPECT_EQ(list.findNextForFile(L"song.WAV", wav), again);
    EXPECT_EQ(list.findNextForFile(L"song.wav", again), nullptr);
    EXPECT_EQ(list.findNextForFile(L"song.au", snd), nullptr);
    EXPECT_EQ(list.findNextForFile(L"song.wa", wav), nullptr) << "a part is not enough here";
    EXPECT_EQ(list.findNextForFile(L"song", ape), nullptr);
    const SourceList::Source stranger =
        std::make_shared<NamedSource>(std::vector<std::wstring>{L"wav"});
    EXPECT_EQ(list.findNextForFile(L"song.wav", stranger), nullptr);
}

TEST_F(Sources, are_found_by_extension_in_any_case) {
    EXPECT_EQ(list.findForFile(L"song.WaV"), wav);
    EXPECT_EQ(list.findForFile(L"song.SND"), snd);
}

TEST_F(Sources, the_first_match_wins) {
    EXPECT_NE(list.findForFile(L"song.wav"), again);
}

TEST_F(Sources, a_part_of_an_extension_is_enough) {
    EXPECT_EQ(list.findForFile(L"song.wa"), wav);
    EXPECT_EQ(list.findForFile(L"song.a"), ape);
    EXPECT_EQ(list.findForFile(L"song.if"), snd);
    EXPECT_EQ(list.findForFile(L"song.;"), snd) << "the separator is searched too";
}

TEST_F(Sources, a_name_without_an_extension_goes_to_the_first_source) {
    EXPECT_EQ(list.findForFile(L"song"), ape);
    EXPECT_EQ(list.findForFile(L"song."), ape);
}

TEST_F(Sources, an_unknown_extension_finds_none) {
    EXPECT_EQ(list.findForFile(L"song.wave"), nullptr);
    EXPECT_EQ(list.findForFile(L"song.xyz"), nullptr);
}

TEST(NoSources, find_nothing) {
    EXPECT_EQ(SourceList().findForFile(L"song"), nullptr);
    EXPECT_THAT(SourceList().allExtensions(), IsEmpty());
}

TEST_F(Sources, all_extensions_are_listed_once_in_order) {
    EXPECT_THAT(list.allExtensions(), ElementsAre(L"ape", L"wav", L"au", L"snd", L"aiff"));
}

TEST_F(Sources, an_extension_that_is_part_of_an_earlier_one_is_left_out) {
    add({L"aif", L"voc"});
    EXPECT_THAT(list.allExtensions(), ElementsAre(L"ape", L"wav", L"au", L"snd", L"aiff", L"voc"));
}

TEST_F(Sources, are_counted) {
    EXPECT_EQ(list.count(), 4u);
}

TEST_F(Sources, are_numbered_in_their_order) {
    EXPECT_EQ(list.indexOf(ape), 0u);
    EXPECT_EQ(list.indexOf(snd), 2u);
    EXPECT_EQ(list.indexOf(again), 3u);
}

} // namespace
} // namespace corvina::test
