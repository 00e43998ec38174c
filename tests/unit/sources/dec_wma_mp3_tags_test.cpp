#include "StandInReader.h"
#include "sources/DecWMAMP3.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>

namespace corvina {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Tags = std::vector<std::pair<std::wstring, std::wstring>>;

class WindowsMediaTags : public testing::Test {
protected:
    void SetUp() override { layFile(0, {}); }

    Tags tagsOf(std::vector<StandInAttribute> attributes) {
        library.attributes = std::move(attributes);
        source.CloseSource();
        EXPECT_EQ(source.OpenSource(L"song.wma"), 0);
        Tags tags;
        for (const StrmTag& tag : *source.Tags())
            tags.emplace_back(tag.TagName(), tag.TagValue());
        return tags;
    }

    DecWMAMP3 source{standInApi};
};

TEST_F(WindowsMediaTags, each_attribute_gives_its_tag) {
    EXPECT_THAT(
        tagsOf({textAttribute(L"Author", L"a"), textAttribute(L"WM/AlbumTitle", L"b"),
                textAttribute(L"WM/Genre", L"c"), textAttribute(L"Title", L"d"),
                textAttribute(L"WM/TrackNumber", L"7"), textAttribute(L"Description", L"e"),
                textAttribute(L"WM/Year", L"1999"), textAttribute(L"WM/AlbumArtist", L"f")}),
        ElementsAre(Pair(L"artist", L"a"), Pair(L"album", L"b"), Pair(L"genre", L"c"),
                    Pair(L"title", L"d"), Pair(L"tracknumber", L"7"), Pair(L"comment", L"e"),
                    Pair(L"year", L"1999"), Pair(L"artist", L"f")));
}

TEST_F(WindowsMediaTags, names_are_compared_exactly_and_others_ignored) {
    EXPECT_THAT(tagsOf({textAttribute(L"title", L"a"), textAttribute(L"TITLE", L"b"),
                        textAttribute(L"Title ", L"c"), textAttribute(L"WM/Lyrics", L"d"),
                        textAttribute(L"", L"e")}),
                IsEmpty());
}

TEST_F(WindowsMediaTags, an_attribute_that_occurs_twice_gives_its_tag_twice) {
    EXPECT_THAT(tagsOf({textAttribute(L"Title", L"a"), textAttribute(L"Title", L"a")}),
                ElementsAre(Pair(L"title", L"a"), Pair(L"title", L"a")));
}

TEST_F(WindowsMediaTags, the_tags_of_a_file_replace_those_of_the_one_before) {
    (void)tagsOf({textAttribute(L"Title", L"a")});
    library.attributes = {textAttribute(L"Title", L"b")};
    source.OpenSource(L"other.wma");
    ASSERT_EQ(source.Tags()->TagCount(), 1);
    EXPECT_EQ(source.Tags()->TagItem(1).TagValue(), L"b");
}

// The deliberate rule: small numbers become characters.
TEST_F(WindowsMediaTags, a_track_number_7_is_the_character_of_code_7) {
    EXPECT_THAT(tagsOf({numberAttribute(L"WM/TrackNumber", WMT_TYPE_DWORD, DWORD{7})}),
                ElementsAre(Pair(L"tracknumber", std::wstring(1, wchar_t{7}))));
}

TEST_F(WindowsMediaTags, a_track_number_up_to_48_is_a_character_and_from_49_on_digits) {
    EXPECT_THAT(tagsOf({numberAttribute(L"WM/TrackNumber", WMT_TYPE_DWORD, DWORD{48}),
                        numberAttribute(L"WM/TrackNumber", WMT_TYPE_DWORD, DWORD{49})}),
                ElementsAre(Pair(L"tracknumber", L"0"), Pair(L"tracknumber", L"49")));
}

TEST_F(WindowsMediaTags, a_track_number_0_is_the_character_of_code_0) {
    EXPECT_THAT(tagsOf({numberAttribute(L"WM/TrackNumber", WMT_TYPE_DWORD, DWORD{0})}),
                ElementsAre(Pair(L"tracknumber", std::wstring(1, L'\0'))));
}

TEST_F(WindowsMediaTags, a_track_number_as_text_stays_as_it_is) {
    EXPECT_THAT(
        tagsOf({textAttribute(L"WM/TrackNumber", L"7"), textAttribute(L"WM/TrackNumber", L"3/12"),
                textAttribute(L"WM/TrackNumber", L"0")}),
        ElementsAre(Pair(L"tracknumber", L"7"), Pair(L"tracknumber", L"3/12"),
                    Pair(L"tracknumber", L"0")));
}

TEST_F(WindowsMediaTags, a_track_number_of_16_bits_is_read_with_zeros_above_it) {
    EXPECT_THAT(tagsOf({numberAttribute(L"WM/TrackNumber", WMT_TYPE_WORD, WORD{7})}),
                ElementsAre(Pair(L"tracknumber", std::wstring(1, wchar_t{7}))));
}

TEST_F(WindowsMediaTags, a_number_as_a_text_is_its_decimal_form) {
    EXPECT_THAT(tagsOf({numberAttribute(L"WM/Year", WMT_TYPE_DWORD, DWORD{1999})}),
                ElementsAre(Pair(L"year", L"1999")));
}

TEST_F(WindowsMediaTags, a_guid_has_a_text_form) {
    EXPECT_THAT(tagsOf({numberAttribute(L"Title", WMT_TYPE_GUID, mediaPcm)}),
                ElementsAre(Pair(L"title", L"{00000001-0000-0010-8000-00AA00389B71}")));
}

TEST_F(WindowsMediaTags, other_types_have_no_text) {
    EXPECT_THAT(tagsOf({numberAttribute(L"Title", WMT_TYPE_QWORD, QWORD{65}),
                        numberAttribute(L"Title", WMT_TYPE_BOOL, DWORD{1}),
                        numberAttribute(L"Title", WMT_TYPE_WORD, WORD{65}),
                        numberAttribute(L"Title", WMT_TYPE_BINARY, DWORD{65}),
                        numberAttribute(L"Title", static_cast<WMT_ATTR_DATATYPE>(7), DWORD{65})}),
                ElementsAre(Pair(L"title", L""), Pair(L"title", L""), Pair(L"title", L""),
                            Pair(L"title", L""), Pair(L"title", L"")));
}

TEST_F(WindowsMediaTags, names_and_texts_end_at_their_first_nul) {
    EXPECT_THAT(
        tagsOf({textAttribute(std::wstring(L"Title\0junk", 10), std::wstring(L"Tune\0junk", 9))}),
        ElementsAre(Pair(L"title", L"Tune")));
}

TEST_F(WindowsMediaTags, a_name_or_text_without_a_terminator_is_taken_whole) {
    StandInAttribute attribute{L"Title", WMT_TYPE_STRING, {'T', 0, 'u', 0}};
    attribute.withoutTerminator = true;
    EXPECT_THAT(tagsOf({attribute}), ElementsAre(Pair(L"title", L"Tu")));
}

TEST_F(WindowsMediaTags, a_text_of_an_odd_length_or_none_is_read_no_further_than_it_goes) {
    EXPECT_THAT(
        tagsOf({{L"Title", WMT_TYPE_STRING, {'T', 0, 'u'}}, {L"Title", WMT_TYPE_STRING, {}}}),
        ElementsAre(Pair(L"title", L"Tu"), Pair(L"title", L"")));
}

TEST_F(WindowsMediaTags, a_value_shorter_than_its_type_is_filled_with_zeros) {
    (void)tagsOf({{L"Duration", WMT_TYPE_QWORD, {0x10, 0x27}}, {L"Bitrate", WMT_TYPE_DWORD, {5}}});
    EXPECT_EQ(source.Duration(), 1);
    EXPECT_EQ(source.Bitrate(), 5);
}

TEST_F(WindowsMediaTags, a_value_that_is_reported_longer_than_it_is_reads_zeros) {
    StandInAttribute attribute = textAttribute(L"Title", L"Tune");
    attribute.reportedBytes = 60'000;
    EXPECT_THAT(tagsOf({attribute}), ElementsAre(Pair(L"title", L"Tune")));
}

TEST_F(WindowsMediaTags, a_value_that_is_reported_shorter_than_it_is_is_cut) {
    StandInAttribute attribute = textAttribute(L"Title", L"Tune");
    attribute.reportedBytes = 4;
    EXPECT_THAT(tagsOf({attribute}), ElementsAre(Pair(L"title", L"Tu")));
}

TEST_F(WindowsMediaTags, a_value_of_nonsense_length_is_left_out) {
    for (const DWORD bytes : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        StandInAttribute attribute = textAttribute(L"Title", L"Tune");
        attribute.reportedBytes = bytes;
        EXPECT_THAT(tagsOf({attribute, textAttribute(L"WM/Genre", L"g")}),
                    ElementsAre(Pair(L"genre", L"g")));
    }
}

TEST_F(WindowsMediaTags, a_value_of_more_than_16_megabytes_is_left_out) {
    StandInAttribute attribute = textAttribute(L"Title", L"Tune");
    attribute.reportedBytes = 16 * 1024 * 1024;
    EXPECT_THAT(tagsOf({attribute}), ElementsAre(Pair(L"title", L"Tune")));
    ++attribute.reportedBytes;
    EXPECT_THAT(tagsOf({attribute}), IsEmpty());
}

TEST_F(WindowsMediaTags, a_value_that_is_left_out_does_not_repeat_the_one_before) {
    StandInAttribute attribute = textAttribute(L"WM/Genre", L"g");
    attribute.reportedBytes = 0x7FFFFFFF;
    EXPECT_THAT(tagsOf({textAttribute(L"Title", L"Tune"), attribute}),
                ElementsAre(Pair(L"title", L"Tune")));
}

TEST_F(WindowsMediaTags, a_long_text_is_read_whole) {
    const std::wstring text(3000, L'\x4E00');
    EXPECT_THAT(tagsOf({textAttribute(L"Title", text)}), ElementsAre(Pair(L"title", text)));
}

TEST_F(WindowsMediaTags, a_number_that_is_stored_as_a_text_is_no_number) {
    (void)tagsOf({textAttribute(L"Duration", L"90000"),
                  textAttribute(L"Bitrate", L"64000"),
                  {L"Bitrate", WMT_TYPE_BINARY, {5, 6, 7, 8}}});
    EXPECT_EQ(source.Duration(), 0);
    EXPECT_EQ(source.Bitrate(), 0);
}

TEST_F(WindowsMediaTags, the_longest_name_is_read) {
    EXPECT_THAT(
        tagsOf({textAttribute(std::wstring(65534, L'n'), L"a"), textAttribute(L"Title", L"b")}),
        ElementsAre(Pair(L"title", L"b")));
}

TEST_F(WindowsMediaTags, as_many_attributes_as_can_be_counted_are_read) {
    library.attributeCount = 65535;
    library.noting = false; // so many texts have no space among guarded blocks
    const Tags tags = tagsOf({textAttribute(L"Title", L"a")});
    EXPECT_EQ(tags.size(), 65535u);
    EXPECT_EQ(tags.back(), Tags::value_type(L"title", L"a"));
}

TEST_F(WindowsMediaTags, an_attribute_that_cannot_be_read_is_left_out_and_the_open_succeeds) {
    for (const char* function : {"GetAttributeLengths", "GetAttributeByIndexEx"}) {
        library.results = {{function, E_FAIL}};
        EXPECT_THAT(tagsOf({textAttribute(L"Title", L"a")}), IsEmpty());
    }
}

// It is read and never asked for: the source is always seekable.
TEST_F(WindowsMediaTags, whether_the_file_is_seekable_is_kept_as_it_says) {
    const FARPROC create = standInApi.getProcAddress(nullptr, "WMCreateSyncReader");
    ComPtr<IWMSyncReader> reader;
    ASSERT_EQ(reinterpret_cast<decltype(&::WMCreateSyncReader)>(reinterpret_cast<void*>(create))(
                  nullptr, 0, reader.put()),
              S_OK);
    ASSERT_EQ(reader->Open(L"song.wma"), S_OK);
    for (const DWORD says : {1u, 0u, 0x12345678u}) {
        library.attributes = {numberAttribute(L"Seekable", WMT_TYPE_BOOL, says)};
        MediaAttributes attributes;
        StrmTags tags;
        ASSERT_TRUE(readMediaAttributes(*reader.get(), attributes, tags));
        EXPECT_EQ(attributes.seekable, says & 0xFFFF);
    }
    reader->Close();
}

TEST_F(WindowsMediaTags, the_bitrate_is_its_attributes) {
    (void)tagsOf({numberAttribute(L"Bitrate", WMT_TYPE_DWORD, DWORD{128000})});
    EXPECT_EQ(source.Bitrate(), 128000);
}

TEST_F(WindowsMediaTags, how_much_of_a_value_is_copied_depends_on_its_type_alone) {
    const QWORD value = 0x0000'0001'0000'0000 + 30'000;
    (void)tagsOf({numberAttribute(L"Duration", WMT_TYPE_DWORD, value)});
    EXPECT_EQ(source.Duration(), 3);
    (void)tagsOf({numberAttribute(L"Duration", WMT_TYPE_WORD, QWORD{0x20000 + 20'000})});
    EXPECT_EQ(source.Duration(), 2);
    (void)tagsOf({numberAttribute(L"Duration", WMT_TYPE_STRING, value)});
    EXPECT_EQ(source.Duration(), 0);
    (void)tagsOf({numberAttribute(L"Duration", WMT_TYPE_BINARY, value)});
    EXPECT_EQ(source.Duration(), 0);
}

TEST_F(WindowsMediaTags, a_value_of_a_wider_type_than_its_field_does_not_spill_over) {
    (void)tagsOf({numberAttribute(L"Bitrate", WMT_TYPE_DWORD, DWORD{64000}),
                  numberAttribute(L"Duration", WMT_TYPE_QWORD, QWORD{10'000}),
                  numberAttribute(L"Seekable", WMT_TYPE_GUID, mediaPcm)});
    EXPECT_EQ(source.Duration(), 1);
    EXPECT_EQ(source.Bitrate(), 64000);
}

} // namespace
} // namespace corvina
