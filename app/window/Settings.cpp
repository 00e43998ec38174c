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

// A list ends with an empty text.
std::vector<std::wstring> readTexts(const wchar_t* name) {
    DWORD size = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, path, name, RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &size) !=
        ERROR_SUCCESS)
        return {};
    std::vector<wchar_t> texts(size / sizeof(wchar_t) + 2);
    if (RegGetValueW(HKEY_CURRENT_USER, path, name, RRF_RT_REG_MULTI_SZ, nullptr, texts.data(),
                     &size) != ERROR_SUCCESS)
        return {};
    std::vector<std::wstring> result;
    for (const wchar_t* text = texts.data(); *text != L'\0'; text += result.back().size() + 1)
        result.emplace_back(text);
    return result;
}

void writeTexts(HKEY key, const wchar_t* name, const std::vector<std::wstring>& texts) {
    std::wstring joined;
    for (const std::wstring& text : texts)
        joined.append(text).push_back(L'\0');
    RegSetValueExW(key, name, 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(joined.c_str()),
                   static_cast<DWORD>((joined.size() + 1) * sizeof(wchar_t)));
}

} // namespace

void Settings::addRecent(const std::wstring& file) {
    constexpr std::size_t mostFiles = 10;
    std::erase(recentFiles, file);
    recentFiles.insert(recentFiles.begin(), file);
    if (recentFiles.size() > mostFiles)
        recentFiles.resize(mostFiles);
}

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
    DWORD flag = 0;
    readNumber(L"Shuffle", flag);
    settings.shuffle = flag != 0;
    flag = 0;
    readNumber(L"Repeat", flag);
    settings.repeat = flag != 0;
    settings.recentFiles = readTexts(L"RecentFiles");
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
    writeNumber(key, L"Shuffle", shuffle);
    writeNumber(key, L"Repeat", repeat);
    writeTexts(key, L"RecentFiles", recentFiles);
    RegSetValueExW(key, L"Place", 0, REG_BINARY, reinterpret_cast<const BYTE*>(&place),
                   sizeof place);
}

} // namespace corvina::app
