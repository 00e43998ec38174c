// Files that are no sound, and files with names of any kind, through the registered control.

#include "Cell.h"
#include "InstantDevice.h"
#include "support/PlayerHost.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

std::wstring corpusFile(const std::string& name) {
    Cell cell;
    cell.name = name;
    return cell.path();
}

class ControlFiles : public testing::Test {
protected:
    // What the device gets of the file.
    Samples heard(const std::wstring& file) {
        InstantDevice device;
        const std::size_t donePlays = host_.donePlays();
        const long result = host_.start(file);
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(result != 0 || host_.waitForDone(donePlays + 1));
        return device.samples();
    }

    // The file is refused with these numbers, nothing plays, and another file then does.
    void expectRefused(const std::wstring& file, long result, const LoggedEvent& event) {
        const std::size_t before = host_.events().size();
        {
            InstantDevice device;
            EXPECT_EQ(host_.start(file), result);
            EXPECT_FALSE(host_.isPlaying());
            EXPECT_EQ(host_.stop(), 0);
            EXPECT_EQ(device.format().nChannels, 0) << "the device was opened";
        }
        ASSERT_EQ(host_.events().size(), before + 1);
        EXPECT_EQ(host_.events().back(), event);
        EXPECT_EQ(heard(good_), goodSamples_);
    }

    TempFolder folder_;
    PlayerHost host_;
    const std::wstring good_ = corpusFile("s16-44100-2.wav");
    const Samples goodSamples_ = heard(good_);
};

// But for au and snd: without a header these are bare samples.
TEST_F(ControlFiles, of_whatever_extension_that_are_no_sound_are_refused_and_the_next_one_plays) {
    for (const wchar_t* extension : {L"ogg", L"wav",  L"aiff", L"aifc", L"voc", L"mp3", L"wma",
                                     L"wmv", L"wave", L"rf64", L"bw64", L"mp2", L"asf", L"flac",
                                     L"oga", L"opus", L"w64",  L"caf",  L"m4a", L"mp4", L"aac"}) {
        SCOPED_TRACE(
            std::string(extension, extension + std::char_traits<wchar_t>::length(extension)));
        const std::wstring file = folder_.write(std::wstring(L"noise.") + extension, noise(5000));
        expectRefused(file, 3, {L"Err", L"", 1, L"Could not open file"});
    }
}

TEST_F(ControlFiles, that_are_missing_or_of_no_known_kind_are_refused_and_the_next_one_plays) {
    expectRefused(folder_.path() + L"\\none.wav", 1, {L"Err", L"", 1, L"File doen't exist"});
    expectRefused(folder_.write(L"sound.xyz", noise(5000)), 2,
                  {L"Err", L"", 1, L"Format not supported"});
}

TEST_F(ControlFiles, whose_sound_nothing_converts_are_refused_and_the_next_one_plays) {
    WAVEFORMATEX record = pcm(44100, 2, 16);
    record.wFormatTag = 0x1234;
    expectRefused(folder_.write(L"unknown.wav", plainWav(record, noise(5000))), 5,
                  {L"Err", L"InitConversion", 5, L"Can't init conversion"});
}

// A folder whose path alone is longer than the system's functions take without a prefix.
class LongFolder {
public:
    explicit LongFolder(const std::wstring& parent) {
        std::wstring path = L"\\\\?\\" + parent;
        for (int level = 0; level < 3; ++level) {
            path += L"\\" + std::wstring(100, static_cast<wchar_t>(L'a' + level));
            EXPECT_TRUE(::CreateDirectoryW(path.c_str(), nullptr));
            folders_.push_back(path);
        }
    }
    LongFolder(const LongFolder&) = delete;
    LongFolder& operator=(const LongFolder&) = delete;
    ~LongFolder() {
        for (const std::wstring& file : files_)
            ::DeleteFileW(file.c_str());
        for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
            ::RemoveDirectoryW(folder->c_str());
    }

    // The path of a copy, as a host would spell it.
    std::wstring copy(const std::wstring& from, const std::wstring& name) {
        files_.push_back(folders_.back() + L"\\" + name);
        EXPECT_TRUE(::CopyFileW(from.c_str(), files_.back().c_str(), TRUE));
        return files_.back().substr(4);
    }

private:
    std::vector<std::wstring> folders_;
    std::vector<std::wstring> files_;
};

class NamedFiles : public ControlFiles, public testing::WithParamInterface<const char*> {
protected:
    // The decoder of WMA fills noise in, different each time.
    void expectSame(const Samples& one, const Samples& other) {
        EXPECT_FALSE(one.empty());
        if (std::string(GetParam()).ends_with(".wma"))
            EXPECT_EQ(one.size(), other.size());
        else
            EXPECT_EQ(one, other);
    }

    const std::wstring file_ = corpusFile(GetParam());
    const std::wstring extension_ = file_.substr(file_.rfind(L'.'));
};

TEST_P(NamedFiles, outside_the_code_page_play_as_under_their_own_name) {
    const std::wstring copy = folder_.file(L"\u6771\u4EAC \u0416" + extension_);
    ASSERT_TRUE(::CopyFileW(file_.c_str(), copy.c_str(), TRUE));
    expectSame(heard(copy), heard(file_));
}

TEST_P(NamedFiles, longer_than_260_characters_play_as_under_their_own_name) {
    LongFolder deep(folder_.path());
    const Samples own = heard(file_);
    expectSame(heard(deep.copy(file_, L"plain" + extension_)), own);
    expectSame(heard(deep.copy(file_, L"\u6771\u4EAC" + extension_)), own);
}

TEST_P(NamedFiles, that_the_system_is_to_take_literally_play_as_under_their_own_name) {
    LongFolder deep(folder_.path());
    const Samples own = heard(file_);
    const std::wstring copy = folder_.file(L"short" + extension_);
    ASSERT_TRUE(::CopyFileW(file_.c_str(), copy.c_str(), TRUE));
    expectSame(heard(L"\\\\?\\" + copy), own);
    expectSame(heard(L"\\\\?\\" + deep.copy(file_, L"long" + extension_)), own);
}

INSTANTIATE_TEST_SUITE_P(Sources, NamedFiles,
                         testing::Values("level1-44100-2.ape", "vorbis-44100-2.ogg",
                                         "s16x-44100-6.wav", "s16-44100-2.aiff", "lame-44100-2.mp3",
                                         "wma2-44100-2.wma", "flac-44100-2.flac",
                                         "alac-44100-2.m4a"),
                         [](const auto& file) {
                             const std::string name = file.param;
                             return name.substr(name.rfind('.') + 1);
                         });

} // namespace
} // namespace corvina::test
