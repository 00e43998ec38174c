#include "FileLists.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvina::app {
namespace {

using Tracks = std::vector<Track>;

Tracks tracksOf(const std::string& sheet) {
    return tracksOfList(L"cue", sheet, L"C:\\");
}

TEST(CueSheet, a_track_begins_at_its_index_and_ends_at_the_next_ones) {
    EXPECT_EQ(tracksOf("PERFORMER \"Band\"\nTITLE \"Album\"\nFILE \"album.wav\" WAVE\n"
                       "  TRACK 01 AUDIO\n    TITLE \"First\"\n    INDEX 01 00:00:00\n"
                       "  TRACK 02 AUDIO\n    TITLE Second one\n    INDEX 00 03:05:00\n"
                       "    INDEX 01 03:07:37\n"
                       "  TRACK 03 AUDIO\n    INDEX 01 61:00:74\n"),
              (Tracks{{L"C:\\album.wav", 0, 187493, L"First"},
                      {L"C:\\album.wav", 187493, 3660987, L"Second one"},
                      {L"C:\\album.wav", 3660987, 0, L"Track 03"}}));
}

TEST(CueSheet, a_track_may_have_a_file_of_its_own) {
    EXPECT_EQ(tracksOf("FILE \"one.wav\" WAVE\nTRACK 01 AUDIO\nTITLE \"One\"\nINDEX 01 00:00:00\n"
                       "FILE two.wav WAVE\nTRACK 02 AUDIO\nTITLE \"Two\"\nINDEX 01 00:00:00\n"),
              (Tracks{{L"C:\\one.wav", 0, 0, L"One"}, {L"C:\\two.wav", 0, 0, L"Two"}}));
}

TEST(CueSheet, the_pause_before_a_track_may_lie_in_the_file_before) {
    EXPECT_EQ(tracksOf("FILE \"one.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                       "TRACK 02 AUDIO\nTITLE \"Two\"\nINDEX 00 04:00:00\n"
                       "FILE \"two.wav\" WAVE\nINDEX 01 00:00:00\n"),
              (Tracks{{std::wstring(L"C:\\one.wav")}, {L"C:\\two.wav", 0, 0, L"Two"}}));
}

TEST(CueSheet, tracks_of_data_are_left_out_and_end_the_one_before) {
    EXPECT_EQ(tracksOf("FILE \"disc.bin\" BINARY\nTRACK 01 AUDIO\nTITLE A\nINDEX 01 00:00:00\n"
                       "TRACK 02 MODE1/2352\nINDEX 01 00:10:00\n"),
              (Tracks{{L"C:\\disc.bin", 0, 10000, L"A"}}));
}

TEST(CueSheet, times_that_make_no_sense_name_no_track) {
    EXPECT_EQ(tracksOf("FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 nonsense\n"),
              (Tracks{{std::wstring(L"C:\\a.wav")}}));
    for (const char* time : {"00:-1:00", "00:00:75", "00:60:00", "99999:00:00", "-1:00:00"})
        EXPECT_EQ(tracksOf("FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 " + std::string(time)),
                  (Tracks{{std::wstring(L"C:\\a.wav")}}))
            << time;
    // An end before the beginning is none.
    EXPECT_EQ(tracksOf("FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nTITLE A\nINDEX 01 00:20:00\n"
                       "TRACK 02 AUDIO\nTITLE B\nINDEX 01 00:10:00\n"),
              (Tracks{{L"C:\\a.wav", 20000, 0, L"A"}, {L"C:\\a.wav", 10000, 0, L"B"}}));
    for (const char* sheet :
         {"TRACK 01 AUDIO\nINDEX 01 00:00:00\n", "INDEX 01 00:00:00\n", "FILE \"\" WAVE\n",
          "INDEX 01 \nINDEX \nTRACK \nTITLE \n", "FILE \"http://host/a.wav\" WAVE\n"})
        EXPECT_TRUE(tracksOf(sheet).empty()) << sheet;
}

} // namespace
} // namespace corvina::app
