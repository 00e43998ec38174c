// Where the sound of an MP4 file ends, by its headers.

#include "Mp4Bytes.h"
#include "sources/Mp4SoundEnd.h"
#include "support/Media.h"
#include "support/TempFolder.h"

namespace corvina::test {
namespace {

class SoundEnd : public testing::Test {
protected:
    double of(const Bytes& bytes) {
        return mp4SoundEnd(folder_.write(L"a.m4a", bytes)).value_or(-1);
    }

    TempFolder folder_;
    // 0.4 seconds of sound behind 1024 samples of 8000 in a second that are left out.
    const Bytes clip_ = fileBytes(mediaFile(L"clip.m4a"));
};

TEST_F(SoundEnd, is_where_the_sound_that_is_presented_ends) {
    EXPECT_NEAR(of(clip_), 0.4, 0.001);
}

TEST_F(SoundEnd, does_not_follow_the_movie_that_says_to_be_longer) {
    EXPECT_NEAR(of(withNumber(clip_, "mvhd", 16, 900)), 0.4, 0.001);
}

TEST_F(SoundEnd, is_that_of_the_sound_and_not_of_the_pictures) {
    EXPECT_NEAR(mp4SoundEnd(mediaFile(L"clip.mp4")).value_or(-1), 0.4, 0.1);
}

TEST_F(SoundEnd, is_the_later_one_if_two_headers_differ) {
    EXPECT_NEAR(of(withNumber(clip_, "tkhd", 20, 100)), 0.4, 0.001);
    EXPECT_NEAR(of(withNumber(clip_, "tkhd", 20, 5000)), 5, 0.001);
    EXPECT_NEAR(of(withNumber(clip_, "mdhd", 16, 8000 + 1024)), 1, 0.001);
}

TEST_F(SoundEnd, is_unknown_if_no_header_says_it) {
    for (const std::uint32_t unknown : {0u, 0xFFFFFFFFu})
        EXPECT_EQ(of(withNumber(withNumber(clip_, "tkhd", 20, unknown), "mdhd", 16, unknown)), -1);
    EXPECT_EQ(of(withNumber(withNumber(clip_, "mvhd", 12, 0), "mdhd", 12, 0)), -1);
    EXPECT_EQ(of(withNumber(clip_, "hdlr", 8, 0)), -1);
}

TEST_F(SoundEnd, of_other_files_is_unknown) {
    EXPECT_EQ(of({}), -1);
    EXPECT_EQ(of(Bytes(5000, 'x')), -1);
    EXPECT_EQ(mp4SoundEnd(L"no such file.m4a"), std::nullopt);
    for (std::size_t length = 0; length < clip_.size(); length += 7)
        (void)of(Bytes(clip_.begin(), clip_.begin() + static_cast<std::ptrdiff_t>(length)));
}

} // namespace
} // namespace corvina::test
