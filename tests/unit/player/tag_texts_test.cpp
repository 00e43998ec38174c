// The tag texts, filled from the tags of a file.

#include "player/TagTexts.h"
#include "stream/StrmTags.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class TagMapping : public ::testing::Test {
protected:
    TagMapping() {
        tags.AddTag(L"ARTIST", L"the artist");
        tags.AddTag(L"Album", L"the album");
        tags.AddTag(L"title", L"the title");
        tags.AddTag(L"year", L"1999");
        tags.AddTag(L"tracknumber", L"7");
        tags.AddTag(L"genre", L"the genre");
        tags.AddTag(L"comment", L"the comment");
        tags.AddTag(L"description", L"the description");
        tags.AddTag(L"", L"without a name");
    }

    StrmTags tags;
    TagTexts texts;
};

TEST_F(TagMapping, the_texts_are_found_by_name_in_any_case) {
    fillTagTexts(texts, L"song.mp3", &tags);
    EXPECT_EQ(texts.artist, L"the artist");
    EXPECT_EQ(texts.album, L"the album");
    EXPECT_EQ(texts.title, L"the title");
    EXPECT_EQ(texts.songYear, L"1999");
    EXPECT_EQ(texts.trackNumber, L"7");
    EXPECT_EQ(texts.genre, L"the genre");
}

TEST_F(TagMapping, the_comment_is_called_description_in_ogg_files_alone) {
    for (const wchar_t* name : {L"song.mp3", L"song.APE", L"song.Wma", L"song.asf", L"MP3"}) {
        fillTagTexts(texts, name, &tags);
        EXPECT_EQ(texts.comment, L"the comment") << name;
    }
    fillTagTexts(texts, L"song.ogg", &tags);
    EXPECT_EQ(texts.comment, L"the description");
}

TEST_F(TagMapping, an_unknown_ending_clears_all_texts_and_sets_none) {
    for (const wchar_t* name : {L"song.flac", L"song.wav", L"", L"og"}) {
        fillTagTexts(texts, L"song.ogg", &tags);
        fillTagTexts(texts, name, &tags);
        for (const std::wstring* text : {&texts.artist, &texts.album, &texts.title, &texts.songYear,
                                         &texts.trackNumber, &texts.genre, &texts.comment})
            EXPECT_EQ(*text, L"") << name;
    }
}

TEST_F(TagMapping, of_two_tags_with_one_name_the_later_wins) {
    tags.AddTag(L"artist", L"another");
    fillTagTexts(texts, L"song.ogg", &tags);
    EXPECT_EQ(texts.artist, L"another");
}

TEST_F(TagMapping, texts_without_a_tag_are_cleared) {
    texts.artist = L"old";
    fillTagTexts(texts, L"song.ogg", nullptr);
    EXPECT_EQ(texts.artist, L"");
}

} // namespace
} // namespace corvina::test
