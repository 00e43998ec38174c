// What is delivered, on a machine that has one library less: only the formats of that library fail,
// and the program says which library it is.

#include "Support.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>

namespace corvina::test {
namespace {

struct Kind {
    const wchar_t* file; // of build/media
    std::vector<std::wstring> libraries;
};

const std::array<Kind, 6> kinds{{
    {L"tune.wav", {}},
    {L"tune.mp3", {}},
    {L"tune.ogg", {L"ogg.dll", L"vorbis.dll", L"vorbisfile.dll"}},
    {L"tune.au", {L"libsndfile.dll"}},
    {L"tune.aiff", {L"libsndfile.dll"}},
    {L"tune.ape", {L"MACDll.dll"}},
}};

class Distribution : public ::testing::TestWithParam<const wchar_t*> {
protected:
    // Everything that is delivered but the library, registered where it lies.
    void SetUp() override {
        for (const wchar_t* name :
             {L"Corvina.ocx", L"corvina-play.exe", L"ogg.dll", L"vorbis.dll", L"vorbisfile.dll",
              L"libsndfile.dll", L"MACDll.dll"}) {
            if (std::wstring_view(name) == GetParam())
                continue;
            const std::wstring delivered = std::wstring(L"..\\..\\..\\dist\\") + name;
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

    TempFolder folder;
    wchar_t home[MAX_PATH] = L".";
};

std::string narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

TEST_P(Distribution, without_one_library_fails_for_its_formats_alone_and_names_it) {
    const std::wstring missing = GetParam();
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(narrow(kind.file));
        std::string printed;
        const int result = run(L"\"" + folder.path() + L"\\corvina-play.exe\" --info \"" +
                                   home + L"\\" + mediaFile(kind.file) + L"\"",
                               &printed);
        const bool wanted =
            std::find(kind.libraries.begin(), kind.libraries.end(), missing) != kind.libraries.end();
        EXPECT_EQ(result, wanted ? 3 : 0) << printed;
        EXPECT_EQ(printed.find(narrow(missing) + " is missing") != std::string::npos, wanted)
            << printed;
        EXPECT_EQ(printed.find("Could not open file") != std::string::npos, wanted) << printed;
    }
}

INSTANTIATE_TEST_SUITE_P(Library, Distribution,
                         ::testing::Values(L"none", L"ogg.dll", L"vorbis.dll", L"vorbisfile.dll",
                                           L"libsndfile.dll", L"MACDll.dll"),
                         [](const auto& test) {
                             const std::string name = narrow(test.param);
                             return name.substr(0, name.find('.'));
                         });

} // namespace
} // namespace corvina::test
