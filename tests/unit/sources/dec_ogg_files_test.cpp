// The Ogg Vorbis source over the real libraries and files of public tools.

#include "DecodedFiles.h"
#include "sources/DecOGG.h"
#include "support/OggPages.h"
#include "support/ProcessObjects.h"

namespace corvina::test {
namespace {

using testing::SizeIs;

TEST(OggFiles, stereo_decodes_as_the_bare_library_does) {
    expectSameAsBare<DecOGG, BareOgg>(L"tune.ogg");
}

TEST(OggFiles, mono_decodes_as_the_bare_library_does) {
    expectSameAsBare<DecOGG, BareOgg>(L"mono.ogg");
}

TEST(OggFiles, format_and_tags_are_reported) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"tune.ogg")), 0);
    EXPECT_EQ(source.SampleRate(), 44100);
    EXPECT_EQ(source.Channels(), 2);
    EXPECT_EQ(source.Duration(), 3000);
    EXPECT_EQ(source.Bitrate(), 160000);
    EXPECT_EQ(source.WFXPointer()->nBlockAlign, 4);
    std::wstring tags;
    for (const StrmTag& tag : *source.Tags())
        tags += tag.TagName() + L"=" + tag.TagValue() + L";";
    EXPECT_EQ(tags, L"artist=Test Bench;album=Media;title=Small Tune;genre=Other;tracknumber=3;"
                    L"description=made at test time;");
}

TEST(OggFiles, a_lone_upper_case_title_is_one_tag_named_title) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"title.ogg")), 0);
    ASSERT_EQ(source.Tags()->TagCount(), 1);
    EXPECT_EQ(source.Tags()->TagItem(1).TagName(), L"title");
    EXPECT_EQ(source.Tags()->TagItem(1).TagValue(), L"Alone");
}

TEST(OggFiles, six_channels_are_refused) {
    DecOGG source;
    EXPECT_EQ(source.OpenSource(mediaFile(L"six.ogg")), 1);
}

TEST(OggFiles, what_is_refused_is_let_go_of) {
    TempFolder folder;
    const std::wstring six = folder.write(L"six.ogg", fileBytes(mediaFile(L"six.ogg")));
    const std::wstring garbage = folder.write(L"garbage.ogg", Bytes(1000, 'g'));
    DecOGG source;
    for (const std::wstring& path : {six, garbage}) {
        EXPECT_EQ(source.OpenSource(path), 1);
        EXPECT_TRUE(::DeleteFileW(path.c_str()));
    }
}

TEST(OggFiles, a_chain_of_links_plays_to_its_end) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"two-links.ogg")), 0);
    EXPECT_EQ(source.Duration(), 6000);
    EXPECT_EQ(source.Channels(), 2);
    const Reading whole = readToEnd(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_THAT(whole.bytes, SizeIs(132'300 * 4 + 132'300 * 2));
}

// The file with another number for its stream; its third header spoilt if so.
Bytes linkOfAChain(std::uint8_t number, bool refused) {
    Bytes link = fileBytes(mediaFile(L"clip.ogg"));
    for (std::size_t at = 0; const std::size_t size = oggPageSize(link, at); at += size)
        link[at + 14] = number;
    constexpr std::array<std::uint8_t, 7> setup{5, 'v', 'o', 'r', 'b', 'i', 's'};
    const auto header = std::search(link.begin(), link.end(), setup.begin(), setup.end());
    if (refused)
        std::fill_n(header + setup.size(), 40, std::uint8_t{0xFF});
    correctOggPages(link);
    return link;
}

TEST(OggFiles, a_chain_with_a_refused_link_is_refused_and_keeps_no_memory) {
    TempFolder folder;
    std::vector<std::wstring> chains;
    for (std::uint8_t refused = 1; refused < 4; ++refused) {
        Bytes chain;
        for (std::uint8_t number = 0; number < 4; ++number) {
            const Bytes link = linkOfAChain(number, number == refused);
            chain.insert(chain.end(), link.begin(), link.end());
        }
        chains.push_back(folder.write(std::to_wstring(refused) + L".ogg", chain));
    }
    DecOGG source;
    std::size_t before = 0;
    for (int round = 0; round < 200; ++round) {
        for (const std::wstring& chain : chains)
            ASSERT_EQ(source.OpenSource(chain), 1);
        before = round < 20 ? countHeapBytes() : before;
    }
    EXPECT_LE(countHeapBytes(), before + (anyHeapGroupsSmallBlocks() ? 32 * 1024 : 0));
}

