#include "StandInRegistry.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

constexpr const wchar_t* testKey = L"Software\\CorvinaRegistrationTest";

// A text with its end, as the registry keeps it.
DWORD bytesOf(const std::wstring& text) {
    return static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
}

} // namespace

StandInRegistry::StandInRegistry(HKEY replaced) : replaced_(replaced) {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, testKey);
    ::RegCreateKeyExW(HKEY_CURRENT_USER, testKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      root_.put(), nullptr);
    ::RegCreateKeyExW(root_.get(), classes.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      ofClasses_.put(), nullptr);
    ::RegOverridePredefKey(replaced_, root_.get());
    if (replaced_ == HKEY_LOCAL_MACHINE) // where the system puts type libraries
        ::RegOverridePredefKey(HKEY_CLASSES_ROOT, ofClasses_.get());
}

StandInRegistry::~StandInRegistry() {
    ::RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    ::RegOverridePredefKey(replaced_, nullptr);
    ofClasses_.reset();
    root_.reset();
    ::RegDeleteTreeW(HKEY_CURRENT_USER, testKey);
}

void StandInRegistry::close(const std::wstring& key) const {
    create(key.substr(0, key.rfind(L'\\')), REG_OPTION_NON_VOLATILE);
    create(key, REG_OPTION_VOLATILE);
}

void StandInRegistry::remove(const std::wstring& key) const {
    ::RegDeleteTreeW(root_.get(), key.c_str());
}

void StandInRegistry::removeValue(const std::wstring& key, const wchar_t* name) const {
    ::RegDeleteKeyValueW(root_.get(), key.c_str(), name);
}

void StandInRegistry::write(const std::wstring& key, const std::wstring& text,
                            const wchar_t* name) const {
    ASSERT_EQ(ERROR_SUCCESS, ::RegSetKeyValueW(root_.get(), key.c_str(), name, REG_SZ, text.c_str(),
                                               bytesOf(text)));
}

std::wstring StandInRegistry::read(const std::wstring& key) const {
    wchar_t text[400]{};
    DWORD bytes = sizeof text;
    ::RegGetValueW(root_.get(), key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
    return text;
}

DWORD StandInRegistry::bytes(const std::wstring& key, const wchar_t* name) const {
    RegistryKey opened;
    DWORD found = 0;
    if (::RegOpenKeyExW(root_.get(), key.c_str(), 0, KEY_READ, opened.put()) == ERROR_SUCCESS)
        ::RegQueryValueExW(opened.get(), name, nullptr, nullptr, nullptr, &found);
    return found;
}

std::set<std::wstring> StandInRegistry::keys() const {
    std::set<std::wstring> found;
    collect(classes, found);
    return found;
}

RegistryKey StandInRegistry::openForRights(const std::wstring& key) const {
    RegistryKey opened;
    EXPECT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(root_.get(), key.c_str(), 0, WRITE_DAC, opened.put()));
    return opened;
}

void StandInRegistry::create(const std::wstring& key, DWORD options) const {
    RegistryKey made;
    ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(root_.get(), key.c_str(), 0, nullptr, options,
                                               KEY_READ, nullptr, made.put(), nullptr));
}

void StandInRegistry::collect(const std::wstring& key, std::set<std::wstring>& found) const {
    RegistryKey opened;
    if (::RegOpenKeyExW(root_.get(), key.c_str(), 0, KEY_READ, opened.put()) != ERROR_SUCCESS)
        return;
    wchar_t name[256];
    for (DWORD index = 0, length = 256; ::RegEnumKeyExW(opened.get(), index, name, &length, nullptr,
                                                        nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index, length = 256) {
        const std::wstring child = key + L"\\" + name;
        found.insert(child);
        collect(child, found);
    }
}

DeniedKey::DeniedKey(const StandInRegistry& registry, const std::wstring& key)
    : key_(registry.openForRights(key)) {
    ACL nobody{};
    EXPECT_TRUE(::InitializeAcl(&nobody, sizeof nobody, ACL_REVISION));
    allow(&nobody);
}

DeniedKey::~DeniedKey() {
    allow(nullptr);
}

void DeniedKey::allow(ACL* list) const {
    SECURITY_DESCRIPTOR rights{};
    EXPECT_TRUE(::InitializeSecurityDescriptor(&rights, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_TRUE(::SetSecurityDescriptorDacl(&rights, TRUE, list, FALSE));
    EXPECT_EQ(ERROR_SUCCESS, ::RegSetKeySecurity(key_.get(), DACL_SECURITY_INFORMATION, &rights));
}

} // namespace corvina::test
