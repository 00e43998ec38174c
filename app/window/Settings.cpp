#include "window/Settings.h"

#include "Owners.h"

namespace corvina::app {

namespace {

constexpr const wchar_t* path = L"Software\\Corvina\\Player";

void readNumber(const wchar_t* name, DWORD& value) {
    DWORD read = 0;
    DWORD size = sizeof read;
    if (RegGetValueW(HKEY_CURRENT_USER, path, name, RRF_RT_REG_DWORD, nullptr, &read, &size) ==
        ERROR_SUCCESS)
        value = read;
}

void writeNumber(HKEY key, const wchar_t* name, DWORD value) {
    RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
}

} // namespace

Settings Settings::load() {
    Settings settings;
    wchar_t text[256];
    DWORD size = sizeof text;
    if (RegGetValueW(HKEY_CURRENT_USER, path, L"Device", RRF_RT_REG_SZ, nullptr, text, &size) ==
        ERROR_SUCCESS)
        settings.device = text;
    readNumber(L"GraphStyle", settings.graphStyle);
    readNumber(L"BarColor", settings.barColor);
    readNumber(L"CurveColor", settings.curveColor);
    readNumber(L"BackgroundColor", settings.backgroundColor);
    RECT place{};
    size = sizeof place;
    if (RegGetValueW(HKEY_CURRENT_USER, path, L"Place", RRF_RT_REG_BINARY, nullptr, &place,
                     &size) == ERROR_SUCCESS &&
        size == sizeof place)
        settings.place = place;
    if (settings.graphStyle > 1)
        settings.graphStyle = 1;
    return settings;
}

void Settings::save() const {
    HKEY created = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &created,
                        nullptr) != ERROR_SUCCESS)
        return;
    const RegistryKey owner(created);
    const HKEY key = owner.get();
    RegSetValueExW(key, L"Device", 0, REG_SZ, reinterpret_cast<const BYTE*>(device.c_str()),
                   static_cast<DWORD>((device.size() + 1) * sizeof(wchar_t)));
    writeNumber(key, L"GraphStyle", graphStyle);
    writeNumber(key, L"BarColor", barColor);
    writeNumber(key, L"CurveColor", curveColor);
    writeNumber(key, L"BackgroundColor", backgroundColor);
    RegSetValueExW(key, L"Place", 0, REG_BINARY, reinterpret_cast<const BYTE*>(&place),
                   sizeof place);
}

} // namespace corvina::app
