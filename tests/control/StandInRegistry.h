#pragma once

// A registry of the test's own in place of the user's or the machine's, whose keys can refuse.
// Keys are named from the root, as in "Software\Classes\CLSID". One object at a time; what it
// holds is gone with it.

#include "platform/RegistryKey.h"

#include <set>
#include <string>
#include <windows.h>

namespace corvina::test {

inline const std::wstring classes = L"Software\\Classes";

// Stands in for the user's or the machine's registry while it lives.
class StandInRegistry {
public:
    explicit StandInRegistry(HKEY replaced);
    StandInRegistry(const StandInRegistry&) = delete;
    StandInRegistry& operator=(const StandInRegistry&) = delete;
    ~StandInRegistry();

    // From now on no key can be made below this one, which is made volatile.
    void close(const std::wstring& key) const;
    void remove(const std::wstring& key) const;
    void removeValue(const std::wstring& key, const wchar_t* name) const;
    void write(const std::wstring& key, const std::wstring& text,
               const wchar_t* name = nullptr) const;
    // The text of a key, shorter than 400 characters; empty if there is none.
    [[nodiscard]] std::wstring read(const std::wstring& key) const;
    // How long a value is; 0 if there is none.
    [[nodiscard]] DWORD bytes(const std::wstring& key, const wchar_t* name) const;
    // Every key below Software\Classes.
    [[nodiscard]] std::set<std::wstring> keys() const;
    // A key with the right to change who may do what with it.
    [[nodiscard]] RegistryKey openForRights(const std::wstring& key) const;

private:
    void create(const std::wstring& key, DWORD options) const;
    void collect(const std::wstring& key, std::set<std::wstring>& found) const;

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

// While this lives, nobody may open the key.
class DeniedKey {
public:
    DeniedKey(const StandInRegistry& registry, const std::wstring& key);
    DeniedKey(const DeniedKey&) = delete;
    DeniedKey& operator=(const DeniedKey&) = delete;
    ~DeniedKey();

private:
    void allow(ACL* list) const; // null: everybody everything

    RegistryKey key_;
};

} // namespace corvina::test
