#include "window/Settings.h"

#include "Owners.h"

#include <algorithm>

namespace corvina::app {

namespace {

// The stored values of one key.
class StoredValues {
public:
    explicit StoredValues(const wchar_t* key) : key_(key) {}

    // Leaves the value alone if nothing of that name and kind is stored.
    void read(const wchar_t* name, DWORD& value) const {
        DWORD stored = 0;
        if (readBytes(name, RRF_RT_REG_DWORD, &stored, sizeof stored))
            value = stored;
    }
    void read(const wchar_t* name, bool& value) const {
        DWORD stored = value ? 1 : 0;
        read(name, stored);
        value = stored != 0;
    }
    template <typename Record>
    void readRecord(const wchar_t* name, Record& value) const {
        Record stored{};
        if (readBytes(name, RRF_RT_REG_BINARY, &stored, sizeof stored))
            value = stored;
    }
    // A list ends with an empty text.
    [[nodiscard]] std::vector<std::wstring> readTexts(const wchar_t* name, DWORD kind) const {
        DWORD size = 0;
        if (RegGetValueW(HKEY_CURRENT_USER, key_, name, kind, nullptr, nullptr, &size) !=
            ERROR_SUCCESS)
            return {};
        std::vector<wchar_t> texts(size / sizeof(wchar_t) + 2);
        if (RegGetValueW(HKEY_CURRENT_USER, key_, name, kind, nullptr, texts.data(), &size) !=
            ERROR_SUCCESS)
            return {};
        std::vector<std::wstring> result;
        for (const wchar_t* text = texts.data(); *text != L'\0'; text += result.back().size() + 1)
            result.emplace_back(text);
        return result;
    }

private:
    bool readBytes(const wchar_t* name, DWORD kind, void* bytes, DWORD size) const {
        DWORD read = size;
        return RegGetValueW(HKEY_CURRENT_USER, key_, name, kind, nullptr, bytes, &read) ==
                   ERROR_SUCCESS &&
               read == size;
    }

    const wchar_t* key_;
};

void write(HKEY key, const wchar_t* name, DWORD kind, const void* bytes, std::size_t size) {
    RegSetValueExW(key, name, 0, kind, static_cast<const BYTE*>(bytes), static_cast<DWORD>(size));
}

void writeNumber(HKEY key, const wchar_t* name, DWORD value) {
    write(key, name, REG_DWORD, &value, sizeof value);
}

void writeTexts(HKEY key, const wchar_t* name, const std::vector<std::wstring>& texts) {
    std::wstring joined;
    for (const std::wstring& text : texts)
        joined.append(text).push_back(L'\0');
    write(key, name, REG_MULTI_SZ, joined.c_str(), (joined.size() + 1) * sizeof(wchar_t));
}

} // namespace

void Settings::addRecent(const std::wstring& file) {
    constexpr std::size_t mostFiles = 10;
    std::erase(recentFiles, file);
    recentFiles.insert(recentFiles.begin(), file);
    if (recentFiles.size() > mostFiles)
        recentFiles.resize(mostFiles);
}

Settings Settings::load(const wchar_t* key) {
    const StoredValues stored(key);
    Settings settings;
    if (const auto names = stored.readTexts(L"Device", RRF_RT_REG_SZ); !names.empty())
        settings.device = names.front();
    stored.read(L"Volume", settings.volume);
    stored.read(L"Mute", settings.mute);
    stored.readRecord(L"Balance", settings.balance);
    stored.readRecord(L"Equalizer", settings.equalizer);
    stored.read(L"EqualizerShown", settings.equalizerShown);
    stored.read(L"GraphStyle", settings.graphStyle);
    stored.read(L"Decibels", settings.decibels);
    stored.read(L"Octaves", settings.octaves);
    stored.read(L"Peaks", settings.peaks);
    stored.read(L"Channels", settings.channels);
    stored.read(L"BarColor", settings.barColor);
    stored.read(L"CurveColor", settings.curveColor);
    stored.read(L"BackgroundColor", settings.backgroundColor);
    stored.read(L"Shuffle", settings.shuffle);
    stored.read(L"Repeat", settings.repeat);
    stored.read(L"Loop", settings.loop);
    stored.readRecord(L"Place", settings.place);
    settings.recentFiles = stored.readTexts(L"RecentFiles", RRF_RT_REG_MULTI_SZ);

    settings.volume = std::min<DWORD>(settings.volume, 100);
    settings.balance = std::clamp(settings.balance, -100L, 100L);
    for (long& gain : settings.equalizer)
        gain = std::clamp(gain, -120L, 120L);
    settings.graphStyle = std::min<DWORD>(settings.graphStyle, 1);
    return settings;
}

void Settings::save(const wchar_t* where) const {
    HKEY created = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, where, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &created,
                        nullptr) != ERROR_SUCCESS)
        return;
    const RegistryKey owner(created);
    const HKEY key = owner.get();
    write(key, L"Device", REG_SZ, device.c_str(), (device.size() + 1) * sizeof(wchar_t));
    writeNumber(key, L"Volume", volume);
    writeNumber(key, L"Mute", mute);
    write(key, L"Balance", REG_BINARY, &balance, sizeof balance);
    write(key, L"Equalizer", REG_BINARY, &equalizer, sizeof equalizer);
    writeNumber(key, L"EqualizerShown", equalizerShown);
    writeNumber(key, L"GraphStyle", graphStyle);
    writeNumber(key, L"Decibels", decibels);
    writeNumber(key, L"Octaves", octaves);
    writeNumber(key, L"Peaks", peaks);
    writeNumber(key, L"Channels", channels);
    writeNumber(key, L"BarColor", barColor);
    writeNumber(key, L"CurveColor", curveColor);
    writeNumber(key, L"BackgroundColor", backgroundColor);
    writeNumber(key, L"Shuffle", shuffle);
    writeNumber(key, L"Repeat", repeat);
    writeNumber(key, L"Loop", loop);
    writeTexts(key, L"RecentFiles", recentFiles);
    write(key, L"Place", REG_BINARY, &place, sizeof place);
}

} // namespace corvina::app
