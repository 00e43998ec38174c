// A registration that fails at any key leaves nothing of itself behind. In the place of the
// registry a volatile key refuses what would be put below it, and a denied one refuses everything.

#include "StandInRegistry.h"
#include "Support.h"

#include <set>

namespace corvina::test {
namespace {

using Install = HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR);
using Register = HRESULT(STDAPICALLTYPE*)();

// A key that every library has a part of.
bool isShared(const std::wstring& key) {
    for (const wchar_t* name : {L"\\CLSID", L"\\TypeLib", L"\\Interface"})
        if (::_wcsicmp(key.c_str(), (classes + name).c_str()) == 0)
            return true;
    return false;
}

// A text with its end, as the registry keeps it.
DWORD bytesOf(const std::wstring& text) {
    return static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
}

class FailingRegistration : public ::testing::Test {
protected:
    void SetUp() override {
        library = ::LoadLibraryW(libraryPath().c_str());
        install = reinterpret_cast<Install>(
            reinterpret_cast<void*>(::GetProcAddress(library, "DllInstall")));
        ASSERT_NE(nullptr, install);
    }
    void TearDown() override { ::FreeLibrary(library); }

    // What regsvr32 calls without /i.
    [[nodiscard]] HRESULT call(const char* name) const {
        const auto entry =
            reinterpret_cast<Register>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
        return entry ? entry() : E_NOTIMPL;
    }

    HMODULE library = nullptr;
    Install install = nullptr;
};

TEST_F(FailingRegistration, leaves_nothing_of_itself_wherever_it_fails) {
    std::set<std::wstring> parents;
    {
        const UserRegistry registry;
        ASSERT_EQ(S_OK, install(TRUE, L"user"));
        for (const std::wstring& key : registry.keys())
            if (const std::wstring parent = key.substr(0, key.rfind(L'\\')); parent != classes)
                parents.insert(parent);
        EXPECT_EQ(S_OK, install(FALSE, L"user"));
        for (const std::wstring& key : registry.keys())
            EXPECT_TRUE(isShared(key)) << ::testing::PrintToString(key);
    }
    ASSERT_GT(parents.size(), 10u);
    for (const std::wstring& parent : parents) {
        SCOPED_TRACE(::testing::PrintToString(parent));
        const UserRegistry registry;
        registry.close(parent);
        EXPECT_TRUE(FAILED(install(TRUE, L"user")));
        // What was there before may stay: the closed key and those that lead to it.
        for (const std::wstring& key : registry.keys())
            EXPECT_TRUE(parent == key || parent.starts_with(key + L"\\") || isShared(key))
                << ::testing::PrintToString(key);
    }
}

TEST_F(FailingRegistration, leaves_the_registration_before_as_it_was) {
    const std::wstring graph = classes + L"\\CLSID\\{1BF4D8EB-FE35-495D-86F8-9A0675E9538C}";
    const std::wstring server =
        classes + L"\\CLSID\\{38604A89-7915-4ACE-91A0-1EB6D82D92B3}\\InprocServer32";
    const UserRegistry registry;
    ASSERT_EQ(S_OK, install(TRUE, L"user"));
    registry.write(server, L"C:\\elsewhere\\Corvina.ocx");
    registry.remove(graph + L"\\MiscStatus");
    registry.close(graph + L"\\MiscStatus");
    const auto before = registry.keys();
    EXPECT_TRUE(FAILED(install(TRUE, L"user")));
    EXPECT_EQ(before, registry.keys());
    EXPECT_EQ(L"C:\\elsewhere\\Corvina.ocx", registry.read(server));
}

TEST_F(FailingRegistration, can_be_repeated_with_success) {
    {
        const UserRegistry registry;
        registry.close(classes + L"\\CLSID");
        ASSERT_TRUE(FAILED(install(TRUE, L"user")));
    }
    const UserRegistry registry;
    EXPECT_EQ(S_OK, install(TRUE, L"user"));
    EXPECT_FALSE(registry.keys().empty());
}

constexpr const wchar_t* playerKey = L"\\CLSID\\{38604A89-7915-4ACE-91A0-1EB6D82D92B3}";
constexpr const wchar_t* libraryKey = L"\\TypeLib\\{571663B9-3AB5-4B9A-900E-7BA18431BC3F}\\1.0";
constexpr HRESULT refused = HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE);

TEST_F(FailingRegistration, is_reported_with_the_registrys_own_error) {
    const UserRegistry registry;
    registry.close(classes + L"\\CLSID");
    EXPECT_EQ(refused, install(TRUE, L"user"));
}

TEST_F(FailingRegistration, of_the_type_library_takes_the_classes_back) {
    const MachineRegistry registry;
    registry.close(classes + L"\\TypeLib");
    EXPECT_TRUE(FAILED(install(TRUE, nullptr)));
    for (const std::wstring& key : registry.keys())
        // Interfaces are written by the system, which leaves them although it fails.
        EXPECT_TRUE(isShared(key) || key.starts_with(classes + L"\\Interface\\"))
            << ::testing::PrintToString(key);
}

TEST_F(FailingRegistration, of_the_type_library_leaves_the_one_before) {
    const std::wstring language = classes + libraryKey + L"\\0";
    const MachineRegistry registry;
    ASSERT_EQ(S_OK, install(TRUE, nullptr));
    registry.remove(language);
    registry.close(language);
    const auto before = registry.keys();
    EXPECT_TRUE(FAILED(install(TRUE, nullptr)));
    EXPECT_EQ(before, registry.keys());
    EXPECT_EQ(L"Corvina audio player and graph controls 1.0", registry.read(classes + libraryKey));
}

