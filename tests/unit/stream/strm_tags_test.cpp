#include "runtime/RuntimeError.h"
#include "stream/StrmTags.h"
#include "support/ErrorNumber.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

TEST(StrmTags, a_new_collection_is_empty) {
    EXPECT_EQ(StrmTags().TagCount(), 0);
}

TEST(StrmTags, item_one_is_the_first_tag_added) {
    StrmTags tags;
    tags.AddTag(L"artist", L"a");
    tags.AddTag(L"title", L"b");
    EXPECT_EQ(tags.TagItem(1).TagName(), L"artist");
    EXPECT_EQ(tags.TagItem(1).TagValue(), L"a");
    EXPECT_EQ(tags.TagItem(tags.TagCount()).TagName(), L"title");
}

TEST(StrmTags, an_index_outside_the_collection_fails) {
    StrmTags tags;
    tags.AddTag(L"artist", L"a");
    for (const std::int32_t index : {0, 2, -2147483647 - 1})
        EXPECT_EQ(test::errorNumberOf([&] { (void)tags.TagItem(index); }), 9) << index;
}

TEST(StrmTags, names_may_repeat_and_keep_their_order) {
    StrmTags tags;
    tags.AddTag(L"artist", L"a");
    tags.AddTag(L"artist", L"b");
    std::wstring values;
    for (const StrmTag& tag : tags)
        values += tag.TagValue();
    EXPECT_EQ(values, L"ab");
}

TEST(StrmTags, clearing_removes_every_tag) {
    StrmTags tags;
    tags.AddTag(L"artist", L"a");
    tags.ClearTags();
    EXPECT_EQ(tags.TagCount(), 0);
}

} // namespace
} // namespace corvina
