// Where libraries are looked for, in a process whose current folder holds some of the same names.

#include "stream/LibrarySearch.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;

constexpr DWORD beside = LOAD_WITH_ALTERED_SEARCH_PATH;
constexpr DWORD safelyBeside = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
constexpr DWORD safely = LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;

std::vector<std::string> calls;

HMODULE WINAPI noteLoad(const char* name) {
    calls.push_back(std::string("by name ") + name);
    return nullptr;
}
HMODULE WINAPI noteLoadFile(const wchar_t* path, HANDLE, DWORD flags) {
    const std::wstring text(path);
    const bool plain = text.find(L'\\') == std::wstring::npos;
    calls.push_back((plain ? "plain " : "path ") + std::to_string(flags));
    return nullptr;
}

const LibraryApi noting{.loadLibrary = &noteLoad, .loadLibraryFile = &noteLoadFile};

std::wstring pathOf(HMODULE module) {
    wchar_t path[MAX_PATH]{};
    ::GetModuleFileNameW(module, path, MAX_PATH);
    return path;
}

// The current folder is a new one.
class LibrarySearch : public ::testing::Test {
protected:
    void SetUp() override {
        ::GetCurrentDirectoryW(MAX_PATH, home);
        ASSERT_TRUE(::SetCurrentDirectoryW(folder.path().c_str()));
        calls.clear();
    }
    void TearDown() override { ::SetCurrentDirectoryW(home); }

    // A library that could be loaded, under that name in the current folder.
    void plant(const std::wstring& name) {
        const std::wstring program = pathOf(nullptr);
        const std::wstring echo = program.substr(0, program.find_last_of(L'\\') + 1) + L"echo.dll";
        ASSERT_TRUE(::CopyFileW(echo.c_str(), folder.file(name).c_str(), TRUE));
    }
    [[nodiscard]] bool isPlanted(const LibraryHandle& library) const {
        return pathOf(library.get()).find(folder.path()) == 0;
    }

    TempFolder folder;
    wchar_t home[MAX_PATH] = L".";
};

TEST_F(LibrarySearch, a_library_in_the_current_folder_is_not_loaded) {
    plant(L"planted.dll");
    ASSERT_NE(::GetFileAttributesW(L"planted.dll"), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(loadOptionalLibrary(systemLibraryApi, L"planted.dll"));
    EXPECT_FALSE(loadSystemLibrary(systemLibraryApi, L"planted.dll"));
    EXPECT_EQ(::GetModuleHandleW(L"planted.dll"), nullptr);
}

TEST_F(LibrarySearch, names_of_decoders_and_drivers_do_not_lead_there_either) {
    for (const wchar_t* name : {L"MACDll.dll", L"wnaspi32.dll", L"wmvcore.dll", L"mfplat.dll",
                                L"libsndfile.dll", L"vorbisfile.dll"}) {
        plant(name);
        const LibraryHandle library = loadOptionalLibrary(systemLibraryApi, name);
        EXPECT_FALSE(library && isPlanted(library)) << name;
    }
}

TEST_F(LibrarySearch, libraries_of_the_system_and_beside_this_program_are_found_meanwhile) {
    plant(L"planted.dll");
    EXPECT_TRUE(loadOptionalLibrary(systemLibraryApi, L"msacm32.dll"));
    EXPECT_TRUE(loadSystemLibrary(systemLibraryApi, L"msacm32.dll"));
    EXPECT_TRUE(loadOptionalLibrary(systemLibraryApi, L"echo.dll"));
    EXPECT_TRUE(loadOptionalLibrary(systemLibraryApi, L"msacm32"));
}

TEST_F(LibrarySearch, by_name_the_system_is_asked_as_long_as_it_cannot_get_to_the_current_folder) {
    EXPECT_FALSE(loadOptionalLibrary(noting, L"decoder.dll"));
    EXPECT_THAT(calls, ElementsAre("path " + std::to_string(beside), "by name decoder.dll"));
    calls.clear();
    EXPECT_FALSE(loadSystemLibrary(noting, L"part.dll"));
    EXPECT_THAT(calls, ElementsAre("by name part.dll"));
}

TEST_F(LibrarySearch, any_library_there_is_enough_for_it_may_be_one_that_a_decoder_needs) {
    plant(L"ogg.dll");
    EXPECT_FALSE(loadOptionalLibrary(noting, L"vorbisfile.dll"));
    EXPECT_THAT(calls, ElementsAre("path " + std::to_string(safelyBeside),
                                   "plain " + std::to_string(safely)));
}

TEST_F(LibrarySearch, the_folder_of_the_program_is_safe_as_the_current_one) {
    const std::wstring program = pathOf(nullptr);
    ASSERT_TRUE(::SetCurrentDirectoryW(program.substr(0, program.find_last_of(L'\\') + 1).c_str()));
    EXPECT_FALSE(loadOptionalLibrary(noting, L"decoder.dll"));
    EXPECT_THAT(calls, ElementsAre("path " + std::to_string(beside), "by name decoder.dll"));
}

TEST_F(LibrarySearch, a_name_that_holds_a_path_is_the_callers_choice) {
    plant(L"planted.dll");
    EXPECT_FALSE(loadOptionalLibrary(noting, L".\\planted.dll"));
    EXPECT_THAT(calls, ElementsAre("by name .\\planted.dll"));
}

} // namespace
} // namespace corvina::test
