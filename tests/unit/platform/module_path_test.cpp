#include "platform/ModulePath.h"

#include <gmock/gmock.h>

namespace corvina::test {
namespace {

using ::testing::EndsWith;

TEST(ModulePath, of_a_library_leads_to_its_file) {
    const std::wstring path = modulePath(::GetModuleHandleW(L"kernel32.dll"));
    EXPECT_EQ(0, ::_wcsicmp(path.substr(path.find_last_of(L'\\') + 1).c_str(), L"kernel32.dll"));
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, ::GetFileAttributesW(path.c_str()));
}

TEST(ModulePath, without_a_module_is_the_programs) {
    const std::wstring path = modulePath(nullptr);
    EXPECT_THAT(path, EndsWith(L"\\module_path_test.exe"));
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, ::GetFileAttributesW(path.c_str()));
}

TEST(ModulePath, of_what_is_no_module_is_empty) {
    EXPECT_EQ(L"", modulePath(reinterpret_cast<HMODULE>(0x10)));
}

} // namespace
} // namespace corvina::test
