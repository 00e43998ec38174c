// The functions of the project's own MACDll.dll: calls that no source makes, and files as taggers
// leave them.

#include "support/BareDecoders.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace corvina::test {
namespace {

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

template <typename Function>
Function function(const char* name) {
    return exportOf<Function>("MACDll.dll", name);
}

class ApeFunctions : public testing::Test {
protected:
    std::int32_t(__stdcall* create)(const char*, std::int32_t*) =
        function<decltype(create)>("c_APEDecompress_Create");
    std::int32_t(__stdcall* createWide)(const wchar_t*, std::int32_t*) =
        function<decltype(createWide)>("c_APEDecompress_CreateW");
    std::int32_t(__stdcall* getInfo)(std::int32_t, std::int32_t, std::int32_t, std::int32_t) =
        function<decltype(getInfo)>("c_APEDecompress_GetInfo");
    std::int32_t(__stdcall* getData)(std::int32_t, void*, std::int32_t, std::int32_t*) =
        function<decltype(getData)>("c_APEDecompress_GetData");
    std::int32_t(__stdcall* seek)(std::int32_t,
                                  std::int32_t) = function<decltype(seek)>("c_APEDecompress_Seek");
    std::int32_t(__stdcall* destroy)(std::int32_t) =
        function<decltype(destroy)>("c_APEDecompress_Destroy");

    std::int32_t open() { return create(path.c_str(), nullptr); }

