#include "library/RegistryChanges.h"

#include "platform/RegistryKey.h"

#include <new>

namespace corvina {
namespace {

std::wstring full(const std::wstring& key) {
    return L"Software\\Classes\\" + key;
}

HRESULT resultOf(LSTATUS status) {
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

} // namespace

HRESULT RegistryChanges::write(const RegistryValue& value) {
    remember(value.key, value.name);
    return set(value);
}

void RegistryChanges::remember(const std::wstring& key, const wchar_t* name) {
    former_.push_back(
        {.key = key, .name = name, .data = read(key, name), .made = topmostMissing(key)});
}

void RegistryChanges::takeBack() noexcept {
    for (; !former_.empty(); former_.pop_back())
        try {
            takeBack(former_.back());
        } catch (const std::bad_alloc&) {
            // The others may still be taken back.
        }
}

void RegistryChanges::takeBack(const Former& former) const {
    if (!former.made.empty())
        static_cast<void>(remove(former.made));
    else if (former.data)
        static_cast<void>(set({.key = former.key, .name = former.name, .data = *former.data}));
    else
        ::RegDeleteKeyValueW(root_, full(former.key).c_str(), former.name);
}

bool RegistryChanges::has(const std::wstring& key) const {
    RegistryKey opened;
    return ::RegOpenKeyExW(root_, full(key).c_str(), 0, KEY_READ, opened.put()) !=
           ERROR_FILE_NOT_FOUND;
}

HRESULT RegistryChanges::remove(const std::wstring& key) const {
    const LSTATUS removed = ::RegDeleteTreeW(root_, full(key).c_str());
    return removed == ERROR_FILE_NOT_FOUND ? S_OK : resultOf(removed);
}

HRESULT RegistryChanges::set(const RegistryValue& value) const {
    RegistryKey key;
    const LSTATUS made = ::RegCreateKeyExW(root_, full(value.key).c_str(), 0, nullptr, 0, KEY_WRITE,
                                           nullptr, key.put(), nullptr);
    if (made != ERROR_SUCCESS)
        return resultOf(made);
    return resultOf(::RegSetValueExW(
        key.get(), value.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.data.c_str()),
        static_cast<DWORD>((value.data.size() + 1) * sizeof(wchar_t))));
}

std::optional<std::wstring> RegistryChanges::read(const std::wstring& key,
                                                  const wchar_t* name) const {
    DWORD bytes = 0;
    const std::wstring path = full(key);
    if (::RegGetValueW(root_, path.c_str(), name, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) !=
        ERROR_SUCCESS)
        return std::nullopt;
    std::wstring text(bytes / sizeof(wchar_t), L'\0');
    if (::RegGetValueW(root_, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) !=
        ERROR_SUCCESS)
        return std::nullopt;
    text.resize(bytes / sizeof(wchar_t));
    if (!text.empty() && text.back() == L'\0')
        text.pop_back();
    return text;
}

std::wstring RegistryChanges::topmostMissing(const std::wstring& key) const {
    for (std::size_t end = key.find(L'\\');; end = key.find(L'\\', end + 1)) {
        const std::wstring ancestor = key.substr(0, end);
        if (!has(ancestor))
            return ancestor;
        if (end == std::wstring::npos)
            return {};
    }
}

} // namespace corvina
