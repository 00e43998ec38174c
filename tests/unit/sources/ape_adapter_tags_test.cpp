// The project's own MACDll.dll with files as taggers leave them.

#include "ApeFunctions.h"

#include <cstring>
#include <initializer_list>

namespace corvina::test {
namespace {

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

} // namespace
} // namespace corvina::test
