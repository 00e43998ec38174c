// Where the sound of an MP4 file ends, by its headers.

#include "Mp4Bytes.h"
#include "Mp4Movies.h"
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

// Built movies: one second of sound by each header of its track.
class BuiltSoundEnd : public testing::Test {
protected:
    double end() { return mp4SoundEnd(folder_.write(L"a.m4a", movie.bytes())).value_or(-1); }

    TempFolder folder_;
    Mp4Movie movie;
    Mp4Track& track = movie.tracks[0];
};

TEST_F(BuiltSoundEnd, is_exact_in_headers_of_both_versions) {
    for (const bool wide : {false, true}) {
        movie.times = mp4Times(1000, 1000, wide);
        track.header = mp4TrackTimes(1250, wide);
        EXPECT_EQ(end(), 1.25) << wide;
        track.times = mp4Times(8000, 16'000, wide);
        EXPECT_EQ(end(), 2) << wide;
        track.times = mp4Times(8000, 8000, wide);
    }
}

TEST_F(BuiltSoundEnd, of_headers_of_the_second_version_may_lie_beyond_32_bits) {
    track.times = mp4Times(1'000'000, 8'000'000'000, true);
    EXPECT_EQ(end(), 8000);
    track.times = mp4Times(8000, 8000);
    track.header = mp4TrackTimes(0xFFFFFFFF, true);
    EXPECT_EQ(end(), 4294967.295);
}

TEST_F(BuiltSoundEnd, is_that_of_the_media_if_the_track_does_not_say_it) {
    for (const Bytes& header :
         {mp4TrackTimes(0), mp4TrackTimes(0xFFFFFFFF), mp4TrackTimes(~std::uint64_t{0}, true),
          Bytes{}, Bytes(23, 0x02), joined({Bytes{1}, Bytes(34, 0x02)})}) {
        track.header = header;
        EXPECT_EQ(end(), 1) << header.size();
    }
    track.header = mp4TrackTimes(5000);
    for (const Bytes& times : {Bytes{}, mp4Times(0, 1000), Bytes(15, 1)}) {
        movie.times = times;
        EXPECT_EQ(end(), 1) << "without the ticks of a second " << times.size();
    }
}

TEST_F(BuiltSoundEnd, is_that_of_the_track_if_its_media_does_not_say_it) {
    for (const Bytes& times : {mp4Times(8000, 0), mp4Times(8000, 0xFFFFFFFF), mp4Times(0, 8000),
                               mp4Times(8000, ~std::uint64_t{0}, true), Bytes{}, Bytes(19, 2)}) {
        track.times = times;
        EXPECT_EQ(end(), 1) << times.size();
    }
    track.header = mp4TrackTimes(0);
    EXPECT_EQ(end(), -1);
}

TEST_F(BuiltSoundEnd, of_media_is_before_that_by_what_one_edit_leaves_out) {
    track.header = mp4TrackTimes(0);
    EXPECT_EQ(end(), 1);
    track.edits = mp4Edits(2000);
    EXPECT_EQ(end(), 0.75);
    track.edits = mp4Edits(8000);
    EXPECT_EQ(end(), -1) << "nothing is left";
}

TEST_F(BuiltSoundEnd, does_not_follow_edits_in_another_form) {
    track.header = mp4TrackTimes(0);
    Bytes secondVersion = mp4Edits(2000);
    secondVersion[0] = 1;
    Bytes cut = mp4Edits(2000);
    cut.pop_back();
    for (const Bytes& edits : {mp4Edits(0xFFFFFFFF), mp4Edits(2000, 2), mp4Edits(2000, 0),
                               secondVersion, cut, Bytes(4)}) {
        track.edits = edits;
        EXPECT_EQ(end(), 1) << edits.size();
    }
}

TEST_F(BuiltSoundEnd, is_that_of_the_first_track_of_sound) {
    movie.tracks = {Mp4Track(), Mp4Track(), Mp4Track()};
    movie.tracks[0].handler = joined({Bytes(8), bytesOf("vide")});
    movie.tracks[0].header = mp4TrackTimes(9000);
    movie.tracks[1].header = mp4TrackTimes(2000);
    movie.tracks[2].header = mp4TrackTimes(3000);
    EXPECT_EQ(end(), 2);
    movie.tracks[1].handler.pop_back();
    EXPECT_EQ(end(), 3) << "a cut name of its kind is none";
}

} // namespace
} // namespace corvina::test