TEST(OggFiles, vorbis_beside_another_stream_is_found) {
    DecOGG source;
    ASSERT_EQ(source.OpenSource(mediaFile(L"beside.ogg")), 0);
    EXPECT_EQ(source.Channels(), 1);
    EXPECT_EQ(readToEnd(source).result, 5);
}

TEST(OggFiles, a_hole_is_reported_and_what_follows_still_plays) {
    Bytes bytes = fileBytes(mediaFile(L"tune.ogg"));
    for (std::size_t at = bytes.size() / 2; at < bytes.size() / 2 + 2000; ++at)
        bytes[at] = 0;
    TempFolder folder;
    DecOGG source;
    ASSERT_EQ(source.OpenSource(folder.write(L"hole.ogg", bytes)), 0);
    const Reading whole = readToEnd(source);
    EXPECT_EQ(whole.result, 5);
    EXPECT_GT(whole.holes, 0);
    EXPECT_GT(whole.bytes.size(), 132'300u);
    source.CloseSource();
}

TEST(OggFiles, a_file_that_is_no_vorbis_returns_1) {
    for (const wchar_t* name : {L"tune.wav", L"tune.mp3", L"tune.ape"})
        EXPECT_EQ(DecOGG().OpenSource(mediaFile(name)), 1) << name;
}

// Another program's handle would be closed if the file were closed twice.
TEST(OggFiles, closing_closes_the_file_exactly_once) {
    TempFolder folder;
    const std::wstring path = folder.write(L"a.ogg", fileBytes(mediaFile(L"tune.ogg")));
    for (int round = 0; round < 3; ++round) {
        DecOGG source;
        ASSERT_EQ(source.OpenSource(path), 0);
        FILE* const neighbour = _wfopen(folder.file(L"neighbour").c_str(), L"w+b");
        source.CloseSource();
        FILE* const successor = _wfopen(folder.file(L"successor").c_str(), L"w+b");
        source.CloseSource();
        EXPECT_EQ(std::fputs("still open", neighbour), 0);
        EXPECT_EQ(std::fputs("still open", successor), 0);
        EXPECT_EQ(std::fclose(neighbour), 0);
        EXPECT_EQ(std::fclose(successor), 0);
        EXPECT_NE(::DeleteFileW(path.c_str()), 0); // nobody holds it
        folder.write(L"a.ogg", fileBytes(mediaFile(L"tune.ogg")));
    }
}

TEST(OggFiles, hundreds_of_opens_of_good_and_bad_files_hold_no_more_handles) {
    TempFolder folder;
    const std::wstring bad = folder.write(L"bad.ogg", Bytes(100, 'x'));
    DecOGG source;
    DWORD before = 0;
    for (int round = 0; round < 300; ++round) {
        EXPECT_EQ(source.OpenSource(mediaFile(L"mono.ogg")), 0);
        EXPECT_EQ(source.OpenSource(bad), 1);
        EXPECT_EQ(source.OpenSource(mediaFile(L"six.ogg")), 1);
        source.CloseSource();
        DWORD now = 0;
        ::GetProcessHandleCount(::GetCurrentProcess(), &now);
        before = round <= 5 ? now : before;
        ASSERT_EQ(now, before);
    }
}

TEST(OggFiles, a_seek_to_the_end_is_followed_by_the_end) {
    expectEndBehindSeekToEnd<DecOGG>(L"tune.ogg");
}

TEST(OggFiles, names_that_the_code_page_lacks_and_long_paths_play) {
    expectSameUnderAnyName<DecOGG>(L"tune.ogg", L".ogg");
}

} // namespace
} // namespace corvina::test