    std::string path = toAnsi(mediaFile(L"tune.ape")).text;
};

TEST_F(ApeFunctions, each_is_exported_under_its_plain_and_its_decorated_name) {
    for (const auto& [plain, decorated] :
         {std::pair{"c_APEDecompress_Create", "_c_APEDecompress_Create@8"},
          std::pair{"c_APEDecompress_CreateW", "_c_APEDecompress_CreateW@8"},
          std::pair{"c_APEDecompress_GetInfo", "_c_APEDecompress_GetInfo@16"},
          std::pair{"c_APEDecompress_GetData", "_c_APEDecompress_GetData@16"},
          std::pair{"c_APEDecompress_Seek", "_c_APEDecompress_Seek@8"},
          std::pair{"c_APEDecompress_Destroy", "_c_APEDecompress_Destroy@4"}})
        EXPECT_EQ(function<void*>(plain), function<void*>(decorated)) << plain;
}

TEST_F(ApeFunctions, a_good_file_has_a_handle_and_no_error) {
    std::int32_t error = 77;
    const std::int32_t decoder = create(path.c_str(), &error);
    EXPECT_NE(decoder, 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(destroy(decoder), 0);
}

TEST_F(ApeFunctions, no_path_a_missing_file_and_another_format_have_no_handle_but_an_error) {
    const std::string other = toAnsi(mediaFile(L"tune.ogg")).text;
    for (const char* bad : {static_cast<const char*>(nullptr), "", "no such file.ape",
                            "http://localhost/a.ape", other.c_str()}) {
        std::int32_t error = 0;
        EXPECT_EQ(create(bad, &error), 0);
        EXPECT_NE(error, 0);
        EXPECT_EQ(create(bad, nullptr), 0);
    }
}

TEST_F(ApeFunctions, a_wide_path_opens_names_that_no_code_page_has) {
    TempFolder folder;
    const std::wstring name =
        folder.write(L"\u6771\u4EAC \u0416.ape", fileBytes(mediaFile(L"tune.ape")));
    std::int32_t error = 77;
    const std::int32_t decoder = createWide(name.c_str(), &error);
    EXPECT_NE(decoder, 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(getInfo(decoder, 1016, 0, 0), 132'300);
    EXPECT_EQ(destroy(decoder), 0);
}

TEST_F(ApeFunctions, no_wide_path_and_a_missing_file_have_no_handle_but_an_error) {
    for (const wchar_t* bad : {static_cast<const wchar_t*>(nullptr), L"", L"no such file.ape"}) {
        std::int32_t error = 0;
        EXPECT_EQ(createWide(bad, &error), 0);
        EXPECT_NE(error, 0);
    }
}

TEST_F(ApeFunctions, every_field_that_players_ask_for_has_its_value) {
    const std::int32_t decoder = open();
    EXPECT_EQ(getInfo(decoder, 1003, 0, 0), 44100);
    EXPECT_EQ(getInfo(decoder, 1004, 0, 0), 16);
    EXPECT_EQ(getInfo(decoder, 1006, 0, 0), 2);
    EXPECT_EQ(getInfo(decoder, 1007, 0, 0), 4);
    EXPECT_EQ(getInfo(decoder, 1016, 0, 0), 132'300);
    EXPECT_EQ(getInfo(decoder, 1017, 0, 0), 3000);
    EXPECT_NEAR(getInfo(decoder, 1018, 0, 0), 251, 1); // 94,360 bytes in 3 s
    EXPECT_EQ(getInfo(decoder, 2001, 0, 0), 0);
    destroy(decoder);
}

TEST_F(ApeFunctions, any_other_field_is_0) {
    const std::int32_t decoder = open();
    for (const std::int32_t field : {0, -1, 999, 1002, 1005, 2000, 2002, least, most})
        EXPECT_EQ(getInfo(decoder, field, most, least), 0) << field;
    destroy(decoder);
}

TEST_F(ApeFunctions, a_handle_that_is_none_is_refused_everywhere) {
    const std::int32_t closed = open();
    destroy(closed);
    for (const std::int32_t bad : {0, closed, -1, least, most}) {
        char buffer[4];
        std::int32_t got = 77;
        EXPECT_EQ(getInfo(bad, 1003, 0, 0), 0);
        EXPECT_NE(getData(bad, buffer, 1, &got), 0);
        EXPECT_EQ(got, 0);
        EXPECT_NE(seek(bad, 0), 0);
        EXPECT_NE(destroy(bad), 0);
    }
}

TEST_F(ApeFunctions, impossible_reads_are_refused_with_no_blocks) {
    const std::int32_t decoder = open();
    char buffer[4];
    for (const std::int32_t blocks : {-1, least}) {
        std::int32_t got = 77;
        EXPECT_NE(getData(decoder, buffer, blocks, &got), 0);
        EXPECT_EQ(got, 0);
    }
    std::int32_t got = 77;
    EXPECT_NE(getData(decoder, nullptr, 1, &got), 0);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(getData(decoder, nullptr, 0, &got), 0);
    EXPECT_EQ(getData(decoder, buffer, 1, nullptr), 0);
    destroy(decoder);
}

TEST_F(ApeFunctions, a_huge_count_reads_to_the_end_of_the_file) {
    const std::int32_t decoder = open();
    std::vector<char> buffer(132'300 * 4);
    std::int32_t got = 0;
    EXPECT_EQ(getData(decoder, buffer.data(), most, &got), 0);
    EXPECT_EQ(got, 132'300);
    destroy(decoder);
}

TEST_F(ApeFunctions, seeks_reach_from_the_first_block_to_the_end) {
    const std::int32_t decoder = open();
    EXPECT_EQ(seek(decoder, 0), 0);
    EXPECT_EQ(seek(decoder, 132'300), 0);
    EXPECT_EQ(getInfo(decoder, 2001, 0, 0), 3000);
    for (const std::int32_t block : {132'301, most, -1, least})
        EXPECT_NE(seek(decoder, block), 0);
    destroy(decoder);
}

// Tags as taggers write them. The values are little-endian, but those of ID3 big-endian and of
// seven bits a byte.
class TagBytes {
public:
    TagBytes& text(const char* characters) {
        bytes_.insert(bytes_.end(), characters, characters + std::strlen(characters));
        return *this;
    }
    TagBytes& zero(std::size_t count = 1) {
        bytes_.insert(bytes_.end(), count, 0);
        return *this;
    }
    TagBytes& word(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
        return *this;
    }
    TagBytes& id3Size(std::size_t value) {
        for (int shift = 21; shift >= 0; shift -= 7)
            bytes_.push_back(static_cast<std::uint8_t>(value >> shift & 0x7F));
        return *this;
    }
    TagBytes& bytes(const Bytes& more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        return *this;
    }
    [[nodiscard]] const Bytes& bytes() const { return bytes_; }

private:
    Bytes bytes_;
};

// What begins like a picture and is as large as one.
Bytes picture(std::size_t size = 300'000) {
    Bytes result{0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0};
    for (std::uint32_t value = 1; result.size() < size; value = value * 1'664'525 + 1'013'904'223)
        result.push_back(static_cast<std::uint8_t>(value >> 24));
    return result;
}

Bytes apeTag(const Bytes& cover) {
    const Bytes items = TagBytes()
                            .word(4)
                            .word(0)
                            .text("Title")
                            .zero()
                            .text("Tune")
                            .word(static_cast<std::uint32_t>(10 + cover.size()))
                            .word(2)
                            .text("Cover Art (Front)")
                            .zero()
                            .text("cover.jpg")
                            .zero()
                            .bytes(cover)
                            .bytes();
    const auto size = static_cast<std::uint32_t>(items.size() + 32);
    return TagBytes()
        .text("APETAGEX")
        .word(2000)
        .word(size)
        .word(2)
        .word(0xA0000000)
        .zero(8)
        .bytes(items)
        .text("APETAGEX")
        .word(2000)
        .word(size)
        .word(2)
        .word(0x80000000)
        .zero(8)
        .bytes();
}

Bytes id3v1() {
    return TagBytes().text("TAG").zero(125).bytes();
}

Bytes id3v2(const Bytes& cover) {
    const Bytes content =
        TagBytes().zero().text("image/jpeg").zero().text("\3").zero().bytes(cover).bytes();
    const Bytes frame =
        TagBytes().text("APIC").id3Size(content.size()).zero(2).bytes(content).bytes();
    return TagBytes().text("ID3\4").zero(2).id3Size(frame.size()).bytes(frame).bytes();
}

Bytes joined(std::initializer_list<Bytes> parts) {
    TagBytes result;
    for (const Bytes& part : parts)
        result.bytes(part);
    return result.bytes();
}

class TaggedApe : public ApeFunctions {
protected:
    // All blocks of a file with these bytes, and those behind a seek to the middle.
    void expectTheTune(const Bytes& bytes) {
        std::int32_t error = 77;
        const std::int32_t decoder =
            create(toAnsi(folder_.write(L"a.ape", bytes)).text.c_str(), &error);
        ASSERT_NE(decoder, 0);
        EXPECT_EQ(error, 0);
        EXPECT_EQ(getInfo(decoder, 1016, 0, 0), blocks);
        EXPECT_TRUE(rest(decoder) == tune_);
        EXPECT_EQ(seek(decoder, middle), 0);
        EXPECT_TRUE(rest(decoder) == Bytes(tune_.begin() + 4 * middle, tune_.end()));
        EXPECT_EQ(destroy(decoder), 0);
    }

    Bytes rest(std::int32_t decoder) {
        Bytes result(4 * blocks);
        std::int32_t got = 0;
        EXPECT_EQ(getData(decoder, result.data(), blocks, &got), 0);
        result.resize(static_cast<std::size_t>(got) * 4);
        return result;
    }

    static constexpr std::int32_t blocks = 132'300;
    static constexpr std::int32_t middle = 66'150;
    TempFolder folder_;
    const Bytes file_ = fileBytes(mediaFile(L"tune.ape"));
    // The file was made from this one.
    const Bytes tune_ = [] {
        Bytes wav = fileBytes(mediaFile(L"tune.wav"));
        return Bytes(wav.end() - 4 * blocks, wav.end());
    }();
};

TEST_F(TaggedApe, a_file_with_a_cover_plays_like_one_without) {
    expectTheTune(file_);
    expectTheTune(joined({file_, apeTag(picture())}));
}

TEST_F(TaggedApe, a_file_with_a_cover_in_front_plays_like_one_without) {
    expectTheTune(joined({id3v2(picture()), file_}));
    expectTheTune(joined({id3v2(picture(2'000'000)), file_}));
}

TEST_F(TaggedApe, a_file_with_several_tags_plays_like_one_without) {
    expectTheTune(
        joined({id3v2(picture(1000)), id3v2(picture()), file_, apeTag(picture()), id3v1()}));
    expectTheTune(joined({file_, apeTag(picture(1000)), apeTag(picture())}));
}

TEST_F(TaggedApe, a_tag_without_sound_is_no_file) {
    std::int32_t error = 0;
    const std::string name =
        toAnsi(folder_.write(L"a.ape", joined({id3v2(picture()), apeTag(picture())}))).text;
    EXPECT_EQ(create(name.c_str(), &error), 0);
    EXPECT_NE(error, 0);
}

// The header of an APE file: a descriptor, which holds the lengths of the parts, then the record of
// the sound, then the place of every frame.
class ApeFrames {
public:
    explicit ApeFrames(Bytes& file) : file_(file) {}

    [[nodiscard]] std::uint32_t blocksPerFrame() const { return word(recordAt() + 4); }
    [[nodiscard]] std::uint32_t begin(std::size_t frame) const { return word(placeAt(frame)); }
    void setBegin(std::size_t frame, std::uint32_t place) {
        std::memcpy(&file_.at(placeAt(frame)), &place, sizeof place);
    }

private:
    [[nodiscard]] std::uint32_t word(std::size_t at) const {
        std::uint32_t result = 0;
        std::memcpy(&result, &file_.at(at), sizeof result);
        return result;
    }
    [[nodiscard]] std::size_t recordAt() const { return word(8); }
    [[nodiscard]] std::size_t placeAt(std::size_t frame) const {
        return recordAt() + word(12) + 4 * frame;
    }

    Bytes& file_;
};

class DamagedApe : public ApeFunctions {
protected:
    // What a file with these bytes gives from that block on.
    Bytes from(std::uint32_t block, const Bytes& bytes) {
        const std::int32_t decoder =
            create(toAnsi(folder_.write(L"a.ape", bytes)).text.c_str(), nullptr);
        Bytes result(static_cast<std::size_t>(getInfo(decoder, 1016, 0, 0)) * 4);
        std::int32_t got = 0;
        EXPECT_EQ(seek(decoder, static_cast<std::int32_t>(block)), 0);
        EXPECT_EQ(getData(decoder, result.data(), most, &got), 0);
        EXPECT_EQ(destroy(decoder), 0);
        result.resize(static_cast<std::size_t>(got) * 4);
        return result;
    }

    TempFolder folder_;
};

TEST_F(DamagedApe, behind_a_frame_that_cannot_be_decoded_the_next_is_whole_also_after_a_seek) {
    Bytes file = fileBytes(mediaFile(L"tune.ape"));
    const ApeFrames frames(file);
    const std::uint32_t second = frames.blocksPerFrame();
    const Bytes good = from(second, file);
    std::fill(file.data() + frames.begin(0) + 8, file.data() + frames.begin(1), 0xFF);
    EXPECT_TRUE(from(second / 2, file) == good);
}

TEST_F(DamagedApe, behind_frames_without_a_place_in_the_file_the_others_follow) {
    Bytes file = fileBytes(mediaFile(L"minute.ape"));
    ApeFrames frames(file);
    const Bytes good = from(2 * frames.blocksPerFrame(), file);
    frames.setBegin(1, frames.begin(0) - 4); // so that the first ends before it begins
    const Bytes rest = from(0, file);
    ASSERT_GE(rest.size(), good.size());
    EXPECT_TRUE(std::equal(good.begin(), good.end(), rest.end() - std::ssize(good)));
}

TEST_F(ApeFunctions, two_decoders_do_not_disturb_each_other) {
    const std::int32_t first = open();
    const std::int32_t second = open();
    EXPECT_NE(first, second);
    seek(first, 44100);
    EXPECT_EQ(getInfo(first, 2001, 0, 0), 1000);
    EXPECT_EQ(getInfo(second, 2001, 0, 0), 0);
    destroy(first);
    EXPECT_EQ(getInfo(second, 1003, 0, 0), 44100);
    destroy(second);
}

} // namespace
} // namespace corvina::test
