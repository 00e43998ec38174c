// The tags and covers of every format, through the real library and through a stand-in, whole and
// damaged.

#include "runtime/Text.h"
#include "sources/TagLibrary.h"
#include "support/Media.h"
#include "support/RandomDamage.h"
#include "support/StandIns.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <psapi.h>

namespace corvina::test {
namespace {

using testing::IsEmpty;

using Texts = std::map<std::wstring, std::wstring>;

const Bytes png = bytesOf("not really a picture");

Texts textsOf(const FileTags& tags) {
    Texts texts;
    for (const FileTag& tag : tags.tags)
        EXPECT_TRUE(texts.emplace(tag.name, tag.text).second) << "each name once";
    return texts;
}

class TagsOfFiles : public testing::Test {
protected:
    FileTags read(const Bytes& bytes, const std::wstring& name = L"a file") {
        return library_.read(folder_.write(name, bytes));
    }
    Texts texts(const Bytes& bytes) { return textsOf(read(bytes)); }

    TempFolder folder_;
    TagLibrary library_{systemLibraryApi};
};

TEST_F(TagsOfFiles, of_every_format_that_has_tags_are_read) {
    for (const wchar_t* file : {L"tune.mp3", L"tune.wma", L"tune.wmv", L"tune.ogg", L"tune.flac",
                                L"tune.opus", L"tune.m4a"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(file)));
        Texts found = textsOf(library_.read(mediaFile(file)));
        EXPECT_EQ(found[L"TITLE"], L"Small Tune");
        EXPECT_EQ(found[L"ARTIST"], L"Test Bench");
        EXPECT_EQ(found[L"ALBUM"], L"Media");
        EXPECT_EQ(found[L"GENRE"], L"Other");
        EXPECT_EQ(found[L"TRACKNUMBER"], L"3");
        EXPECT_EQ(found[L"DATE"], L"2024");
        EXPECT_EQ(found[L"COMMENT"], L"made at test time");
    }
}

TEST_F(TagsOfFiles, without_any_are_none) {
    for (const wchar_t* file : {L"tune.wav", L"tune.aac", L"tune.au", L"tune.voc", L"tune.vox",
                                L"clip.caf", L"clip.w64", L"tune.aiff", L"no such file"}) {
        const FileTags found = library_.read(mediaFile(file));
        EXPECT_THAT(found.tags, IsEmpty()) << testing::PrintToString(std::wstring(file));
        EXPECT_THAT(found.picture, IsEmpty());
    }
    EXPECT_THAT(texts({}), IsEmpty());
    EXPECT_THAT(texts(noise(5000)), IsEmpty());
}

TEST_F(TagsOfFiles, are_unicode_and_so_may_be_the_name_of_the_file) {
    const std::wstring title = L"\u4E2D\u6587 Gr\u00FC\u00DFe \u0416";
    const Bytes tag = id3Tag(id3Text("TIT2", title));
    EXPECT_EQ(textsOf(read(joined({tag, mpegFrames()}), L"\u4E2D\u6587.mp3"))[L"TITLE"], title);
    EXPECT_EQ(texts(WavBytes()
                        .format(pcm(8000, 1, 8))
                        .chunk("data", Bytes(10))
                        .chunk("id3 ", tag)
                        .bytes())[L"TITLE"],
              title);
    EXPECT_EQ(texts(mp4With(mp4Item("\xA9nam", 1, bytesOf("Caf\xC3\xA9"))))[L"TITLE"],
              L"Caf\u00E9");
    EXPECT_EQ(texts(opusWith({bytesOf("title=Caf\xC3\xA9")}))[L"TITLE"], L"Caf\u00E9");
    const Bytes ape = fileBytes(mediaFile(L"clip.ape"));
    EXPECT_EQ(texts(joined({ape, apeTag({apeItem("Title", bytesOf("Caf\xC3\xA9"))})}))[L"TITLE"],
              L"Caf\u00E9");
}

TEST_F(TagsOfFiles, are_found_behind_other_bytes_of_mpeg_audio) {
    const Bytes tag =
        id3Tag(joined({id3Text("TIT2", L"Hidden"), id3Picture(3, Bytes(5000, 0xFF))}));
    const Bytes oldTag = joined({bytesOf("TAGBehind"), Bytes(128 - 9)});
    for (const std::size_t count : {1u, 1500u, 60'000u}) {
        EXPECT_EQ(texts(joined({Bytes(count, 'x'), tag, mpegFrames()}))[L"TITLE"], L"Hidden");
        EXPECT_EQ(texts(joined({noise(count), tag, mpegFrames(50)}))[L"TITLE"], L"Hidden");
        EXPECT_EQ(texts(joined({Bytes(count, 'x'), mpegFrames(50), oldTag}))[L"TITLE"], L"Behind");
        EXPECT_EQ(read(joined({Bytes(count, 'x'), tag, mpegFrames()})).picture.size(), 5000u);
    }
    EXPECT_THAT(texts(joined({Bytes(70'000, 'x'), tag, mpegFrames()})), IsEmpty());
}

TEST_F(TagsOfFiles, go_by_what_a_file_holds_and_not_by_its_name) {
    const Bytes bytes = fileBytes(mediaFile(L"tune.flac"));
    for (const wchar_t* name : {L"a.mp3", L"a.wav", L"a.ogg", L"a", L"a.unknown"})
        EXPECT_EQ(textsOf(read(bytes, name))[L"TITLE"], L"Small Tune");
}

TEST_F(TagsOfFiles, have_capital_names_in_order_and_all_values_of_one_name) {
    const FileTags found = read(opusWith(
        {bytesOf("title=One"), bytesOf("Artist=Two"), bytesOf("ARTIST=Three"), bytesOf("empty=")}));
    ASSERT_EQ(found.tags.size(), 2u);
    EXPECT_EQ(found.tags[0].name, L"ARTIST");
    EXPECT_EQ(found.tags[0].text, L"Two; Three");
    EXPECT_EQ(found.tags[1].name, L"TITLE");
}

TEST_F(TagsOfFiles, covers_are_found_in_every_format) {
    const Bytes id3 = id3Tag(id3Picture(3, png));
    const Bytes ape = fileBytes(mediaFile(L"clip.ape"));
    const Bytes files[] = {
        joined({id3, mpegFrames()}),
        WavBytes().format(pcm(8000, 1, 8)).chunk("data", Bytes(10)).chunk("id3 ", id3).bytes(),
        flacWithPicture(fileBytes(mediaFile(L"tune.flac")), png),
        opusWith({joined({bytesOf("METADATA_BLOCK_PICTURE="), base64(flacPicture(3, png))})}),
        mp4With(mp4Item("covr", 14, png)),
        asfWithPicture(fileBytes(mediaFile(L"tune.wma")), png),
        joined({ape, apeTag({apeItem("Cover Art (Front)", joined({bytesOf("a.png"), Bytes{0}, png}),
                                     true)})})};
    for (const Bytes& file : files) {
        SCOPED_TRACE(&file - files);
        EXPECT_EQ(read(file).picture, png);
    }
}

TEST_F(TagsOfFiles, the_front_cover_goes_before_other_pictures) {
    const Bytes other = bytesOf("the back"), lead = bytesOf("the artist");
    EXPECT_EQ(
        read(joined({id3Tag(joined({id3Picture(4, other), id3Picture(3, png)})), mpegFrames()}))
            .picture,
        png);
    EXPECT_EQ(
        read(joined({id3Tag(joined({id3Picture(4, other), id3Picture(7, lead)})), mpegFrames()}))
            .picture,
        other);
}

TEST_F(TagsOfFiles, a_picture_of_more_than_16_megabytes_counts_as_none) {
    const Bytes large(largestPictureBytes), tooLarge(largestPictureBytes + 1);
    EXPECT_EQ(read(mp4With(mp4Item("covr", 14, large))).picture.size(), largestPictureBytes);
    EXPECT_THAT(read(mp4With(mp4Item("covr", 14, tooLarge))).picture, IsEmpty());
}

TEST_F(TagsOfFiles, the_file_is_closed_again) {
    const std::wstring path =
        folder_.write(L"a.mp3", joined({id3Tag(id3Text("TIT2", L"a")), mpegFrames()}));
    EXPECT_EQ(library_.read(path).tags.size(), 1u);
    EXPECT_NE(::DeleteFileW(path.c_str()), 0);
}

std::size_t peakBytes() {
    PROCESS_MEMORY_COUNTERS memory{};
    ::GetProcessMemoryInfo(::GetCurrentProcess(), &memory, sizeof memory);
    return memory.PeakWorkingSetSize;
}

TEST_F(TagsOfFiles, a_false_size_takes_no_memory_of_that_size) {
    (void)library_.read(mediaFile(L"tune.mp3"));
    const std::size_t before = peakBytes();
    ASSERT_GT(before, 0u);
    constexpr std::uint32_t lie = 0x7FFFFFF0;
    const Bytes title = id3Text("TIT2", L"kept");
    const Bytes flac = fileBytes(mediaFile(L"clip.flac"));
    const Bytes files[] = {
        joined({id3Tag(title, 0x0FFFFFFF), mpegFrames()}),
        joined({id3Tag(joined({title, id3Picture(3, png, lie)})), mpegFrames()}),
        mp4With(mp4Item("covr", 14, png, lie)),
        joined({mp4Box("ftyp", Bytes(8)), mp4Box("moov", Bytes(20), lie)}),
        WavBytes().format(pcm(8000, 1, 8)).chunk("id3 ", title, lie).bytes(),
        joined({Bytes(flac.begin(), flac.begin() + 42), Bytes{6, 0xFF, 0xFF, 0xFF},
                flacPicture(3, png)}),
        opusWith({joined({bytesOf("METADATA_BLOCK_PICTURE="), bytesOf("AAAAA3///////w==")})})};
    for (const Bytes& file : files)
        (void)read(file);
    EXPECT_LT(peakBytes(), before + (24u << 20));
}

TEST_F(TagsOfFiles, files_nested_without_end_do_not_use_up_the_stack) {
    constexpr std::size_t levels = 100'000;
    Bytes boxes = mp4Box("ftyp", Bytes(8));
    for (std::size_t level = 0; level < levels; ++level) {
        const Bytes head = joined({bigNumber(8 * (levels - level)), bytesOf("moov")});
        boxes.insert(boxes.end(), head.begin(), head.end());
    }
    EXPECT_THAT(texts(boxes), IsEmpty());
    // A chapter begins with a name and its times.
    constexpr std::size_t chapterBytes = 10 + 18;
    Bytes chapters;
    for (std::size_t level = 0; level < levels; ++level) {
        const Bytes head = joined({bytesOf("CHAP"), bigNumber(chapterBytes * (levels - level) - 10),
                                   Bytes(2), bytesOf("a"), Bytes(17)});
        chapters.insert(chapters.end(), head.begin(), head.end());
    }
    EXPECT_EQ(texts(joined(
                  {id3Tag(joined({id3Text("TIT2", L"kept"), chapters})), mpegFrames()}))[L"TITLE"],
              L"kept");
}

// Under a busy Wine a call of the system takes 20 microseconds.
TEST_F(TagsOfFiles, rows_of_tiny_chunks_take_no_long_time) {
    Bytes chunks;
    for (int chunk = 0; chunk < 300'000; ++chunk)
        chunks.insert(chunks.end(), {'j', 'u', 'n', 'k', 0, 0, 0, 0});
    const Bytes riff =
        joined({bytesOf("RIFF"), littleNumber(chunks.size() + 4), bytesOf("WAVE"), chunks});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(texts(riff), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST_F(TagsOfFiles, rows_of_tiny_frames_take_no_long_time) {
    Bytes frames;
    for (int frame = 0; frame < 100'000; ++frame)
        frames.insert(frames.end(), {'T', 'I', 'T', '2', 0, 0, 0, 1, 0, 0, 0});
    const Bytes file = joined({id3Tag(frames), mpegFrames()});
    const auto begin = std::chrono::steady_clock::now();
    (void)read(file);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST_F(TagsOfFiles, damaged_in_any_place_give_what_is_left_of_them) {
    const Bytes id3 =
        id3Tag(joined({id3Text("TIT2", L"Song"), id3Text("TPE1", L"Band"), id3Picture(3, png)}));
    const Bytes ape = fileBytes(mediaFile(L"clip.ape"));
    const Bytes files[] = {
        joined({id3, mpegFrames()}),
        WavBytes().chunk("id3 ", id3).format(pcm(8000, 1, 8)).chunk("data", Bytes(10)).bytes(),
        flacWithPicture(fileBytes(mediaFile(L"clip.flac")), png),
        opusWith({bytesOf("title=Song"),
                  joined({bytesOf("METADATA_BLOCK_PICTURE="), base64(flacPicture(3, png))})}),
        mp4With(joined({mp4Item("\xA9nam", 1, bytesOf("Song")), mp4Item("covr", 14, png)})),
        asfWithPicture(fileBytes(mediaFile(L"short.wma")), png),
        joined(
            {Bytes(ape.begin(), ape.begin() + 100), apeTag({apeItem("Title", bytesOf("Song"))})}),
        fileBytes(mediaFile(L"clip.ogg")),
        fileBytes(mediaFile(L"clip.m4a"))};
    for (const Bytes& file : files)
        RandomDamage::forEachVariant(file, [&](const Bytes& bytes) {
            const FileTags found = read(bytes);
            ASSERT_LE(found.picture.size(), bytes.size());
            for (const FileTag& tag : found.tags) {
                ASSERT_FALSE(tag.name.empty());
                ASSERT_FALSE(tag.text.empty());
                ASSERT_LE(tag.text.size(), bytes.size());
            }
        });
}

// The library itself.

int freed = 0;
std::wstring readPath;
std::size_t pictureBytes = 0;

const TagsOfFile* __cdecl readStandIn(const wchar_t* path) {
    static const TagOfFile tags[] = {{L"TITLE", L"Song"}};
    static const std::uint8_t picture[] = {1, 2, 3};
    static TagsOfFile found;
    readPath = path;
    found = {tags, 1, pictureBytes ? picture : nullptr, pictureBytes};
    return std::wstring(path) == L"none" ? nullptr : &found;
}
void __cdecl freeStandIn(const TagsOfFile*) {
    ++freed;
}

class TagLibraryStandIn : public testing::Test {
protected:
    TagLibraryStandIn() {
        freed = 0;
        readPath.clear();
        pictureBytes = 3;
        libraries.add("CorvinaTags.dll", {{"CorvinaReadTags", standIn(&readStandIn)},
                                          {"CorvinaFreeTags", standIn(&freeStandIn)}});
    }
    StandIns libraries;
};

TEST_F(TagLibraryStandIn, is_loaded_for_the_first_file_and_freed_at_the_end) {
    {
        TagLibrary library(StandIns::api());
        EXPECT_THAT(libraries.loads, IsEmpty());
        EXPECT_EQ(library.read(L"a").tags.size(), 1u);
        EXPECT_EQ(library.read(L"b").picture, (Bytes{1, 2, 3}));
        EXPECT_THAT(library.read(L"none").tags, IsEmpty());
        EXPECT_EQ(libraries.loads, (std::vector<std::string>{"load CorvinaTags.dll"}));
    }
    EXPECT_EQ(libraries.loads.back(), "free CorvinaTags.dll");
    EXPECT_EQ(freed, 2);
}

TEST_F(TagLibraryStandIn, that_is_missing_or_lacks_a_function_gives_no_tags_until_it_is_there) {
    TagLibrary library(StandIns::api());
    libraries.withoutEachExport([&](const std::string&, const std::string&) {
        EXPECT_THAT(library.read(L"a").tags, IsEmpty());
    });
    EXPECT_EQ(std::count(libraries.loads.begin(), libraries.loads.end(), "free CorvinaTags.dll"), 2)
        << "one that lacks a function is let go";
    EXPECT_EQ(library.read(L"a").tags.size(), 1u);
}

TEST_F(TagLibraryStandIn, is_given_a_long_name_as_the_system_takes_it_and_no_device) {
    TagLibrary library(StandIns::api());
    const std::wstring name = L"C:\\" + std::wstring(300, L'a') + L".mp3";
    EXPECT_EQ(library.read(name).tags.size(), 1u);
    EXPECT_EQ(readPath, L"\\\\?\\" + name);
    readPath.clear();
    EXPECT_THAT(library.read(L"C:\\music\\aux.mp3").tags, IsEmpty());
    EXPECT_EQ(readPath, L"");
}

TEST_F(TagLibraryStandIn, that_is_missing_gives_no_tags) {
    libraries.remove("CorvinaTags.dll");
    TagLibrary without(StandIns::api());
    EXPECT_THAT(without.read(L"a").tags, IsEmpty());
}

TEST_F(TagLibraryStandIn, may_have_no_picture) {
    pictureBytes = 0;
    EXPECT_THAT(TagLibrary(StandIns::api()).read(L"a").picture, IsEmpty());
}

} // namespace
} // namespace corvina::test

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 100);
}
