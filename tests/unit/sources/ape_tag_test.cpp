// The APE tag, honest and lying, read with a guarded allocator.

#include "sources/ApeTag.h"
#include "support/FaultyFiles.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace corvina::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using namespace std::string_literals;

void addNumber(Bytes& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}
void addText(Bytes& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

constexpr std::uint32_t binary = 1u << 1;
constexpr std::uint32_t locator = 2u << 1;

struct TagBytes {
    Bytes bytes;
    std::uint32_t items = 0;

    TagBytes& item(const std::string& key, const std::string& value, std::uint32_t flags = 0) {
        addNumber(bytes, static_cast<std::uint32_t>(value.size()));
        addNumber(bytes, flags);
        addText(bytes, key);
        bytes.push_back(0);
        addText(bytes, value);
        ++items;
        return *this;
    }
    [[nodiscard]] Bytes file(std::uint32_t size, std::uint32_t count,
                             std::uint32_t version = 2000) const {
        Bytes whole;
        whole.reserve(bytes.size() + 64);
        addText(whole, "MAC ");
        for (const std::uint8_t byte : bytes)
            whole.push_back(byte);
        addText(whole, "APETAGEX");
        for (const std::uint32_t value : {version, size, count, 0u, 0u, 0u})
            addNumber(whole, value);
        return whole;
    }
    [[nodiscard]] Bytes file(std::uint32_t version = 2000) const {
        return file(static_cast<std::uint32_t>(bytes.size()) + 32, items, version);
    }
};

class ApeTag : public testing::Test {
protected:
    // "key=value;" for each tag.
    std::wstring read(const Bytes& file) {
        StrmTags tags;
        readApeTag(access, folder.write(L"a.ape", file), tags);
        std::wstring result;
        for (const StrmTag& tag : tags)
            result += tag.TagName() + L"=" + tag.TagValue() + L";";
        return result;
    }

    TempFolder folder;
    FileAccess access;
};

TEST_F(ApeTag, items_come_in_file_order_with_their_keys_as_written) {
    EXPECT_EQ(read(TagBytes().item("Title", "t").item("ARTIST", "a").item("title", "u").file()),
              L"Title=t;ARTIST=a;title=u;");
}

TEST_F(ApeTag, a_file_without_a_footer_has_no_tags) {
    EXPECT_EQ(read(Bytes(100, 'x')), L"");
    EXPECT_EQ(read({}), L"");
    EXPECT_EQ(read(Bytes(31, 'x')), L"");
}

TEST_F(ApeTag, a_missing_file_has_no_tags) {
    StrmTags tags;
    readApeTag(access, L"no such file.ape", tags);
    EXPECT_EQ(tags.TagCount(), 0);
}

TEST_F(ApeTag, a_footer_that_does_not_end_the_file_is_none) {
    Bytes file = TagBytes().item("Title", "t").file();
    file.push_back(0);
    EXPECT_EQ(read(file), L"");
}

TEST_F(ApeTag, keys_and_values_are_taken_byte_by_byte) {
    EXPECT_EQ(read(TagBytes().item("Title", "\xE9\xC3\xA9").file()), L"Title=\u00E9\u00C3\u00A9;");
}

TEST_F(ApeTag, a_value_ends_at_its_first_zero) {
    EXPECT_EQ(read(TagBytes().item("Artist", "a\0b"s).item("Title", "t").file()),
              L"Artist=a;Title=t;");
}

TEST_F(ApeTag, an_empty_value_is_a_tag) {
    EXPECT_EQ(read(TagBytes().item("Title", "").item("", "v").file()), L"Title=;=v;");
}

TEST_F(ApeTag, binary_items_and_locators_are_left_out) {
    EXPECT_EQ(read(TagBytes()
                       .item("Cover", "\xFF\xD8"s, binary)
                       .item("Link", "x", locator)
                       .item("Title", "t")
                       .file()),
              L"Title=t;");
}

TEST_F(ApeTag, the_first_version_has_text_items_only) {
    EXPECT_EQ(read(TagBytes().item("Title", "t", binary).file(1000)), L"Title=t;");
}

TEST_F(ApeTag, a_size_that_reaches_before_the_file_gives_none) {
    const TagBytes tag = TagBytes().item("Title", "t");
    for (const std::uint32_t size : {200u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0x7FFFFFE0u})
        EXPECT_EQ(read(tag.file(size, 1)), L"") << size;
}

TEST_F(ApeTag, a_size_smaller_than_the_footer_gives_none) {
    const TagBytes tag = TagBytes().item("Title", "t");
    for (const std::uint32_t size : {0u, 31u, 32u})
        EXPECT_EQ(read(tag.file(size, 1)), L"") << size;
}

// A tag of that size, which begins with a title.
Bytes largeTag(std::uint32_t size) {
    TagBytes tag = TagBytes().item("Title", "t");
    tag.bytes.resize(size - 32);
    return tag.file(size, 1);
}

TEST_F(ApeTag, a_tag_of_16_megabytes_is_read) {
    EXPECT_EQ(read(largeTag(16u << 20)), L"Title=t;");
}

TEST_F(ApeTag, a_larger_tag_is_not_read) {
    EXPECT_EQ(read(largeTag((16u << 20) + 1)), L"");
}

TEST_F(ApeTag, a_file_whose_end_cannot_be_reached_has_no_tags_though_it_begins_with_a_header) {
    const TagBytes tag = TagBytes().item("Title", "t");
    const Bytes whole = tag.file();
    Bytes file(whole.end() - 32, whole.end());
    file.insert(file.end(), whole.begin(), whole.end());
    const std::wstring path = folder.write(L"a.ape", file);
    for (const int call : {1, 2}) {
        StrmTags tags;
        fileFaults.arm("SetFilePointer", call);
        readApeTag(FileAccess(faultyFileApi), path, tags);
        fileFaults.disarm();
        EXPECT_EQ(tags.TagCount(), 0) << call;
    }
    EXPECT_EQ(read(file), L"Title=t;");
}

TEST_F(ApeTag, a_count_beyond_the_items_ends_with_them) {
    const TagBytes tag = TagBytes().item("Title", "t");
    for (const std::uint32_t count : {2u, 100'000u, 0xFFFFFFFFu})
        EXPECT_EQ(read(tag.file(static_cast<std::uint32_t>(tag.bytes.size()) + 32, count)),
                  L"Title=t;");
}

TEST_F(ApeTag, a_count_below_the_items_leaves_the_rest) {
    const TagBytes tag = TagBytes().item("Title", "t").item("Artist", "a");
    EXPECT_EQ(read(tag.file(static_cast<std::uint32_t>(tag.bytes.size()) + 32, 1)), L"Title=t;");
}

TEST_F(ApeTag, a_value_longer_than_the_tag_ends_the_items_before_it) {
    for (const std::uint32_t length : {2u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        TagBytes tag = TagBytes().item("Artist", "a");
        addNumber(tag.bytes, length);
        addNumber(tag.bytes, 0);
        addText(tag.bytes, "Title\0t"s);
        tag.items = 2;
        EXPECT_EQ(read(tag.file()), L"Artist=a;") << length;
    }
}

TEST_F(ApeTag, a_key_without_a_terminator_ends_the_items_before_it) {
    TagBytes tag = TagBytes().item("Artist", "a");
    addNumber(tag.bytes, 1);
    addNumber(tag.bytes, 0);
    addText(tag.bytes, "Title");
    tag.items = 2;
    EXPECT_EQ(read(tag.file()), L"Artist=a;");
}

TEST_F(ApeTag, half_an_item_header_ends_the_items_before_it) {
    TagBytes tag = TagBytes().item("Artist", "a");
    addText(tag.bytes, "\1\0\0\0\0\0\0"s);
    tag.items = 2;
    EXPECT_EQ(read(tag.file()), L"Artist=a;");
}

TEST_F(ApeTag, ten_thousand_items_are_read) {
    TagBytes tag;
    for (int count = 0; count < 10'000; ++count)
        tag.item("k", "v");
    StrmTags tags;
    readApeTag(access, folder.write(L"a.ape", tag.file()), tags);
    EXPECT_EQ(tags.TagCount(), 10'000);
}

TEST_F(ApeTag, any_single_bit_of_the_tag_may_be_wrong) {
    const Bytes honest = TagBytes().item("Title", "a value").item("Artist", "another").file();
    for (std::size_t bit = 0; bit < honest.size() * 8; ++bit) {
        Bytes file = honest;
        file[bit / 8] = static_cast<std::uint8_t>(file[bit / 8] ^ (1u << bit % 8));
        EXPECT_LT(read(file).size(), 100u) << bit;
    }
}

} // namespace
} // namespace corvina::test
