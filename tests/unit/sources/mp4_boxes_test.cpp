// The boxes of MP4 files, also of files larger than any that a test could write.

#include "sources/Mp4Boxes.h"
#include "support/TagBytes.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>

namespace corvina::test {
namespace {

constexpr std::uint64_t gigabyte = std::uint64_t{1} << 30;
constexpr std::uint64_t megabyte = std::uint64_t{1} << 20;

// A file of which a few parts are not 0.
struct LargeFile {
    std::map<std::uint64_t, Bytes> parts = {};
    std::uint64_t size = 0;   // that can be read
    std::uint64_t stated = 0; // that the system says
    bool fails = false;       // where its size is asked for
    bool unreadable = false;
    int open = 0;
    std::wstring openedPath = {};
};
LargeFile file;

HANDLE WINAPI openFile(LPCWSTR path, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
    ++file.open;
    file.openedPath = path;
    return &file;
}

BOOL WINAPI closeFile(HANDLE) {
    --file.open;
    return TRUE;
}

DWORD WINAPI setPosition(HANDLE, LONG, PLONG upper, DWORD method) {
    if (method != FILE_END || file.fails) {
        ::SetLastError(ERROR_NOT_SUPPORTED);
        return INVALID_SET_FILE_POINTER;
    }
    *upper = static_cast<LONG>(file.stated >> 32);
    return static_cast<DWORD>(file.stated);
}

BOOL WINAPI readPart(HANDLE, LPVOID to, DWORD count, LPDWORD got, LPOVERLAPPED place) {
    *got = count;
    if (file.unreadable)
        return FALSE;
    const std::uint64_t at = std::uint64_t{place->OffsetHigh} << 32 | place->Offset;
    *got = static_cast<DWORD>(std::min<std::uint64_t>(count, file.size - std::min(at, file.size)));
    auto* const bytes = static_cast<std::uint8_t*>(to);
    std::fill(bytes, bytes + *got, std::uint8_t{0});
    for (const auto& [start, part] : file.parts) {
        const std::uint64_t from = std::max(start, at);
        const std::uint64_t end = std::min(start + part.size(), at + *got);
        if (from < end)
            std::memcpy(bytes + (from - at), &part[static_cast<std::size_t>(from - start)],
                        static_cast<std::size_t>(end - from));
    }
    return *got > 0;
}

const FileApi largeFiles = [] {
    FileApi api;
    api.createFileWide = &openFile;
    api.closeHandle = &closeFile;
    api.setFilePointer = &setPosition;
    api.readFile = &readPart;
    return api;
}();

class LargeMp4 : public testing::Test {
protected:
    void SetUp() override { file = {}; }
    static void lay(std::uint64_t size, std::map<std::uint64_t, Bytes> parts) {
        file = {.parts = std::move(parts), .size = size, .stated = size};
    }
};

Bytes wideHead(std::string_view name, std::uint64_t size) {
    return joined({bigNumber(1), bytesOf(name), bigNumber(size, 8)});
}

TEST_F(LargeMp4, has_its_size_also_beyond_32_bits) {
    for (const std::uint64_t size :
         {std::uint64_t{0}, std::uint64_t{1000}, 3 * gigabyte, 5 * gigabyte + 7}) {
        lay(size, {});
        EXPECT_EQ(Mp4Boxes(L"a.mp4", largeFiles).whole().size, size);
    }
    EXPECT_EQ(file.open, 0);
}

TEST_F(LargeMp4, of_a_byte_less_than_four_gigabytes_is_told_from_a_failure) {
    lay(4 * gigabyte - 1, {});
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    ::SetLastError(ERROR_INVALID_HANDLE);
    EXPECT_EQ(boxes.whole().size, 4 * gigabyte - 1);
    file.fails = true;
    EXPECT_EQ(boxes.whole().size, 0u);
}

TEST_F(LargeMp4, has_boxes_behind_one_of_more_than_four_gigabytes) {
    lay(5 * gigabyte + 100, {{0, mp4Box("ftyp", Bytes(8))},
                             {16, wideHead("mdat", 5 * gigabyte)},
                             {5 * gigabyte + 16, mp4Box("moov", bytesOf("the movie"))}});
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    const Mp4Boxes::Box data = boxes.child(boxes.whole(), "mdat");
    EXPECT_EQ(data.content, 32u);
    EXPECT_EQ(data.size, 5 * gigabyte - 16);
    const Mp4Boxes::Box movie = boxes.child(boxes.whole(), "moov");
    EXPECT_EQ(movie.content, 5 * gigabyte + 24);
    EXPECT_EQ(boxes.bytes(movie), bytesOf("the movie"));
}

TEST_F(LargeMp4, has_a_last_box_of_size_0_that_goes_to_the_end) {
    lay(1000, {{0, mp4Box("ftyp", Bytes(8))}, {16, bytesOf(std::string_view("\0\0\0\0mdat", 8))}});
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    const Mp4Boxes::Box data = boxes.child(boxes.whole(), "mdat");
    EXPECT_EQ(data.content, 24u);
    EXPECT_EQ(data.size, 976u);
}

TEST_F(LargeMp4, has_no_box_that_ends_behind_its_parent_or_before_its_own_head) {
    for (const Bytes& head :
         {wideHead("mdat", 985), wideHead("mdat", 15), wideHead("mdat", ~std::uint64_t{0}),
          mp4Box("mdat", Bytes(8), 985), mp4Box("mdat", Bytes(8), 7)}) {
        lay(1000, {{0, mp4Box("ftyp", Bytes(8))}, {16, head}});
        const Mp4Boxes boxes(L"a.mp4", largeFiles);
        EXPECT_EQ(boxes.child(boxes.whole(), "mdat").content, 0u);
    }
    lay(1000, {{0, mp4Box("ftyp", Bytes(8))}, {16, wideHead("mdat", 984)}});
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    EXPECT_EQ(boxes.child(boxes.whole(), "mdat").content, 32u);
}

TEST_F(LargeMp4, gives_up_to_a_megabyte_of_a_content) {
    lay(4 * megabyte,
        {{0, mp4Box("free", {}, megabyte + 8)}, {megabyte + 8, mp4Box("skip", {}, megabyte + 9)}});
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    EXPECT_EQ(boxes.bytes(boxes.child(boxes.whole(), "free")).size(), megabyte);
    const Mp4Boxes::Box larger = boxes.child(boxes.whole(), "skip");
    EXPECT_EQ(larger.size, megabyte + 1);
    EXPECT_EQ(boxes.bytes(larger).size(), megabyte);
}

TEST_F(LargeMp4, that_ends_before_its_size_gives_what_is_there) {
    lay(30, {{0, mp4Box("ftyp", bytesOf("twenty two characters."), 200)}});
    file.stated = 1000;
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    const Mp4Boxes::Box head = boxes.child(boxes.whole(), "ftyp");
    EXPECT_EQ(head.size, 192u);
    EXPECT_EQ(boxes.bytes(head), bytesOf("twenty two characters."));
    int count = 0;
    boxes.forEach(boxes.whole(), 0, [&](const Mp4Boxes::Box&) { ++count; });
    EXPECT_EQ(count, 1);
    file.unreadable = true;
    EXPECT_TRUE(boxes.bytes(head).empty());
}

TEST_F(LargeMp4, has_ten_thousand_boxes_of_a_level_at_most) {
    Bytes many;
    for (int box = 0; box < 10'001; ++box)
        many.insert(many.end(), {0, 0, 0, 8, 'f', 'r', 'e', 'e'});
    const std::size_t size = many.size();
    lay(size, {{0, std::move(many)}});
    const Mp4Boxes boxes(L"a.mp4", largeFiles);
    for (const auto& [from, expected] :
         {std::pair{0, 10'000}, std::pair{8, 10'000}, std::pair{16, 9'999}}) {
        int count = 0;
        boxes.forEach(boxes.whole(), static_cast<std::uint64_t>(from),
                      [&](const Mp4Boxes::Box&) { ++count; });
        EXPECT_EQ(count, expected);
    }
}

TEST_F(LargeMp4, with_a_long_name_is_opened_by_the_name_that_the_system_takes) {
    lay(1000, {});
    const std::wstring name = L"C:\\" + std::wstring(300, L'a') + L".mp4";
    EXPECT_EQ(Mp4Boxes(name, largeFiles).whole().size, 1000u);
    EXPECT_EQ(file.openedPath, L"\\\\?\\" + name);
}

TEST_F(LargeMp4, that_cannot_be_opened_has_no_box) {
    FileApi none = largeFiles;
    none.createFileWide = [](LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE)
                              WINAPI -> HANDLE { return INVALID_HANDLE_VALUE; };
    lay(1000, {{0, mp4Box("ftyp", Bytes(8))}});
    {
        const Mp4Boxes boxes(L"a.mp4", none);
        EXPECT_EQ(boxes.whole().size, 0u);
        EXPECT_TRUE(boxes.bytes({.content = 0, .size = 8}).empty());
    }
    EXPECT_EQ(file.open, 0);
}

} // namespace
} // namespace corvina::test
