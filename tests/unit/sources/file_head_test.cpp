// Pieces of a file: what is there, and what is not.

#include "sources/FileHead.h"

#include "support/FaultyFiles.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

TEST(FilePiece, is_as_long_as_its_bytes) {
    EXPECT_EQ(FilePiece("").size(), 0u);
    EXPECT_EQ(FilePiece("abc").size(), 3u);
}

TEST(FilePiece, has_a_text_only_where_all_of_it_is) {
    const FilePiece piece("abcd");
    EXPECT_TRUE(piece.hasAt(0, "abcd"));
    EXPECT_TRUE(piece.hasAt(3, "d"));
    EXPECT_FALSE(piece.hasAt(3, "de"));
    EXPECT_FALSE(piece.hasAt(4, "d"));
    EXPECT_FALSE(piece.hasAt(5, "d"));
    EXPECT_EQ(piece.find("cd"), 2u);
    EXPECT_EQ(piece.find("x"), 4u);
}

TEST(FilePiece, reads_numbers_in_both_orders_with_zeros_behind_its_end) {
    const FilePiece piece("\x12\x34\xAB");
    EXPECT_EQ(piece.little(0, 2), 0x3412u);
    EXPECT_EQ(piece.big(0, 2), 0x1234u);
    EXPECT_EQ(piece.little(1, 4), 0xAB34u);
    EXPECT_EQ(piece.big(1, 4), 0x34AB'0000u);
    EXPECT_EQ(piece.byte(2), 0xAB);
    EXPECT_EQ(piece.byte(3), 0);
    EXPECT_EQ(piece.byte(1000), 0);
}

TEST(FileHead, gives_as_much_of_a_piece_as_the_file_holds) {
    TempFolder folder;
    const FileAccess access;
    const FileHead head(access, folder.write(L"a", bytesOf("0123456789")));
    EXPECT_EQ(head.piece(0, 4).size(), 4u);
    EXPECT_TRUE(head.piece(6, 4).hasAt(0, "6789"));
    EXPECT_EQ(head.piece(8, 4).size(), 2u);
    EXPECT_EQ(head.piece(10, 4).size(), 0u);
    EXPECT_EQ(head.piece(1000, 4).size(), 0u);
    EXPECT_EQ(head.piece(0x7FFFFFFF, 4).size(), 0u);
    EXPECT_EQ(head.piece(0x80000000, 4).size(), 0u);
    EXPECT_EQ(head.piece(0x1'0000'0000, 4).size(), 0u);
}

TEST(FileHead, gives_nothing_of_a_file_that_is_missing_or_fails) {
    TempFolder folder;
    const FileAccess none;
    EXPECT_EQ(FileHead(none, folder.path() + L"\\none").piece(0, 4).size(), 0u);
    const FileAccess access(faultyFileApi);
    const FileHead head(access, folder.write(L"a", bytesOf("0123456789")));
    for (const char* const function : {"ReadFile", "SetFilePointer"}) {
        fileFaults.arm(function, 1);
        EXPECT_EQ(head.piece(0, 4).size(), 0u) << function;
        fileFaults.disarm();
    }
    EXPECT_EQ(head.piece(0, 4).size(), 4u);
}

} // namespace
} // namespace corvina::test
