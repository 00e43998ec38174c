// The forms that an MP4 file may have, and where each of them ends.

#include "Mp4Movies.h"
#include "sources/Mp4Check.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

constexpr std::uint64_t unknown = ~std::uint64_t{0};

class Mp4Forms : public testing::Test {
protected:
    bool plays() { return mayBePlayed(folder_.write(L"a.m4a", movie.bytes())); }

    static Bytes cut(Bytes bytes) {
        bytes.pop_back();
        return bytes;
    }
    static Bytes numbered(std::uint64_t number, const Bytes& table) {
        return joined({table, bigNumber(number, 8)});
    }

    TempFolder folder_;
    Mp4Movie movie;
    Mp4Track& track = movie.tracks[0];
};

TEST_F(Mp4Forms, a_movie_with_no_more_than_it_needs_plays) {
    EXPECT_TRUE(plays());
}

TEST_F(Mp4Forms, headers_of_both_versions_play_unless_they_are_cut) {
    for (const bool wide : {false, true}) {
        movie.times = mp4Times(1000, 1000, wide);
        track.times = mp4Times(8000, 8000, wide);
        EXPECT_TRUE(plays()) << wide;
        movie.times = cut(movie.times);
        EXPECT_FALSE(plays()) << wide;
        movie.times = mp4Times(1000, 1000, wide);
        track.times = cut(track.times);
        EXPECT_FALSE(plays()) << wide;
    }
}

