// A registration that fails at any key leaves nothing of itself behind. The user's registry is a
// key of the test's own, in which a volatile key refuses what would be put below it.

#include "Support.h"
#include "platform/RegistryKey.h"

#include <set>

namespace corvina::test {
namespace {

using Install = HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR);

constexpr const wchar_t* place = L"Software\\CorvinaRegistrationTest";
const std::wstring classes = L"Software\\Classes";

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

// Stands in for the user's or the machine's registry while it lives.
class StandInRegistry {
public:
    explicit StandInRegistry(HKEY replaced) : replaced_(replaced) {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, place);
        ::RegCreateKeyExW(HKEY_CURRENT_USER, place, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          root_.put(), nullptr);
        ::RegCreateKeyExW(root_.get(), classes.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          ofClasses_.put(), nullptr);
        ::RegOverridePredefKey(replaced_, root_.get());
        if (replaced_ == HKEY_LOCAL_MACHINE) // where the system puts type libraries
            ::RegOverridePredefKey(HKEY_CLASSES_ROOT, ofClasses_.get());
    }
    StandInRegistry(const StandInRegistry&) = delete;
    StandInRegistry& operator=(const StandInRegistry&) = delete;
    ~StandInRegistry() {
        ::RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        ::RegOverridePredefKey(replaced_, nullptr);
        ofClasses_.reset();
        root_.reset();
        ::RegDeleteTreeW(HKEY_CURRENT_USER, place);
    }

    // From now on no key can be made below this one.
    void close(const std::wstring& key) const {
        create(key.substr(0, key.rfind(L'\\')), REG_OPTION_NON_VOLATILE);
        create(key, REG_OPTION_VOLATILE);
    }

    void remove(const std::wstring& key) const { ::RegDeleteTreeW(root_.get(), key.c_str()); }
    void removeValue(const std::wstring& key, const wchar_t* name) const {
        ::RegDeleteKeyValueW(root_.get(), key.c_str(), name);
    }
    void write(const std::wstring& key, const std::wstring& text,
               const wchar_t* name = nullptr) const {
        ASSERT_EQ(ERROR_SUCCESS,
                  ::RegSetKeyValueW(root_.get(), key.c_str(), name, REG_SZ, text.c_str(),
                                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
    }
    [[nodiscard]] std::wstring read(const std::wstring& key) const {
        wchar_t text[MAX_PATH]{};
        DWORD bytes = sizeof text;
        ::RegGetValueW(root_.get(), key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
        return text;
    }

    // How long a value is in the registry; 0 if there is none.
    [[nodiscard]] DWORD bytes(const std::wstring& key, const wchar_t* name) const {
        RegistryKey opened;
        DWORD found = 0;
        if (::RegOpenKeyExW(root_.get(), key.c_str(), 0, KEY_READ, opened.put()) == ERROR_SUCCESS)
            ::RegQueryValueExW(opened.get(), name, nullptr, nullptr, nullptr, &found);
        return found;
    }

    // Every key below Software\Classes.
    [[nodiscard]] std::set<std::wstring> keys() const {
        std::set<std::wstring> found;
        collect(classes, found);
        return found;
    }

private:
    void create(const std::wstring& key, DWORD options) const {
        RegistryKey made;
        ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(root_.get(), key.c_str(), 0, nullptr, options,
                                                   KEY_READ, nullptr, made.put(), nullptr));
    }
    void collect(const std::wstring& key, std::set<std::wstring>& found) const {
        RegistryKey opened;
        if (::RegOpenKeyExW(root_.get(), key.c_str(), 0, KEY_READ, opened.put()) != ERROR_SUCCESS)
            return;
        wchar_t name[256];
        for (DWORD index = 0, length = 256;
             ::RegEnumKeyExW(opened.get(), index, name, &length, nullptr, nullptr, nullptr,
                             nullptr) == ERROR_SUCCESS;
             ++index, length = 256) {
            const std::wstring child = key + L"\\" + name;
            found.insert(child);
            collect(child, found);
        }
    }

    HKEY replaced_;
    RegistryKey root_;
    RegistryKey ofClasses_;
};

struct UserRegistry : StandInRegistry {
    UserRegistry() : StandInRegistry(HKEY_CURRENT_USER) {}
};

struct MachineRegistry : StandInRegistry {
    MachineRegistry() : StandInRegistry(HKEY_LOCAL_MACHINE) {}
};

class FailingRegistration : public ::testing::Test {
protected:
    void SetUp() override {
        library = ::LoadLibraryW(libraryPath().c_str());
        install = reinterpret_cast<Install>(
            reinterpret_cast<void*>(::GetProcAddress(library, "DllInstall")));
        ASSERT_NE(nullptr, install);
    }
    void TearDown() override { ::FreeLibrary(library); }

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

} // namespace
} // namespace corvina::test
