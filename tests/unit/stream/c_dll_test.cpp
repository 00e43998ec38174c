#include "runtime/RuntimeError.h"
#include "stream/cDLL.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <new>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace corvina {
namespace {

using testing::ElementsAre;

std::vector<std::string> calls;
std::vector<std::int32_t> received;
std::map<std::string, FARPROC> exports;
std::set<DWORD> errorModes; // while a library is loaded
const HMODULE fakeModule = reinterpret_cast<HMODULE>(0x00C0DE00);

// A library of the test program's own functions, found only by name.
HMODULE WINAPI fakeLoadLibrary(const char* name) {
    calls.push_back(std::string("LoadLibraryA ") + name);
    errorModes.insert(::GetThreadErrorMode());
    return std::strcmp(name, "none.dll") == 0 ? nullptr : fakeModule;
}
HMODULE WINAPI fakeLoadLibraryFile(const wchar_t* path, HANDLE, DWORD flags) {
    const std::wstring wide(path);
    std::string text;
    for (const wchar_t character : wide)
        text += static_cast<char>(character);
    calls.push_back("LoadLibraryExW " + text + " " + std::to_string(flags));
    errorModes.insert(::GetThreadErrorMode());
    return nullptr;
}
FARPROC WINAPI fakeGetProcAddress(HMODULE module, const char* name) {
    calls.push_back(std::string("GetProcAddress ") + name);
    const auto found = exports.find(name);
    return module == fakeModule && found != exports.end() ? found->second : nullptr;
}
BOOL WINAPI fakeFreeLibrary(HMODULE module) {
    calls.push_back("FreeLibrary " + std::to_string(std::bit_cast<std::uint32_t>(module)));
    return module != nullptr;
}

const LibraryApi fakeApi{.loadLibrary = &fakeLoadLibrary,
                         .loadLibraryFile = &fakeLoadLibraryFile,
                         .getProcAddress = &fakeGetProcAddress,
                         .freeLibrary = &fakeFreeLibrary};

// What a function gets that takes that many 32-bit words.
template <std::size_t Count>
struct Words {
    std::int32_t word[Count];
};

template <std::size_t Count>
std::int32_t __stdcall takeStdcall(Words<Count> words) {
    received.assign(words.word, words.word + Count);
    return static_cast<std::int32_t>(Count) * 1000;
}
template <std::size_t Count>
std::int32_t __cdecl takeCdecl(Words<Count> words) {
    received.assign(words.word, words.word + Count);
    return static_cast<std::int32_t>(Count) * 1000;
}
std::int32_t __stdcall returnByStdcall() {
    return -7;
}
std::int32_t __cdecl returnByCdecl() {
    return -8;
}

template <typename Function>
FARPROC asExport(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

// Exports "take1" to "take44" of one convention.
template <std::size_t... Index>
void exportAll(bool isCdecl, std::index_sequence<Index...>) {
    ((exports["take" + std::to_string(Index + 1)] =
          isCdecl ? asExport(&takeCdecl<Index + 1>) : asExport(&takeStdcall<Index + 1>)),
     ...);
}

class CDll : public testing::Test {
protected:
    CDll() {
        exports.clear();
        received.clear();
        library.LoadDLL(L"fake.dll");
        calls.clear();
    }

    void expectAllCountsToPass(bool isCdecl) {
        exportAll(isCdecl, std::make_index_sequence<44>());
        library.IsCDECL(isCdecl);
        for (std::int32_t count = 1; count <= 44; ++count) {
            std::vector<std::int32_t> arguments(static_cast<std::size_t>(count));
            std::iota(arguments.begin(), arguments.end(), -3);
            received.clear();
            EXPECT_EQ(library.CallFunc(("take" + std::to_string(count)).c_str(), arguments),
                      count * 1000);
            EXPECT_EQ(received, arguments);
        }
    }

    cDLL library{fakeApi};
};

TEST_F(CDll, a_library_that_is_damaged_shows_no_box_and_the_host_keeps_its_boxes) {
    const DWORD before = ::GetThreadErrorMode();
    errorModes.clear();
    library.LoadDLL(L"none.dll");
    EXPECT_THAT(errorModes, ElementsAre(before | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX));
    EXPECT_EQ(::GetThreadErrorMode(), before);
}

TEST_F(CDll, stdcall_exports_get_one_to_forty_four_arguments) {
    expectAllCountsToPass(false);
}

TEST_F(CDll, cdecl_exports_get_one_to_forty_four_arguments) {
    expectAllCountsToPass(true);
}

TEST_F(CDll, exports_without_arguments_return_in_both_conventions) {
    exports["stdcall"] = asExport(&returnByStdcall);
    exports["cdecl"] = asExport(&returnByCdecl);
    EXPECT_EQ(library.CallFunc("stdcall"), -7);
    library.IsCDECL(true);
    EXPECT_EQ(library.CallFunc("cdecl"), -8);
}

TEST_F(CDll, a_and_b_are_passed_in_this_order) {
    exports["take2"] = asExport(&takeStdcall<2>);
    library.CallFunc("take2", 11, 22);
    EXPECT_THAT(received, ElementsAre(11, 22));
}

TEST_F(CDll, the_elements_of_a_single_array_are_the_arguments) {
    exports["take3"] = asExport(&takeStdcall<3>);
    const std::array<std::int32_t, 3> array{5, 6, 7};
    library.CallFunc("take3", std::span<const std::int32_t>(array));
    EXPECT_THAT(received, ElementsAre(5, 6, 7));
}

TEST_F(CDll, addresses_and_unsigned_values_are_passed_as_32_bit_words) {
    exports["take3"] = asExport(&takeStdcall<3>);
    const char text[] = "x";
    library.CallFunc("take3", text, 0xFFFFFFFFu, nullptr);
    EXPECT_THAT(received, ElementsAre(std::bit_cast<std::int32_t>(&text[0]), -1, 0));
}

TEST_F(CDll, a_missing_export_is_error_1_and_nothing_is_called) {
    try {
        library.CallFunc("nothing", 1, 2);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 1);
        EXPECT_EQ(error.text(), L"Export missing!");
    }
    EXPECT_TRUE(received.empty());
}

TEST_F(CDll, forty_five_arguments_are_subscript_out_of_range_and_nothing_is_called) {
    exports["take44"] = asExport(&takeStdcall<44>);
    const std::vector<std::int32_t> arguments(45);
    for (const bool isCdecl : {false, true}) {
        library.IsCDECL(isCdecl);
        try {
            library.CallFunc("take44", arguments);
            FAIL() << "no error";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), 9);
        }
    }
    EXPECT_TRUE(received.empty());
}