TEST_F(FailingRegistration, of_a_part_of_the_type_library_leaves_the_whole_one_before) {
    const MachineRegistry registry;
    ASSERT_EQ(S_OK, install(TRUE, nullptr));
    const DeniedKey denied(registry, classes + libraryKey + L"\\FLAGS");
    const auto before = registry.keys();
    EXPECT_TRUE(FAILED(install(TRUE, nullptr)));
    EXPECT_EQ(before, registry.keys());
}

TEST_F(FailingRegistration, sets_every_value_back_to_the_byte_and_takes_new_ones_away) {
    const std::wstring server = classes + playerKey + L"\\InprocServer32";
    const UserRegistry registry;
    ASSERT_EQ(S_OK, install(TRUE, L"user"));
    registry.write(server, L"C:\\elsewhere\\Corvina.ocx");
    registry.write(server, L"Both", L"ThreadingModel");
    registry.removeValue(classes + playerKey + L"\\ProgID", nullptr);
    registry.remove(classes + playerKey + L"\\Version");
    registry.remove(classes + L"\\Corvina.GSubclass.1");
    registry.close(classes + L"\\Corvina.GSubclass.1"); // what is written last
    const auto before = registry.keys();
    EXPECT_EQ(refused, install(TRUE, L"user"));
    EXPECT_EQ(before, registry.keys());
    EXPECT_EQ(bytesOf(L"C:\\elsewhere\\Corvina.ocx"), registry.bytes(server, nullptr));
    EXPECT_EQ(bytesOf(L"Both"), registry.bytes(server, L"ThreadingModel"));
    EXPECT_EQ(0u, registry.bytes(classes + playerKey + L"\\ProgID", nullptr));
}

TEST_F(FailingRegistration, is_none_with_the_values_of_every_class_and_lasting_keys) {
    const MachineRegistry registry;
    ASSERT_EQ(S_OK, install(TRUE, L""));
    const std::wstring player = classes + playerKey;
    for (const auto& [key, text] : std::vector<std::pair<std::wstring, std::wstring>>{
             {L"", L"Corvina audio player"},
             {L"\\InprocServer32", libraryPath()},
             {L"\\ProgID", L"Corvina.cPlayer.1"},
             {L"\\VersionIndependentProgID", L"Corvina.cPlayer"},
             {L"\\TypeLib", L"{571663B9-3AB5-4B9A-900E-7BA18431BC3F}"},
             {L"\\Version", L"1.0"},
             {L"\\MiscStatus", L"0"},
             {L"\\ToolboxBitmap32", libraryPath() + L", 101"},
             {L"\\Verb\\1", L"&About...,0,3"}})
        EXPECT_EQ(text, registry.read(player + key)) << ::testing::PrintToString(key);
    EXPECT_EQ(bytesOf(L"Corvina.cPlayer.1"), registry.bytes(player + L"\\ProgID", nullptr));
    const auto keys = registry.keys();
    EXPECT_TRUE(keys.contains(player + L"\\Control"));
    EXPECT_FALSE(
        keys.contains(classes + L"\\CLSID\\{2D1CFBE8-9C07-4594-B933-DDEE6C06AE18}\\Control"));
    EXPECT_EQ(libraryPath(), registry.read(classes + libraryKey + L"\\0\\win32"));
    registry.write(player + L"\\ProgID\\Below", L"what only a lasting key takes");
    EXPECT_EQ(S_OK, install(FALSE, nullptr));
    for (const std::wstring& key : registry.keys())
        EXPECT_TRUE(isShared(key)) << ::testing::PrintToString(key);
    EXPECT_EQ(S_OK, install(FALSE, nullptr)); // there is nothing left to take away
}

TEST_F(FailingRegistration, for_the_machine_changes_nothing_of_the_users_and_the_other_way_round) {
    {
        const UserRegistry registry;
        EXPECT_EQ(S_OK, install(TRUE, nullptr));
        EXPECT_EQ(S_OK, install(TRUE, L"machine"));
        EXPECT_TRUE(registry.keys().empty());
    }
    const MachineRegistry registry;
    EXPECT_EQ(S_OK, install(TRUE, L"USER"));
    EXPECT_EQ(S_OK, install(FALSE, L"User"));
    EXPECT_FALSE(registry.keys().contains(classes + playerKey));
}

TEST_F(FailingRegistration, is_none_when_regsvr32_calls_without_a_scope) {
    const MachineRegistry registry;
    EXPECT_EQ(S_OK, call("DllRegisterServer"));
    EXPECT_EQ(libraryPath(), registry.read(classes + playerKey + L"\\InprocServer32"));
    EXPECT_EQ(S_OK, call("DllUnregisterServer"));
    EXPECT_FALSE(registry.keys().contains(classes + playerKey));
}

TEST_F(FailingRegistration, being_taken_away_is_reported_after_all_else_is_gone) {
    const UserRegistry registry;
    ASSERT_EQ(S_OK, install(TRUE, L"user"));
    const DeniedKey denied(registry, classes + playerKey);
    EXPECT_EQ(E_ACCESSDENIED, install(FALSE, L"user"));
    EXPECT_FALSE(registry.keys().contains(classes + L"\\Corvina.cPlayer"));
    EXPECT_FALSE(registry.keys().contains(classes + libraryKey));
    EXPECT_TRUE(registry.keys().contains(classes + playerKey));
}

} // namespace
} // namespace corvina::test
