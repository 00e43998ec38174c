// The Windows Media source: its library, and what it says about itself.

#include "WindowsMediaFixture.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

TEST_F(WindowsMedia, creating_the_source_loads_the_library_and_creates_a_reader_for_playback) {
    DecWMAMP3 source(standInApi);
    EXPECT_THAT(library.calls, ElementsAre("LoadLibrary wmvcore.dll", "WMCreateSyncReader 1 null"));
}

TEST_F(WindowsMedia, destroying_the_source_releases_the_reader_before_it_frees_the_library) {
    { DecWMAMP3 source(standInApi); }
    EXPECT_EQ(library.calls.back(), "FreeLibrary with 0");
    EXPECT_EQ(library.libraryUses, 0);
}

TEST_F(WindowsMedia, destroying_an_open_source_closes_the_reader) {
    {
        DecWMAMP3 source(standInApi);
        source.OpenSource(L"song.wma");
        (void)library.takeCalls();
    }
    EXPECT_THAT(library.calls, ElementsAre("Close", "FreeLibrary with 0"));
}

TEST_F(WindowsMedia, without_the_library_open_and_close_return_3_and_read_5) {
    library.missing = true;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
    EXPECT_EQ(source.CloseSource(), 3);
    const ReadResult read = readFrom(source, 10);
    EXPECT_EQ(read.result, 5);
    EXPECT_TRUE(read.bytes.empty());
    EXPECT_THAT(library.calls, ElementsAre("LoadLibrary wmvcore.dll"));
}

TEST_F(WindowsMedia, without_the_library_a_seek_is_refused) {
    library.missing = true;
    DecWMAMP3 source(standInApi);
    for (const std::int32_t mode : {0, 1, 2})
        EXPECT_EQ(seek(source, 0, mode), 4);
}

TEST_F(WindowsMedia, a_library_without_the_export_is_as_good_as_none) {
    library.withoutExport = true;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
}

TEST_F(WindowsMedia, a_failed_creation_leaves_no_reader_whatever_it_left_in_the_pointer) {
    library.createResult = E_ACCESSDENIED;
    {
        DecWMAMP3 source(standInApi);
        EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
    }
    EXPECT_EQ(library.libraryUses, 0);
}

TEST_F(WindowsMedia, any_result_of_the_creation_but_0_is_a_failure) {
    library.createResult = S_FALSE;
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.OpenSource(L"song.wma"), 3);
}

TEST_F(WindowsMedia, it_plays_wma_mp3_and_wmv) {
    DecWMAMP3 source(standInApi);
    EXPECT_THAT(source.Extensions(), ElementsAre(L"wma", L"mp3", L"wmv"));
}

TEST_F(WindowsMedia, it_is_named_and_always_seekable_and_16_bit) {
    DecWMAMP3 source(standInApi);
    EXPECT_EQ(source.FormatName(), L"Windows Media Audio");
    EXPECT_TRUE(source.Seekable());
    EXPECT_TRUE(source.Force16Bit());
    EXPECT_EQ(&source.Info(), static_cast<cSoundInf*>(&source));
}

TEST_F(WindowsMedia, it_stays_seekable_when_the_file_denies_it) {
    library.attributes.push_back(numberAttribute(L"Seekable", WMT_TYPE_BOOL, DWORD{0}));
    DecWMAMP3 source(standInApi);
    source.OpenSource(L"song.wma");
    EXPECT_TRUE(source.Seekable());
}

TEST_F(WindowsMedia, its_tags_are_one_collection_for_life) {
    DecWMAMP3 source(standInApi);
    StrmTags* const tags = source.Tags();
    EXPECT_EQ(tags->TagCount(), 0);
    source.OpenSource(L"song.wma");
    EXPECT_EQ(source.Tags(), tags);
}

} // namespace
} // namespace corvina::test
