// MP3 files with more in front of their sound than one tag.

#include "support/BareReader.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nserror.h>

namespace corvina {
namespace {

using namespace test;

constexpr std::size_t tagHeader = 10;

std::size_t tagSize(const Bytes& tag) {
    std::size_t size = 0;
    for (std::size_t index = 6; index < tagHeader; ++index)
        size = size << 7 | tag.at(index);
    return size + tagHeader;
}

// A tag of that content, and zeros behind it that belong to the tag.
Bytes tag(const Bytes& content, std::size_t padding = 0) {
    Bytes result{'I', 'D', '3', 3, 0, 0};
    const std::size_t size = content.size() + padding;
    for (int shift = 21; shift >= 0; shift -= 7)
        result.push_back(static_cast<std::uint8_t>(size >> shift & 0x7F));
    result.insert(result.end(), content.begin(), content.end());
    result.resize(result.size() + padding);
    return result;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts)
        result.insert(result.end(), part.begin(), part.end());
    return result;
}

class CrowdedMp3 : public testing::Test {
protected:
    void SetUp() override {
        if (!::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version"))
            GTEST_SKIP() << "Windows has a reader of its own";
    }

    // Everything that a file with these bytes delivers.
    Bytes sound(const Bytes& bytes) { return BareReader(folder_.write(L"a.mp3", bytes)).rest(); }

    // In the list of attributes, in units of 100 nanoseconds.
    QWORD duration(const Bytes& bytes) {
        const BareReader bare(folder_.write(L"d.mp3", bytes));
        EXPECT_TRUE(bare.opened());
        const auto header = ComPtr<IWMSyncReader>(&bare.reader()).query<IWMHeaderInfo3>();
        constexpr WORD wholeFile = 0xFFFF;
        WORD count = 0;
        header->GetAttributeCountEx(wholeFile, &count);
        for (WORD index = 0; index < count; ++index) {
            WCHAR name[100];
            WORD nameLength = ARRAYSIZE(name);
            WMT_ATTR_DATATYPE type{};
            WORD language = 0;
            QWORD value = 0;
            DWORD length = sizeof value;
            if (header->GetAttributeByIndexEx(wholeFile, index, name, &nameLength, &type, &language,
                                              reinterpret_cast<BYTE*>(&value), &length) == S_OK &&
                std::wstring(name) == L"Duration")
                return value;
        }
        return 0;
    }

    TempFolder folder_;
    const Bytes file_ = fileBytes(mediaFile(L"tune.mp3"));
    const Bytes frames_{file_.begin() + static_cast<int>(tagSize(file_)), file_.end()};
    const Bytes title_{'T', 'I', 'T', '2', 0, 0, 0, 4, 0, 0, 0, 'O', 'n', 'e'};
};

TEST_F(CrowdedMp3, several_tags_in_front_of_the_sound_change_nothing) {
    const Bytes expected = sound(file_);
    ASSERT_GT(expected.size(), 500'000u);
    EXPECT_TRUE(sound(joined({tag(title_), file_})) == expected);
    EXPECT_TRUE(sound(joined({tag(title_), tag(title_, 5000), file_})) == expected);
    EXPECT_TRUE(sound(joined({tag(title_), Bytes(3000), file_})) == expected);
}

TEST_F(CrowdedMp3, padding_of_any_length_in_front_of_the_sound_changes_nothing) {
    const Bytes expected = sound(file_);
    EXPECT_TRUE(sound(joined({tag(title_, 2'000'000), frames_})) == expected);
    EXPECT_TRUE(sound(joined({tag(title_), Bytes(2'000'000), frames_})) == expected);
    EXPECT_TRUE(sound(joined({Bytes(100), frames_})) == expected);
}

TEST_F(CrowdedMp3, other_bytes_in_front_of_the_sound_change_nothing) {
    EXPECT_TRUE(sound(joined({Bytes(60'000, 'x'), frames_})) == sound(file_));
}

TEST_F(CrowdedMp3, a_file_whose_sound_begins_later_can_be_sought) {
    const auto from = [&](const Bytes& bytes) {
        BareReader reader(folder_.write(L"b.mp3", bytes));
        EXPECT_EQ(reader.reader().SetRange(10'000'000, 0), S_OK);
        return reader.rest();
    };
    EXPECT_TRUE(from(joined({tag(title_), tag(title_, 40'000), frames_})) == from(frames_));
}

// MPEG-1 with 44100 samples a second: 1152 in a frame. The first one describes the others.
TEST_F(CrowdedMp3, the_duration_of_a_few_frames_is_counted) {
    constexpr double frame = 1152e7 / 44100;
    for (const int frames : {2, 5, 10}) {
        std::size_t size = 0;
        for (int count = 0; count <= frames; ++count)
            size += 144 * 128'000 / 44100 + (frames_.at(size + 2) >> 1 & 1);
        const Bytes cut(frames_.begin(), frames_.begin() + static_cast<int>(size));
        EXPECT_NEAR(static_cast<double>(duration(cut)), frames * frame, frame) << frames;
        EXPECT_NEAR(static_cast<double>(duration(joined({Bytes(3000, 'x'), cut}))), frames * frame,
                    frame)
            << frames;
    }
    EXPECT_NEAR(static_cast<double>(duration(file_)), 3e7, 4 * frame);
}

TEST_F(CrowdedMp3, tags_without_sound_and_frames_that_do_not_follow_each_other_are_refused) {
    const Bytes frame(frames_.begin(), frames_.begin() + 200);
    for (const Bytes& bytes :
         {tag(title_, 10'000), joined({tag(title_), tag(title_), Bytes(100'000)}),
          joined({Bytes(2000, 'x'), frame, Bytes(2000, 'x'), frame, Bytes(2000, 'x')})}) {
        const ComPtr<IWMSyncReader> reader = BareReader::create();
        EXPECT_EQ(reader->Open(folder_.write(L"c.mp3", bytes).c_str()),
                  NS_E_UNRECOGNIZED_STREAM_TYPE);
    }
}

} // namespace
} // namespace corvina
