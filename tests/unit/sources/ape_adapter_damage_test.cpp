// The project's own MACDll.dll with damaged files.

#include "ApeFunctions.h"

#include <algorithm>
#include <cstring>

namespace corvina::test {
namespace {

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

} // namespace
} // namespace corvina::test