TEST_F(CDll, without_a_library_every_export_is_missing_also_those_of_the_host_program) {
    cDLL empty;
    EXPECT_THROW(empty.CallFunc("main"), RuntimeError);
}

TEST_F(CDll, loading_resets_the_convention_to_stdcall) {
    library.IsCDECL(true);
    library.LoadDLL(L"other.dll");
    EXPECT_FALSE(library.IsCDECL());
}

TEST_F(CDll, a_failed_load_resets_the_convention_and_leaves_no_handle) {
    library.IsCDECL(true);
    EXPECT_FALSE(library.LoadDLL(L"none.dll"));
    EXPECT_FALSE(library.IsCDECL());
    EXPECT_EQ(library.ModuleHandle(), 0);
}

TEST_F(CDll, a_second_load_does_not_free_the_first_library) {
    library.LoadDLL(L"other.dll");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "FreeLibrary 12639744"), 0);
}

TEST_F(CDll, unloading_frees_the_library_and_clears_the_handle) {
    EXPECT_EQ(library.ModuleHandle(), 0x00C0DE00);
    library.UnloadDLL();
    EXPECT_THAT(calls, ElementsAre("FreeLibrary 12639744"));
    EXPECT_EQ(library.ModuleHandle(), 0);
}

TEST_F(CDll, unloading_without_a_library_frees_0) {
    cDLL empty(fakeApi);
    empty.UnloadDLL();
    EXPECT_THAT(calls, ElementsAre("FreeLibrary 0"));
    EXPECT_EQ(empty.ModuleHandle(), 0);
}

TEST_F(CDll, destroying_it_leaves_the_library_loaded) {
    {
        cDLL other(fakeApi);
        other.LoadDLL(L"other.dll");
    }
    for (const std::string& call : calls)
        EXPECT_THAT(call, testing::Not(testing::StartsWith("FreeLibrary")));
}

TEST_F(CDll, a_library_is_looked_for_beside_this_module_first_and_then_by_name) {
    library.LoadDLL(L"other.dll");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_THAT(calls[0], testing::MatchesRegex("LoadLibraryExW .:.*\\\\other.dll 8"));
    EXPECT_EQ(calls[1], "LoadLibraryA other.dll");
}

