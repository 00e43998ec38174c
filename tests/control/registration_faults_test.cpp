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
    return key == classes + L"\\CLSID" || key == classes + L"\\TypeLib" ||
           key == classes + L"\\Interface";
}

// Stands in for HKEY_CURRENT_USER while it lives.
class UserRegistry {
public:
    UserRegistry() {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, place);
        ::RegCreateKeyExW(HKEY_CURRENT_USER, place, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          root_.put(), nullptr);
        ::RegOverridePredefKey(HKEY_CURRENT_USER, root_.get());
        create(classes, REG_OPTION_NON_VOLATILE);
    }
    UserRegistry(const UserRegistry&) = delete;
    UserRegistry& operator=(const UserRegistry&) = delete;
    ~UserRegistry() {
        ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        root_.reset();
        ::RegDeleteTreeW(HKEY_CURRENT_USER, place);
    }

    // From now on no key can be made below this one.
    void close(const std::wstring& key) const {
        create(key.substr(0, key.rfind(L'\\')), REG_OPTION_NON_VOLATILE);
        create(key, REG_OPTION_VOLATILE);
    }

    void remove(const std::wstring& key) const { ::RegDeleteTreeW(root_.get(), key.c_str()); }
    void write(const std::wstring& key, const std::wstring& text) const {
        ASSERT_EQ(ERROR_SUCCESS,
                  ::RegSetKeyValueW(root_.get(), key.c_str(), nullptr, REG_SZ, text.c_str(),
                                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
    }
    [[nodiscard]] std::wstring read(const std::wstring& key) const {
        wchar_t text[MAX_PATH]{};
        DWORD bytes = sizeof text;
        ::RegGetValueW(root_.get(), key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
        return text;
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

    RegistryKey root_;
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

} // namespace
} // namespace corvina::test
