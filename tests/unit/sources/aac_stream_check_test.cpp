// Which streams of AAC frames the system's decoder gets.

#include "sources/AacStreamCheck.h"
#include "sources/MediaFoundationSource.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class AacStreamCheck : public testing::Test {
protected:
    bool plays(const Bytes& bytes) { return firstFrameIsWhole(folder_.write(L"a.aac", bytes)); }

    // The stream with that number in the length of its first frame.
    [[nodiscard]] Bytes withLength(std::size_t length) const {
        Bytes bytes = clip_;
        bytes[3] = static_cast<std::uint8_t>((bytes[3] & 0xFC) | length >> 11);
        bytes[4] = static_cast<std::uint8_t>(length >> 3);
        bytes[5] = static_cast<std::uint8_t>((bytes[5] & 0x1F) | length << 5);
        return bytes;
    }

    // Behind a tag of 300 bytes.
    [[nodiscard]] static Bytes tagged(const Bytes& stream) {
        Bytes bytes = {'I', 'D', '3', 4, 0, 0, 0, 0, 2, 44};
        bytes.resize(310);
        bytes.insert(bytes.end(), stream.begin(), stream.end());
        return bytes;
    }

    TempFolder folder_;
    const Bytes clip_ = fileBytes(mediaFile(L"clip.aac"));
};

TEST_F(AacStreamCheck, a_whole_stream_plays) {
    EXPECT_TRUE(plays(clip_));
    EXPECT_TRUE(plays(tagged(clip_)));
    EXPECT_TRUE(plays(withLength(clip_.size())));
}

TEST_F(AacStreamCheck, a_first_frame_that_ends_behind_the_file_is_refused) {
    ASSERT_LT(clip_.size(), 8191u);
    for (const std::size_t length :
         {clip_.size() + 1, std::size_t{4096 + 569}, std::size_t{8191}}) {
        EXPECT_FALSE(plays(withLength(length))) << length;
        EXPECT_FALSE(plays(tagged(withLength(length)))) << length;
    }
    EXPECT_FALSE(plays(Bytes(clip_.begin(), clip_.begin() + 300)));
}

TEST_F(AacStreamCheck, what_is_no_such_stream_is_left_to_the_decoder) {
    EXPECT_TRUE(firstFrameIsWhole(folder_.file(L"missing.aac")));
    EXPECT_TRUE(plays({}));
    EXPECT_TRUE(plays({0xFF, 0xF1}));
    EXPECT_TRUE(plays(Bytes(5000, 'x')));
    EXPECT_TRUE(plays(Bytes(10, 0xFF)));
    for (const wchar_t* name : {L"clip.m4a", L"clip.mp3", L"clip.mp2", L"clip.wav"})
        EXPECT_TRUE(firstFrameIsWhole(mediaFile(name))) << name;
    EXPECT_TRUE(plays(tagged({})));
}

TEST_F(AacStreamCheck, a_source_refuses_such_a_stream_each_time) {
    const std::wstring path = folder_.write(L"a.aac", withLength(4096 + 569));
    MediaFoundationSource source;
    for (int count = 0; count < 10; ++count)
        EXPECT_EQ(source.OpenSource(path), 1);
    EXPECT_EQ(source.OpenSource(mediaFile(L"clip.aac")), 0);
}

} // namespace
} // namespace corvina::test
