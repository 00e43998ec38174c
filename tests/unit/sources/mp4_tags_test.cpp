// The list of tags in an MP4 file, whole and damaged.

#include "sources/Mp4Tags.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/RandomDamage.h"
#include "support/TempFolder.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Tags = std::vector<std::pair<std::wstring, std::wstring>>;

Bytes box(const char* name, const Bytes& content, std::uint32_t wrongSize = 0) {
    const auto size = wrongSize ? wrongSize : static_cast<std::uint32_t>(content.size() + 8);
    Bytes result;
    for (int shift = 24; shift >= 0; shift -= 8)
        result.push_back(static_cast<std::uint8_t>(size >> shift));
    result.insert(result.end(), name, name + 4);
    result.insert(result.end(), content.begin(), content.end());
    return result;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts)
        result.insert(result.end(), part.begin(), part.end());
    return result;
}

Bytes item(const char* name, const std::string& text) {
    return box(name, box("data",
                         joined({Bytes{0, 0, 0, 1, 0, 0, 0, 0}, Bytes(text.begin(), text.end())})));
}

Bytes fileWith(const Bytes& list) {
    return joined(
        {box("ftyp", Bytes(8)),
         box("moov",
             joined({box("mvhd", Bytes(20)),
                     box("udta", box("meta", joined({Bytes(4), box("hdlr", Bytes(9)), list})))})),
         box("mdat", Bytes(100))});
}

class Mp4TagList : public testing::Test {
protected:
    Tags tags(const Bytes& bytes) {
        StrmTags found;
        readMp4Tags(folder_.write(L"a.m4a", bytes), found);
        Tags result;
        for (const StrmTag& tag : found)
            result.emplace_back(tag.TagName(), tag.TagValue());
        return result;
    }

    TempFolder folder_;
};

TEST_F(Mp4TagList, each_known_item_is_a_tag_in_the_order_of_the_file) {
    const Bytes track =
        box("trkn", box("data", Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 0, 9, 0, 0}));
    EXPECT_THAT(
        tags(fileWith(box("ilst", joined({item("\xA9"
                                               "ART",
                                               "Caf\xC3\xA9"),
                                          item("\xA9too", "x"), track, item("\xA9nam", "Song")})))),
        ElementsAre(Pair(L"artist", L"Caf\u00E9"), Pair(L"tracknumber", L"7"),
                    Pair(L"title", L"Song")));
}

TEST_F(Mp4TagList, a_track_number_that_is_cut_is_none) {
    Bytes value{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2};
    EXPECT_THAT(tags(fileWith(box("ilst", box("trkn", box("data", value))))),
                ElementsAre(Pair(L"tracknumber", L"258")));
    while (value.size() > 8) {
        value.pop_back();
        EXPECT_THAT(tags(fileWith(box("ilst", box("trkn", box("data", value))))), IsEmpty());
    }
}

TEST_F(Mp4TagList, a_file_without_a_list_or_of_another_kind_has_no_tags) {
    EXPECT_THAT(tags({}), IsEmpty());
    EXPECT_THAT(tags(Bytes(500, 'x')), IsEmpty());
    EXPECT_THAT(tags(fileWith({})), IsEmpty());
    EXPECT_THAT(tags(fileWith(box("ilst", {}))), IsEmpty());
    StrmTags found;
    readMp4Tags(L"no such file.m4a", found);
    EXPECT_EQ(found.TagCount(), 0);
}

TEST_F(Mp4TagList, items_in_front_of_a_false_size_are_kept) {
    for (const std::uint32_t size : {2u, 7u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_THAT(
            tags(fileWith(box("ilst", joined({item("\xA9nam", "Song"), box("\xA9"
                                                                           "ART",
                                                                           Bytes(20), size)})))),
            ElementsAre(Pair(L"title", L"Song")));
}

TEST_F(Mp4TagList, a_cut_or_damaged_file_gives_what_is_left_of_it) {
    const Bytes whole = fileWith(box("ilst", joined({item("\xA9nam", "Song"), item("\xA9"
                                                                                   "ART",
                                                                                   "Band")})));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_LE(tags({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}).size(),
                  2u);
    RandomDamage::forEachVariant(whole, [&](const Bytes& bytes) { (void)tags(bytes); });
}

} // namespace
} // namespace corvina::test

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 300);
}