TEST_F(CDll, a_path_is_left_to_the_system) {
    library.LoadDLL(L"folder\\other.dll");
    EXPECT_THAT(calls, ElementsAre("LoadLibraryA folder\\other.dll"));
}

// The callee reads the page that it returns to: the stub.
DWORD protectionOfCaller;
std::int32_t __stdcall lookAtCaller() {
    MEMORY_BASIC_INFORMATION page{};
    ::VirtualQuery(__builtin_return_address(0), &page, sizeof page);
    protectionOfCaller = page.Protect;
    return 0;
}

TEST_F(CDll, the_stub_is_not_writable_where_it_runs) {
    exports["look"] = asExport(&lookAtCaller);
    library.CallFunc("look");
    EXPECT_EQ(protectionOfCaller, static_cast<DWORD>(PAGE_EXECUTE_READ));
}

std::int32_t pagesWritableAndExecutable() {
    std::int32_t found = 0;
    MEMORY_BASIC_INFORMATION page{};
    for (const char* at = nullptr; ::VirtualQuery(at, &page, sizeof page) != 0;) {
        found += page.State == MEM_COMMIT && page.Type != MEM_IMAGE &&
                 (page.Protect & (PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY)) != 0;
        const char* const next = static_cast<const char*>(page.BaseAddress) + page.RegionSize;
        if (next <= at)
            break;
        at = next;
    }
    return found;
}
std::int32_t __stdcall countWritableCode() {
    return pagesWritableAndExecutable();
}

TEST_F(CDll, a_call_makes_no_page_writable_and_executable) {
    exports["count"] = asExport(&countWritableCode);
    const std::int32_t before = pagesWritableAndExecutable();
    EXPECT_EQ(library.CallFunc("count"), before);
}

cDLL* nested;
std::int32_t __stdcall callDeeper(std::int32_t depth) {
    return depth == 0 ? 0 : depth + nested->CallFunc("deeper", depth - 1);
}

TEST_F(CDll, a_callee_may_call_through_the_same_object_again) {
    exports["deeper"] = asExport(&callDeeper);
    nested = &library;
    EXPECT_EQ(library.CallFunc("deeper", 200), 200 * 201 / 2);
}

std::int32_t refusedAt;
std::int32_t __stdcall callUntilRefused(std::int32_t depth) {
    try {
        nested->CallFunc("deeper", depth + 1);
    } catch (const std::bad_alloc&) {
        refusedAt = depth;
    }
    return 0;
}

TEST_F(CDll, calls_that_nest_without_end_are_refused) {
    exports["deeper"] = asExport(&callUntilRefused);
    nested = &library;
    library.CallFunc("deeper", 1);
    EXPECT_EQ(refusedAt, 256);
    library.CallFunc("deeper", 1); // all pieces were given back
    EXPECT_EQ(refusedAt, 256);
}

TEST_F(CDll, the_same_function_may_be_called_with_other_arguments) {
    exports["take2"] = asExport(&takeStdcall<2>);
    for (std::int32_t value = 0; value < 3; ++value) {
        library.CallFunc("take2", value / 2, 5);
        EXPECT_THAT(received, ElementsAre(value / 2, 5));
    }
}

TEST(CDllReal, a_library_beside_the_module_is_loaded_and_called_in_both_conventions) {
    cDLL library;
    ASSERT_TRUE(library.LoadDLL(L"echo.dll"));
    EXPECT_EQ(library.CallFunc("subtract_stdcall", 10, 3), 7);
    library.IsCDECL(true);
    EXPECT_EQ(library.CallFunc("subtract_cdecl", 3, 10), -7);
    library.UnloadDLL();
}

TEST(CDllReal, a_library_of_the_system_is_found_by_name) {
    cDLL library;
    ASSERT_TRUE(library.LoadDLL(L"msvcrt.dll"));
    library.IsCDECL(true);
    EXPECT_EQ(library.CallFunc("abs", -5), 5);
    library.UnloadDLL();
}

TEST(CDllReal, a_library_that_does_not_exist_is_not_loaded) {
    cDLL library;
    EXPECT_FALSE(library.LoadDLL(L"no such library.dll"));
    EXPECT_FALSE(library.LoadDLL(L""));
    EXPECT_FALSE(library.LoadDLL(L"\x4E00\x4E01?.dll"));
}

} // namespace
} // namespace corvina
