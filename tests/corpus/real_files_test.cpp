// Real files of many encoders through the registered control: it says of each what the tests of the
// package say from which the file comes, plays it to its end, and refuses what is no sound.

#include "InstantDevice.h"
#include "RealFile.h"
#include "support/PlayerHost.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>

namespace corvina::test {
namespace {

bool isThere(const std::wstring& file) {
    return ::GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::wstring extensionOf(const std::wstring& name) {
    const std::size_t dot = name.rfind(L'.');
    return dot == name.npos ? std::wstring() : name.substr(dot + 1);
}

std::string narrow(const std::wstring& text) {
    std::string narrowed;
    for (const wchar_t letter : text)
        narrowed += letter < 128 ? static_cast<char>(letter) : '_';
    return narrowed;
}

// One host for all files, as a player has.
class RealFiles : public testing::Test {
protected:
    static void SetUpTestSuite() { host_ = std::make_unique<PlayerHost>(); }
    static void TearDownTestSuite() { host_.reset(); }

    static _cPlayer* player() { return host_->control(); }

    static long open(const std::wstring& file) {
        long result = -1;
        EXPECT_EQ(S_OK, player()->OpenAudioFile(_bstr_t(file.c_str()).GetBSTR(), &result));
        return result;
    }
    template <typename Get>
    static std::wstring textOf(Get get) {
        _bstr_t text;
        EXPECT_EQ(S_OK, get(text.GetAddress()));
        return text.length() == 0 ? std::wstring() : std::wstring(text, text.length());
    }
    static std::wstring tag(const wchar_t* name) {
        _bstr_t wanted(name);
        return textOf([&](BSTR* text) { return player()->get_TagText(wanted.GetBSTR(), text); });
    }
    static std::wstring format() {
        return textOf([](BSTR* text) { return player()->get_FormatName(text); });
    }
    static long rate() {
        long hertz = -1;
        EXPECT_EQ(S_OK, player()->get_Info_Samplerate(&hertz));
        return hertz;
    }
    static long channels() {
        short count = -1;
        EXPECT_EQ(S_OK, player()->get_Info_Channels(&count));
        return count;
    }
    static bool isKnown(const std::wstring& name) {
        const std::wstring all =
            textOf([](BSTR* text) { return player()->get_Extensions(text); }) + L";";
        return all.find(L"*." + extensionOf(name) + L";") != all.npos;
    }

    // What is heard, in milliseconds, until the file ends.
    static double play(const std::wstring& file) {
        InstantDevice device;
        const std::size_t donePlays = host_->donePlays();
        EXPECT_EQ(host_->start(file), 0);
        EXPECT_TRUE(host_->waitForDone(donePlays + 1)) << "it does not end";
        const WAVEFORMATEX& made = device.format();
        if (made.nChannels == 0 || made.nSamplesPerSec == 0)
            return 0;
        const auto frames = static_cast<double>(device.samples().size()) / made.nChannels;
        lastBlock_ = 1000.0 * blockBytes / sizeof(std::int16_t) / made.nChannels /
                     static_cast<double>(made.nSamplesPerSec);
        return 1000.0 * frames / static_cast<double>(made.nSamplesPerSec);
    }

    static constexpr int blockBytes = 8000;
    static inline std::unique_ptr<PlayerHost> host_;
    static inline double lastBlock_ = 0; // in milliseconds; what is played ends with a whole block
};

class RealFileOf : public RealFiles, public testing::WithParamInterface<RealFile> {
protected:
    // Packages count what an encoder adds, up to a frame of it, and round.
    static double slack() {
        const bool inFrames = format() == L"MP3" || format() == L"AAC";
        return inFrames ? 1152.0 * 1000 / static_cast<double>(rate()) : 1;
    }
};

TEST_P(RealFileOf, has_the_format_length_and_tags_that_its_package_expects) {
    const RealFile& expected = GetParam();
    ASSERT_EQ(open(expected.file()), 0);
    EXPECT_EQ(narrow(format()), expected.format);
    EXPECT_GT(rate(), 0);
    EXPECT_GT(channels(), 0);
    if (expected.rate != 0) {
        EXPECT_EQ(rate(), expected.rate);
    }
    if (expected.channels != 0) {
        EXPECT_EQ(channels(), expected.channels);
    }
    long duration = -1;
    EXPECT_EQ(S_OK, player()->get_DurationMs(&duration));
    EXPECT_GT(duration, 0);
    if (expected.milliseconds != 0) {
        const bool withoutLeadIn =
            expected.leadIn > 0 && duration < expected.milliseconds - expected.leadIn / 2;
        EXPECT_NEAR(
            static_cast<double>(duration),
            static_cast<double>(expected.milliseconds - (withoutLeadIn ? expected.leadIn : 0)),
            slack());
    }
    if (expected.title) {
        EXPECT_EQ(tag(L"TITLE"), expected.title);
    }
    if (expected.artist) {
        EXPECT_EQ(tag(L"ARTIST"), expected.artist);
    }
}

TEST_P(RealFileOf, is_played_to_its_end) {
    const RealFile& expected = GetParam();
    const double heard = play(expected.file());
    EXPECT_GT(heard, 0);
    if (expected.milliseconds == 0)
        return;
    const double whole = static_cast<double>(expected.milliseconds);
    if (expected.whole == Whole::yes) {
        EXPECT_GT(heard, whole - 2 * slack() - 1);
    }
    // The reader of Windows Media delivers up to a tenth of a second more.
    EXPECT_LT(heard, whole + lastBlock_ + 2 * slack() + 100);
}

std::vector<RealFile> presentFiles() {
    std::vector<RealFile> present = playableFiles();
    std::erase_if(present, [](const RealFile& file) { return !isThere(file.file()); });
    return present;
}

INSTANTIATE_TEST_SUITE_P(Package, RealFileOf, testing::ValuesIn(presentFiles()),
                         [](const auto& test) {
                             std::string name = narrow(test.param.path);
                             std::ranges::replace_if(
                                 name, [](char c) { return !std::isalnum(c); }, '_');
                             return name + "_" + std::to_string(test.index);
                         });

TEST_F(RealFiles, lack_only_what_is_newer_than_the_package) {
    const std::string version = tagLibraryVersion();
    ASSERT_FALSE(version.empty());
    for (const RealFile& file : playableFiles()) {
        if (isThere(file.file()))
            continue;
        // Said in the output, so that nobody takes it for tested.
        std::cout << "taglib " << version << " has no " << file << '\n';
        EXPECT_GT(file.since, std::stoi(version)) << file;
    }
}

// The decoder of APE refuses them, but a file of this kind opens even so, without a sample rate.
constexpr const wchar_t* opensEmpty[] = {L"longloop.ape", L"zerodiv.ape"};

TEST_F(RealFiles, of_ape_whose_header_is_wrong_open_without_sound) {
    for (const wchar_t* name : opensEmpty) {
        SCOPED_TRACE(narrow(name));
        EXPECT_EQ(open(tagLibraryFile(name)), 0);
        EXPECT_EQ(rate(), 0);
        EXPECT_EQ(host_->start(tagLibraryFile(name)), 5);
        EXPECT_FALSE(host_->isPlaying());
    }
    // Its header says 1248 bits, which is no width.
    EXPECT_EQ(open(tagLibraryFile(L"longloop.ape")), 0);
    EXPECT_EQ(narrow(format()), "Monkey's Audio");
}

std::vector<std::wstring> filesWithoutSound() {
    std::vector<std::wstring> names = tagLibraryFiles();
    for (const RealFile& file : playableFiles())
        std::erase(names, file.path);
    for (const wchar_t* name : opensEmpty)
        std::erase(names, name);
    return names;
}

TEST_F(RealFiles, of_other_kinds_and_without_sound_are_refused) {
    const std::vector<std::wstring> names = filesWithoutSound();
    EXPECT_GE(names.size(), 40u);
    for (const std::wstring& name : names) {
        SCOPED_TRACE(narrow(name));
        const std::size_t before = host_->events().size();
        EXPECT_EQ(open(tagLibraryFile(name)), isKnown(name) ? 3 : 2);
        ASSERT_EQ(host_->events().size(), before + 1);
        EXPECT_EQ(host_->events().back(),
                  (LoggedEvent{L"Err", L"", 1,
                               isKnown(name) ? L"Could not open file" : L"Format not supported"}));
    }
}

// The extension chooses the decoder, which then meets something else. (Not those of MP4: Wine's
// Media Foundation waits for ever in a third of these files, and each would take the ten seconds
// after which its open is given up.)
class RealFilesUnder : public RealFiles, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(RealFilesUnder, a_wrong_extension_open_or_are_refused) {
    TempFolder folder;
    for (const std::wstring& name : tagLibraryFiles()) {
        SCOPED_TRACE(narrow(name));
        const std::wstring copy = folder.file(name + L"." + GetParam());
        ASSERT_TRUE(::CopyFileW(tagLibraryFile(name).c_str(), copy.c_str(), TRUE));
        const long result = open(copy);
        EXPECT_TRUE(result == 0 || result == 3) << result;
        if (result == 0) {
            EXPECT_FALSE(format().empty());
            tag(L"TITLE");
        }
    }
    // Another file still plays.
    EXPECT_GT(play(tagLibraryFile(L"sinewave.flac")), 3500);
}

INSTANTIATE_TEST_SUITE_P(Extension, RealFilesUnder,
                         testing::Values(L"wav", L"aiff", L"ape", L"ogg", L"flac", L"mp3", L"wma",
                                         L"voc"),
                         [](const auto& test) { return narrow(test.param); });

} // namespace
} // namespace corvina::test
