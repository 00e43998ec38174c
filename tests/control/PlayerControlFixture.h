#pragma once

// The registered player, made through COM.

#include "Support.h"

#include <array>
#include <string>
#include <windows.h>

#include <mmsystem.h>

namespace corvina::test {

class PlayerControl : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        player = create<_cPlayer>(CLSID_cPlayer);
        ASSERT_TRUE(player);
    }
    void TearDown() override {
        player.reset();
        ApartmentTest::TearDown();
    }
    HWND inPlaceWindow() {
        HWND window = nullptr;
        player.query<IOleInPlaceObject>()->GetWindow(&window);
        return window;
    }
    HRESULT verb(LONG which) {
        const auto object = player.query<IOleObject>();
        ComPtr<IOleClientSite> site;
        object->GetClientSite(site.put());
        return object->DoVerb(which, nullptr, site.get(), 0, nullptr, nullptr);
    }
    long open(const wchar_t* name) {
        long result = -1;
        EXPECT_EQ(S_OK, player->OpenAudioFile(Bstr(name).get(), &result));
        return result;
    }

    // The fields of both kinds of record have the same names.
    template <typename Caps>
    void expectDescribed(const Caps& caps, long direction) {
        AudioDeviceDetails details{};
        EXPECT_EQ(S_OK, player->GetDetailsDevice(0, direction, &details, &number));
        EXPECT_EQ(MMSYSERR_NOERROR, static_cast<MMRESULT>(number));
        std::array<wchar_t, MAXPNAMELEN> name{};
        ::MultiByteToWideChar(CP_ACP, 0, caps.szPname, -1, name.data(), MAXPNAMELEN);
        EXPECT_EQ(std::wstring(name.data()), textOf(details.DeviceName));
        EXPECT_EQ(std::to_wstring(caps.vDriverVersion), textOf(details.DeviceDriver));
        EXPECT_EQ(caps.wChannels, details.DeviceChannels);
        EXPECT_EQ(caps.dwFormats, static_cast<DWORD>(details.DeviceFormat));
        ::SysFreeString(details.DeviceName);
        ::SysFreeString(details.DeviceDriver);
    }

    ComPtr<_cPlayer> player;
    long number = -1;
};

} // namespace corvina::test
