// What an MP4 file must hold before the system's decoder gets it.

#include "Mp4Bytes.h"
#include "sources/Mp4Check.h"
#include "support/FaultyFiles.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace corvina::test {
namespace {

class Mp4Check : public testing::Test {
protected:
    bool plays(const Bytes& bytes) { return mayBePlayed(folder_.write(L"a.m4a", bytes)); }

    TempFolder folder_;
    const Bytes clip_ = fileBytes(mediaFile(L"clip.m4a"));
    const Bytes movie_ = fileBytes(mediaFile(L"clip.mp4"));
};

TEST_F(Mp4Check, whole_files_play) {
    for (const wchar_t* name : {L"clip.m4a", L"clip-lossless.m4a", L"clip.mp4", L"tune.m4a"})
        EXPECT_TRUE(mayBePlayed(mediaFile(name))) << name;
}

TEST_F(Mp4Check, a_file_of_another_kind_is_left_to_the_decoder) {
    EXPECT_TRUE(mayBePlayed(mediaFile(L"tune.aac")));
    EXPECT_TRUE(plays({}));
    EXPECT_TRUE(plays(Bytes(5000, 'x')));
}

TEST_F(Mp4Check, a_file_without_its_list_of_tracks_is_refused) {
    EXPECT_FALSE(plays(Bytes(clip_.begin(), clip_.begin() + 40)));
    EXPECT_FALSE(plays(Bytes(clip_.begin(), clip_.end() - 1)));
}

TEST_F(Mp4Check, a_box_that_ends_behind_its_parent_is_refused) {
    constexpr std::size_t size = static_cast<std::size_t>(-8);
    for (const char* box : {"moov", "mvhd", "trak", "mdia", "mdhd", "hdlr", "minf", "stbl", "stsd",
                            "stts", "stsc", "stsz", "stco"})
        for (const std::uint32_t bytes : {0x40000000U, 0xFFFFFFFFU, 7U})
            EXPECT_FALSE(plays(withNumber(clip_, box, size, bytes))) << box << ' ' << bytes;
}

TEST_F(Mp4Check, a_track_that_lacks_a_table_is_refused) {
    constexpr std::size_t name = static_cast<std::size_t>(-4);
    for (const char* box :
         {"trak", "mdia", "mdhd", "hdlr", "minf", "stbl", "stsd", "stts", "stsc", "stsz", "stco"})
        EXPECT_FALSE(plays(withNumber(clip_, box, name, 0x78787878))) << box;
}

struct Contradiction {
    const char* box;
    std::size_t at;
    std::uint32_t number;
    const char* what;
};
constexpr Contradiction contradictions[] = {
    {"mvhd", 12, 0, "no ticks in a second"},
    {"mvhd", 16, 0x40000000, "much longer than its track"},
    {"mdhd", 12, 0, "no ticks in a second of the track"},
    {"mdhd", 12, 0x40000000, "more ticks than there are"},
    {"elst", 12, 0x40000000, "begins behind its end"},
    {"stsd", 4, 0, "no format"},
    {"stsd", 4, 0x40000000, "more formats than there is space"},
    {"stsd", 12, 0x78787878, "an unknown format"},
    {"stts", 4, 0x40000000, "more times than there is space"},
    {"stsc", 4, 0, "no chunks"},
    {"stsc", 8, 2, "begins with its second chunk"},
    {"stsc", 12, 0, "no samples in a chunk"},
    {"stsc", 16, 2, "a format that it lacks"},
    {"stsz", 8, 0x40000000, "more samples than there is space"},
    {"stsz", 12, 0x40000000, "a sample beyond the end"},
    {"stco", 4, 0, "no places"},
    {"stco", 8, 0x40000000, "a place beyond the end"},
};

TEST_F(Mp4Check, tables_that_contradict_each_other_are_refused) {
    for (const auto& [box, at, number, what] : contradictions)
        EXPECT_FALSE(plays(withNumber(clip_, box, at, number))) << what;
}

TEST_F(Mp4Check, pictures_with_broken_tables_are_refused_with_their_sound) {
    EXPECT_TRUE(plays(movie_));
    EXPECT_FALSE(plays(withNumber(movie_, "stsc", 8, 2)));
}

// A file on a network or a stick may go between two reads.
TEST_F(Mp4Check, a_file_of_which_a_part_cannot_be_read_leaves_the_host_alive) {
    for (const wchar_t* name : {L"clip.m4a", L"clip.mp4"})
        forEachFault(fileFaults, [&] {
            const bool plays = mayBePlayed(mediaFile(name), faultyFileApi);
            EXPECT_TRUE(plays || fileFaults.struck() > 0);
            EXPECT_EQ(openFiles, 0);
        });
}

TEST_F(Mp4Check, tags_may_be_anything) {
    EXPECT_TRUE(plays(withNumber(clip_, "ilst", static_cast<std::size_t>(-8), 0x40000000)));
}

} // namespace
} // namespace corvina::test
