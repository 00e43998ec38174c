// What the player window remembers, in a key of the test's own.

#include "window/Settings.h"

#include <gtest/gtest.h>

namespace corvina::app {
namespace {

constexpr const wchar_t* key = L"Software\\Corvina\\WindowSettingsTest";

class WindowSettings : public ::testing::Test {
protected:
    void SetUp() override { RegDeleteKeyW(HKEY_CURRENT_USER, key); }
    void TearDown() override { RegDeleteKeyW(HKEY_CURRENT_USER, key); }

    static void store(const wchar_t* name, DWORD kind, const void* bytes, DWORD size) {
        RegSetKeyValueW(HKEY_CURRENT_USER, key, name, kind, bytes, size);
    }
};

TEST_F(WindowSettings, are_full_volume_and_a_flat_sound_at_first) {
    const Settings settings = Settings::load(key);
    EXPECT_EQ(settings.volume, 100u);
    EXPECT_FALSE(settings.mute);
    EXPECT_EQ(settings.balance, 0);
    EXPECT_EQ(settings.equalizer, (std::array<long, 10>{}));
    EXPECT_TRUE(settings.device.empty());
    EXPECT_TRUE(settings.recentFiles.empty());
}

TEST_F(WindowSettings, are_the_same_in_the_next_run) {
    Settings settings;
    settings.device = L"Loudspeaker \x00FC";
    settings.volume = 35;
    settings.mute = true;
    settings.balance = -40;
    settings.equalizer = {-120, 5, 0, 0, 0, 0, 0, 0, 30, 120};
    settings.equalizerShown = true;
    settings.graphStyle = 0;
    settings.decibels = false;
    settings.octaves = false;
    settings.peaks = false;
    settings.channels = false;
    settings.barColor = RGB(1, 2, 3);
    settings.shuffle = true;
    settings.repeat = true;
    settings.loop = true;
    settings.place = {10, 20, 700, 600};
    settings.addRecent(L"C:\\a.wav");
    settings.addRecent(L"C:\\b.wav");
    settings.save(key);
    const Settings loaded = Settings::load(key);
    EXPECT_EQ(loaded.device, settings.device);
    EXPECT_EQ(loaded.volume, 35u);
    EXPECT_TRUE(loaded.mute);
    EXPECT_EQ(loaded.balance, -40);
    EXPECT_EQ(loaded.equalizer, settings.equalizer);
    EXPECT_TRUE(loaded.equalizerShown);
    EXPECT_EQ(loaded.graphStyle, 0u);
    EXPECT_FALSE(loaded.decibels || loaded.octaves || loaded.peaks);
    EXPECT_FALSE(loaded.channels);
    EXPECT_EQ(loaded.barColor, RGB(1, 2, 3));
    EXPECT_TRUE(loaded.shuffle && loaded.repeat && loaded.loop);
    EXPECT_TRUE(EqualRect(&loaded.place, &settings.place));
    EXPECT_EQ(loaded.recentFiles, (std::vector<std::wstring>{L"C:\\b.wav", L"C:\\a.wav"}));
}

TEST_F(WindowSettings, out_of_range_are_brought_into_it) {
    Settings settings;
    settings.volume = 4711;
    settings.balance = -4711;
    settings.equalizer = {9999, -9999};
    settings.graphStyle = 77;
    settings.save(key);
    const Settings loaded = Settings::load(key);
    EXPECT_EQ(loaded.volume, 100u);
    EXPECT_EQ(loaded.balance, -100);
    EXPECT_EQ(loaded.equalizer, (std::array<long, 10>{120, -120}));
    EXPECT_EQ(loaded.graphStyle, 1u);
}

TEST_F(WindowSettings, of_another_type_or_size_are_as_in_a_first_run) {
    const DWORD number = 5;
    for (const wchar_t* name : {L"Device", L"Balance", L"Equalizer", L"Place", L"RecentFiles"})
        store(name, REG_DWORD, &number, sizeof number);
    store(L"Volume", REG_SZ, L"loud", 10);
    store(L"Place", REG_BINARY, &number, 3);
    const Settings loaded = Settings::load(key);
    EXPECT_TRUE(loaded.device.empty());
    EXPECT_EQ(loaded.balance, 0);
    EXPECT_EQ(loaded.volume, 100u);
    EXPECT_EQ(loaded.equalizer, (std::array<long, 10>{}));
    EXPECT_TRUE(IsRectEmpty(&loaded.place));
    EXPECT_TRUE(loaded.recentFiles.empty());
}

TEST_F(WindowSettings, keep_the_ten_latest_files_each_once) {
    Settings settings;
    for (int count = 0; count < 12; ++count)
        settings.addRecent(std::to_wstring(count));
    settings.addRecent(L"7");
    ASSERT_EQ(settings.recentFiles.size(), 10u);
    EXPECT_EQ(settings.recentFiles.front(), L"7");
    EXPECT_EQ(settings.recentFiles[1], L"11");
    EXPECT_EQ(settings.recentFiles.back(), L"2");
}

} // namespace
} // namespace corvina::app
