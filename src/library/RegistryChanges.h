#pragma once

// Changes below the registry's Software\Classes, which can be taken back: then every value that was
// written is as it was before, and every key that was made is gone.

#include "library/Registration.h"

#include <optional>
#include <string>
#include <vector>

namespace corvina {

// A text, the only kind of value that is written.
struct RegistryValue {
    std::wstring key;
    const wchar_t* name; // null for the key's default value
    std::wstring data;
};

class RegistryChanges {
public:
    explicit RegistryChanges(RegistrationScope scope) noexcept
        : root_(scope == RegistrationScope::machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER) {}

    // The key is made if it is missing.
    [[nodiscard]] HRESULT write(const RegistryValue& value);
    // Notes the present state of a value that somebody else is going to write.
    void remember(const std::wstring& key, const wchar_t* name);
    // Goes on after a failure: as much as can be is taken back.
    void takeBack() noexcept;

    [[nodiscard]] bool has(const std::wstring& key) const;
    // Succeeds if there is no such key.
    [[nodiscard]] HRESULT remove(const std::wstring& key) const;

private:
    struct Former {
        std::wstring key;
        const wchar_t* name;
        std::optional<std::wstring> data;
        std::wstring made; // the topmost key that was missing; empty if none was
    };

    [[nodiscard]] HRESULT set(const RegistryValue& value) const;
    [[nodiscard]] std::optional<std::wstring> read(const std::wstring& key,
                                                   const wchar_t* name) const;
    [[nodiscard]] std::wstring topmostMissing(const std::wstring& key) const;
    void takeBack(const Former& former) const;

    HKEY root_;
    std::vector<Former> former_;
};

} // namespace corvina
