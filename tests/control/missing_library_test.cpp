// What is delivered, on a machine that has one library less: only the formats of that library fail,
// and the program says which library it is.

#include "Support.h"
#include "support/Media.h"
#include "support/TagBytes.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <array>

namespace corvina::test {
namespace {

struct Kind {
    const wchar_t* file; // of build/media
    std::vector<std::wstring> libraries;
    // What the program ends with and says without them.
    int failure = 3;
    const char* words = "Could not open file";
    const wchar_t* other = nullptr; // a library that plays the file too
};

// The functions of the APE library are called as if they were imported, so a missing one is a
// run-time error.
const std::array<Kind, 9> kinds{{
    {L"tune.wav", {}},
    {L"tune.mp3", {}},
    {.file = L"tune.ogg",
     .libraries = {L"ogg.dll", L"vorbis.dll", L"vorbisfile.dll"},
     .other = L"libsndfile.dll"},
    {L"tune.au", {L"libsndfile.dll"}},
    {L"tune.aiff", {L"libsndfile.dll"}},
    {L"tune.flac", {L"libsndfile.dll"}},
    {L"tune.opus", {L"libsndfile.dll"}},
    {L"clip.w64", {L"libsndfile.dll"}},
    {L"tune.ape", {L"MACDll.dll"}, 99, "File not found: MACDll.dll"},
}};

std::string narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

class Distribution : public ::testing::Test {
protected:
    // Registers everything that is delivered but the libraries, of one text.
    void layOutWithout(const std::wstring& missing) {
        for (const wchar_t* name :
             {L"Corvina.ocx", L"corvina-play.exe", L"ogg.dll", L"vorbis.dll", L"vorbisfile.dll",
              L"libsndfile.dll", L"MACDll.dll", L"CorvinaTags.dll"}) {
            if (missing.find(name) == 0 || missing.find(std::wstring(L" ") + name) != missing.npos)
                continue;
            const std::wstring delivered = std::wstring(CORVINA_DIST L"/") + name;
            ASSERT_TRUE(::CopyFileW(delivered.c_str(), folder.file(name).c_str(), TRUE)) << name;
        }
        ASSERT_EQ(run(L"regsvr32 /s \"" + folder.path() + L"\\Corvina.ocx\""), 0);
        // The libraries lie in the folder of the tests too, where the system would find them.
        ::GetCurrentDirectoryW(MAX_PATH, home);
        ASSERT_TRUE(::SetCurrentDirectoryW(folder.path().c_str()));
    }
    void TearDown() override {
        ::SetCurrentDirectoryW(home);
        EXPECT_EQ(regsvr32(L"/s"), 0);
    }

    // What the delivered program ends with, and what it prints.
    int play(const std::wstring& arguments, std::string& printed) const {
        return run(L"\"" + folder.path() + L"\\corvina-play.exe\" " + arguments, &printed);
    }
    [[nodiscard]] std::wstring media(const std::wstring& name) const {
        return L"\"" + std::wstring(home) + L"\\" + mediaFile(name) + L"\"";
    }