TEST_F(Mp4Forms, a_movie_may_be_ten_minutes_longer_than_its_longest_track) {
    for (const bool wide : {false, true}) {
        track.times = mp4Times(8000, 8000, wide);
        movie.tracks.resize(1);
        movie.tracks.push_back(track);
        movie.tracks[1].times = mp4Times(8000, 4000, wide);
        movie.times = mp4Times(1000, 601'000, wide);
        EXPECT_TRUE(plays()) << wide;
        movie.times = mp4Times(1000, 601'001, wide);
        EXPECT_FALSE(plays()) << wide;
    }
}

TEST_F(Mp4Forms, a_length_may_be_unknown) {
    for (const bool wide : {false, true}) {
        movie.times = mp4Times(1000, unknown, wide);
        track.times = mp4Times(8000, 8000);
        EXPECT_TRUE(plays()) << wide;
        movie.times = mp4Times(1000, 700'000);
        EXPECT_FALSE(plays()) << wide;
        track.times = mp4Times(8000, unknown, wide);
        EXPECT_TRUE(plays()) << wide;
    }
}

TEST_F(Mp4Forms, a_length_that_a_track_of_text_lacks_is_unknown_too) {
    movie.times = mp4Times(1000, 700'000);
    track.times = mp4Times(8000, unknown);
    movie.tracks.push_back(track);
    movie.tracks[1].handler = joined({Bytes(8), bytesOf("text")});
    movie.tracks[1].times = {};
    EXPECT_TRUE(plays());
}

TEST_F(Mp4Forms, a_second_has_one_to_ten_million_ticks) {
    for (const auto& [ticks, good] :
         {std::pair{0u, false}, std::pair{1u, true}, std::pair{10'000'000u, true},
          std::pair{10'000'001u, false}}) {
        movie.times = mp4Times(ticks, 1);
        track.times = mp4Times(8000, 8000);
        EXPECT_EQ(plays(), good) << ticks;
        movie.times = mp4Times(1000, 1000);
        track.times = mp4Times(ticks, 1);
        EXPECT_EQ(plays(), good) << ticks;
    }
}

TEST_F(Mp4Forms, a_list_of_edits_begins_inside_the_sound) {
    for (const auto& [from, good] : {std::pair{0u, true}, std::pair{8000u, true},
                                     std::pair{8001u, false}, std::pair{0xFFFFFFFFu, true}}) {
        track.edits = mp4Edits(from);
        EXPECT_EQ(plays(), good) << from;
    }
}

TEST_F(Mp4Forms, a_list_of_edits_in_another_form_is_left_to_the_decoder) {
    track.edits = mp4Edits(8001);
    ASSERT_FALSE(plays());
    track.edits[0] = 1;
    EXPECT_TRUE(plays()) << "the second version";
    track.edits = cut(mp4Edits(8001));
    EXPECT_TRUE(plays()) << "cut";
    track.edits = mp4Edits(8001);
    track.times = mp4Times(8000, 0);
    EXPECT_TRUE(plays()) << "of a track whose length is not known";
}

TEST_F(Mp4Forms, up_to_seven_bytes_may_stand_behind_the_last_box) {
    for (Bytes* const end : {&movie.behind, &track.behindTrack, &track.behindMedia,
                             &track.behindInformation, &track.behindTables}) {
        *end = Bytes(7, 0xFF);
        EXPECT_TRUE(plays());
        *end = Bytes(8, 0xFF);
        EXPECT_FALSE(plays());
        *end = {};
    }
}

TEST_F(Mp4Forms, a_table_that_counts_one_more_than_it_has_is_refused) {
    for (Bytes* const table : {&track.sampleTimes, &track.runs, &track.places}) {
        const Bytes whole = *table;
        (*table)[7] = 2;
        EXPECT_FALSE(plays());
        *table = joined({whole, Bytes(11)});
        EXPECT_TRUE(plays()) << "there may be more than it counts";
        *table = cut(whole);
        EXPECT_FALSE(plays());
        *table = whole;
    }
}

TEST_F(Mp4Forms, a_table_of_times_or_chunks_without_an_entry_is_refused) {
    for (Bytes* const table : {&track.sampleTimes, &track.runs, &track.places}) {
        const Bytes whole = *table;
        (*table)[7] = 0;
        EXPECT_FALSE(plays());
        *table = whole;
    }
}

TEST_F(Mp4Forms, a_chunk_has_one_sample_or_as_many_as_there_are) {
    for (const auto& [samples, good] :
         {std::pair{0u, false}, std::pair{1u, true}, std::pair{0x01000000u, true}}) {
        track.runs = mp4Table({1, 1, samples, 1});
        EXPECT_EQ(plays(), good) << samples;
    }
}

TEST_F(Mp4Forms, the_description_of_a_format_ends_inside_its_table) {
    track.formats = joined({mp4Table({1, 8}), bytesOf("mp4a")});
    EXPECT_TRUE(plays());
    track.formats = joined({mp4Table({1, 9}), bytesOf("mp4a")});
    EXPECT_FALSE(plays());
    track.formats = cut(joined({mp4Table({1, 7}), bytesOf("mp4a")}));
    EXPECT_FALSE(plays());
}

TEST_F(Mp4Forms, there_are_up_to_a_hundred_formats_and_a_run_has_one_of_them) {
    for (const auto& [formats, used, good] :
         {std::tuple{1u, 1u, true}, std::tuple{1u, 0u, false}, std::tuple{1u, 2u, false},
          std::tuple{3u, 3u, true}, std::tuple{100u, 100u, true}, std::tuple{101u, 1u, false}}) {
        track.formats = joined({mp4Table({formats, 8}), bytesOf("alac")});
        track.runs = mp4Table({1, 1, 1, used});
        EXPECT_EQ(plays(), good) << formats << ' ' << used;
    }
}

TEST_F(Mp4Forms, the_first_sample_ends_inside_the_file) {
    const auto end = static_cast<std::uint32_t>(movie.bytes().size());
    for (const auto& [at, bytes, good] :
         {std::tuple{end - 10, 10u, true}, std::tuple{end - 10, 11u, false},
          std::tuple{end + 1, 1u, false}, std::tuple{end + 1, 0xFFFFFFFFu, false}}) {
        track.places = mp4Table({1, at});
        track.sizes = mp4Table({bytes, 1});
        EXPECT_EQ(plays(), good) << at << ' ' << bytes;
    }
}

TEST_F(Mp4Forms, a_first_sample_without_a_byte_may_stand_at_the_end_of_the_file) {
    track.sizes = mp4Table({0, 1, 0});
    const auto end = static_cast<std::uint32_t>(movie.bytes().size());
    track.places = mp4Table({1, end});
    EXPECT_TRUE(plays());
    track.places = mp4Table({1, end + 1});
    EXPECT_FALSE(plays());
}

TEST_F(Mp4Forms, a_place_may_be_of_eight_bytes) {
    track.placesName = "co64";
    track.places = numbered(Mp4Track::data, mp4Table({1}));
    EXPECT_TRUE(plays());
    track.places = numbered(std::uint64_t{1} << 32, mp4Table({1}));
    EXPECT_FALSE(plays());
    track.places = cut(numbered(Mp4Track::data, mp4Table({1})));
    EXPECT_FALSE(plays());
    track.places = mp4Table({0});
    EXPECT_FALSE(plays());
}

TEST_F(Mp4Forms, samples_have_one_size_or_each_its_own) {
    track.sizes = mp4Table({0, 1, Mp4Track::dataBytes});
    EXPECT_TRUE(plays());
    track.sizes = mp4Table({0, 1, 0x10000});
    EXPECT_FALSE(plays());
    track.sizes = mp4Table({0, 2, Mp4Track::dataBytes});
    EXPECT_FALSE(plays());
    track.sizes = mp4Table({0, 0});
    EXPECT_FALSE(plays());
    track.sizes = cut(mp4Table({Mp4Track::dataBytes, 1}));
    EXPECT_FALSE(plays());
}

TEST_F(Mp4Forms, a_track_without_a_sample_is_refused) {
    track.sizes = mp4Table({Mp4Track::dataBytes, 0});
    EXPECT_FALSE(plays());
    track.sizes = joined({mp4Table({Mp4Track::dataBytes, 0}), Bytes{1, 1, 1, 1}});
    EXPECT_FALSE(plays());
    track.sizes = mp4Table({Mp4Track::dataBytes, 0x01000000});
    EXPECT_TRUE(plays());
}

TEST_F(Mp4Forms, the_rare_table_of_sizes_is_left_to_the_decoder) {
    track.sizesName = "stz2";
    EXPECT_TRUE(plays());
    track.sizes = {};
    EXPECT_FALSE(plays());
}

TEST_F(Mp4Forms, tables_may_be_empty_in_a_movie_of_fragments) {
    track.sampleTimes = mp4Table({0});
    track.runs = mp4Table({0});
    track.sizes = mp4Table({0, 0});
    track.places = mp4Table({0});
    EXPECT_FALSE(plays());
    movie.behind = mp4Box("mvex", mp4Box("trex", Bytes(24)));
    EXPECT_TRUE(plays());
    track.runs = cut(track.runs);
    EXPECT_FALSE(plays());
    track.runs = mp4Table({0});
    track.formats = {};
    EXPECT_FALSE(plays());
}

TEST_F(Mp4Forms, another_track_is_judged_if_it_is_sound_or_pictures) {
    movie.tracks.push_back(track);
    Mp4Track& other = movie.tracks[1];
    for (const auto& [kind, good] :
         {std::pair{"soun", false}, std::pair{"vide", false}, std::pair{"text", true}}) {
        other.handler = joined({Bytes(8), bytesOf(kind)});
        other.runs = mp4Table({1, 1, 1, 1});
        EXPECT_TRUE(plays()) << kind;
        other.runs = mp4Table({1, 2, 1, 1});
        EXPECT_EQ(plays(), good) << kind;
    }
    other = Mp4Track();
    other.formats = joined({mp4Table({1, 8}), bytesOf("xxxx")});
    EXPECT_TRUE(plays()) << "one of two that is known is enough";
    movie.tracks.erase(movie.tracks.begin());
    EXPECT_FALSE(plays());
}

} // namespace
} // namespace corvina::test