    TempFolder folder;
    wchar_t home[MAX_PATH] = L".";
};

class DistributionWithout : public Distribution,
                            public ::testing::WithParamInterface<const wchar_t*> {};

TEST_P(DistributionWithout, a_library_fails_for_its_formats_alone_and_names_it) {
    const std::wstring missing = GetParam();
    layOutWithout(missing);
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(narrow(kind.file));
        std::string printed;
        const int result = play(L"--info " + media(kind.file), printed);
        const auto isMissing = [&](const std::wstring& library) {
            return missing.find(library) == 0 || missing.find(L" " + library) != missing.npos;
        };
        const auto library = std::ranges::find_if(kind.libraries, isMissing);
        const bool wanted =
            library != kind.libraries.end() && (!kind.other || isMissing(kind.other));
        const std::string named = (wanted ? narrow(*library) : std::string()) + " is missing";
        EXPECT_EQ(result, wanted ? kind.failure : 0) << printed;
        EXPECT_EQ(printed.find(named) != std::string::npos, wanted) << printed;
        EXPECT_EQ(printed.find(kind.words) != std::string::npos, wanted) << printed;
    }
}

TEST_F(Distribution, names_no_library_for_a_damaged_file_that_another_one_would_read) {
    layOutWithout(L"ogg.dll");
    folder.write(L"damaged.ogg", Bytes(1000));
    std::string printed;
    EXPECT_EQ(play(L"--info damaged.ogg", printed), 3);
    EXPECT_EQ(printed.find("is missing"), std::string::npos) << printed;
    EXPECT_NE(printed.find("Could not open file"), std::string::npos) << printed;
}

TEST_F(Distribution, passes_over_a_file_that_it_cannot_play_and_plays_the_next) {
    layOutWithout(L"MACDll.dll");
    std::string printed;
    EXPECT_EQ(play(L"--console " + media(L"tune.ape") + L" " + media(L"short.wav"), printed), 99);
    EXPECT_NE(printed.find("MACDll.dll is missing"), std::string::npos) << printed;
    EXPECT_NE(printed.find("short.wav"), std::string::npos) << printed;
}

// What a script reads of a file with tags, and whether it plays.
class TagsOfDistribution : public Distribution {
protected:
    std::string readTags() {
        const char text[] = "Set p = CreateObject(\"Corvina.cPlayer\")\r\n"
                            "p.Init\r\n"
                            "WScript.Echo \"open \" & p.OpenAudioFile(\"tagged.wav\")\r\n"
                            "WScript.Echo \"tags \" & p.TagCount\r\n"
                            "WScript.Echo \"title '\" & p.TagText(\"TITLE\") & \"'\"\r\n"
                            "WScript.Echo \"no cover \" & (p.Picture Is Nothing)\r\n"
                            "WScript.Echo \"as long \" & (p.DurationMs > 1000)\r\n"
                            "WScript.Echo p.FormatName\r\n";
        const std::wstring script = folder.write(L"tags.vbs", Bytes(text, text + sizeof text - 1));
        folder.write(L"tagged.wav", WavBytes()
                                        .format(pcm(44100, 2, 16))
                                        .chunk("data", Bytes(4 * 44100 * 2))
                                        .chunk("id3 ", id3Tag(id3Text("TIT2", L"Song")))
                                        .bytes());
        std::string printed;
        EXPECT_EQ(run(L"cscript //nologo \"" + script + L"\"", &printed), 0) << printed;
        return printed;
    }
};

TEST_F(TagsOfDistribution, are_none_without_their_library_and_the_file_opens_as_always) {
    layOutWithout(L"CorvinaTags.dll");
    const std::string printed = readTags();
    for (const char* line :
         {"open 0", "tags 0", "title ''", "no cover True", "as long True", "WAV"})
        EXPECT_NE(printed.find(line), std::string::npos) << line << "\n" << printed;
}

TEST_F(TagsOfDistribution, are_read_with_their_library) {
    layOutWithout(L"none");
    const std::string printed = readTags();
    for (const char* line : {"open 0", "title 'Song'", "no cover True", "as long True", "WAV"})
        EXPECT_NE(printed.find(line), std::string::npos) << line << "\n" << printed;
}

// A folder of music with a library in it under the name of a decoder, and hosts that run there.
class PlantedLibrary : public Distribution {
protected:
    // Everything but the APE library, which lies beside the music. It is the true one: were it
    // loaded, the file would play.
    void layOutWithPlanted() {
        for (const wchar_t* name : {L"MACDll.dll", L"wnaspi32.dll"})
            ASSERT_TRUE(::CopyFileW(CORVINA_DIST L"/MACDll.dll", music.file(name).c_str(), TRUE));
        ASSERT_TRUE(
            ::CopyFileW(mediaFile(L"tune.ape").c_str(), music.file(L"tune.ape").c_str(), TRUE));
        layOutWithout(L"MACDll.dll");
        ASSERT_TRUE(::SetCurrentDirectoryW(music.path().c_str()));
    }

    TempFolder music;
};

TEST_F(PlantedLibrary, is_not_loaded_from_the_current_folder_by_the_player_program) {
    layOutWithPlanted();
    std::string printed;
    EXPECT_EQ(play(L"--info tune.ape", printed), 99) << printed;
    EXPECT_NE(printed.find("MACDll.dll is missing"), std::string::npos) << printed;
}

TEST_F(PlantedLibrary, is_not_loaded_from_the_current_folder_by_the_control_in_any_host) {
    layOutWithPlanted();
    const char text[] = "Set p = CreateObject(\"Corvina.cPlayer\")\r\n"
                        "p.Init\r\n"
                        "On Error Resume Next\r\n"
                        "x = p.OpenAudioFile(\"tune.ape\")\r\n"
                        "WScript.Echo \"number \" & (Err.Number And 255)\r\n"
                        "WScript.Echo Err.Description\r\n";
    const std::wstring script = music.write(L"open.vbs", Bytes(text, text + sizeof text - 1));
    std::string printed;
    EXPECT_EQ(run(L"cscript //nologo \"" + script + L"\"", &printed), 0);
    EXPECT_NE(printed.find("number 53"), std::string::npos) << printed;
    EXPECT_NE(printed.find("MACDll.dll"), std::string::npos) << printed;
}

INSTANTIATE_TEST_SUITE_P(Library, DistributionWithout,
                         ::testing::Values(L"none", L"ogg.dll", L"ogg.dll libsndfile.dll",
                                           L"vorbis.dll libsndfile.dll",
                                           L"vorbisfile.dll libsndfile.dll", L"libsndfile.dll",
                                           L"MACDll.dll", L"CorvinaTags.dll"),
                         [](const auto& test) {
                             const std::string name = narrow(test.param);
                             const bool two = name.find(' ') != name.npos;
                             return name.substr(0, name.find('.')) + (two ? "_and_sndfile" : "");
                         });

} // namespace
} // namespace corvina::test
