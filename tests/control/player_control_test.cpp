// The registered player as a C++ host uses it, in a container and without one.

#include "PlayerControlFixture.h"
#include "support/HiddenWindow.h"
#include "support/ProcessObjects.h"

#include <string>
#include <thread>
#include <vector>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr DISPID errEvent = 2;

TEST_F(PlayerControl, null_out_pointers_are_refused_by_every_member) {
    const Bstr text(L"x");
    EXPECT_EQ(E_POINTER, player->get_Tag_Title(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Tag_Album(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Tag_Artist(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Tag_SongYear(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Tag_Genre(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Tag_Comment(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Tag_TrackNumber(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Info_Bitrate(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Info_BitsPerSample(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Info_Channels(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Info_Duration(nullptr));
    EXPECT_EQ(E_POINTER, player->get_Info_Samplerate(nullptr));
    EXPECT_EQ(E_POINTER, player->ErrorTextOut(5, nullptr));
    EXPECT_EQ(E_POINTER, player->PlayPause(nullptr));
    EXPECT_EQ(E_POINTER, player->PlayUnPause(nullptr));
    EXPECT_EQ(E_POINTER, player->IsPausedOut(nullptr));
    EXPECT_EQ(E_POINTER, player->DonePlay(nullptr));
    EXPECT_EQ(E_POINTER, player->Init(nullptr));
    EXPECT_EQ(E_POINTER, player->DeInit(nullptr));
    EXPECT_EQ(E_POINTER, player->get_AudioDataOut(nullptr));
    EXPECT_EQ(E_POINTER, player->PlayStop(nullptr));
    EXPECT_EQ(E_POINTER, player->PlayStart(text.get(), -1, 0, nullptr));
    EXPECT_EQ(E_POINTER, player->GetID3Tags(text.get(), nullptr));
    EXPECT_EQ(E_POINTER, player->OpenAudioFile(text.get(), nullptr));
    EXPECT_EQ(E_POINTER, player->PositionGet(nullptr));
    EXPECT_EQ(E_POINTER, player->PositionSet(0, nullptr));
    EXPECT_EQ(E_POINTER, player->GetSecondsAsTimeString(0, nullptr));
    EXPECT_EQ(E_POINTER, player->IsPlaying(nullptr));
    EXPECT_EQ(E_POINTER, player->NumOfAudioDevices(2, nullptr));
    AudioDeviceDetails details{};
    EXPECT_EQ(E_POINTER, player->GetDetailsDevice(0, 2, &details, nullptr));
    EXPECT_EQ(E_POINTER, player->GetDetailsDevice(0, 2, nullptr, &number));
}

TEST_F(PlayerControl, describes_the_first_output_device_as_the_system_does) {
    WAVEOUTCAPSA caps{};
    ASSERT_EQ(MMSYSERR_NOERROR, ::waveOutGetDevCapsA(0, &caps, sizeof caps));
    expectDescribed(caps, AUDIOOUT);
}

TEST_F(PlayerControl, describes_the_first_input_device_for_any_other_direction) {
    WAVEINCAPSA caps{};
    if (::waveInGetDevCapsA(0, &caps, sizeof caps) != MMSYSERR_NOERROR)
        GTEST_SKIP() << "no input device";
    expectDescribed(caps, AUDIOIN);
    expectDescribed(caps, 0);
}

TEST_F(PlayerControl, frees_the_texts_of_a_description_that_is_used_again) {
    AudioDeviceDetails details{};
    const auto describeOften = [&] {
        for (int i = 0; i < 1000; ++i)
            ASSERT_EQ(S_OK, player->GetDetailsDevice(0, AUDIOOUT, &details, &number));
    };
    describeOften();
    const std::size_t before = countHeapBytes();
    describeOften();
    EXPECT_LT(countHeapBytes(), before + 8 * 1024);
    ::SysFreeString(details.DeviceName);
    ::SysFreeString(details.DeviceDriver);
}

TEST_F(PlayerControl, a_tag_text_keeps_characters_of_code_0) {
    const std::wstring text(L"a\0b", 3);
    EXPECT_EQ(S_OK, player->put_Tag_Genre(Bstr(text).get()));
    Bstr got;
    EXPECT_EQ(S_OK, player->get_Tag_Genre(got.put()));
    EXPECT_EQ(text, textOf(got.get()));
}

TEST_F(PlayerControl, a_null_text_is_an_empty_one) {
    EXPECT_EQ(S_OK, player->put_Tag_Genre(nullptr));
    Bstr got;
    EXPECT_EQ(S_OK, player->get_Tag_Genre(got.put()));
    EXPECT_EQ(L"", textOf(got.get()));
    EXPECT_EQ(S_OK, player->OpenAudioFile(nullptr, &number));
    EXPECT_EQ(1, number);
}

TEST_F(PlayerControl, each_tag_is_a_text_of_its_own) {
    player->put_Tag_Title(Bstr(L"1").get());
    player->put_Tag_Album(Bstr(L"2").get());
    player->put_Tag_TrackNumber(Bstr(L"3").get());
    Bstr title, album, artist, track;
    player->get_Tag_Title(title.put());
    player->get_Tag_Album(album.put());
    player->get_Tag_Artist(artist.put());
    player->get_Tag_TrackNumber(track.put());
    EXPECT_EQ(L"1", textOf(title.get()));
    EXPECT_EQ(L"2", textOf(album.get()));
    EXPECT_EQ(L"", textOf(artist.get()));
    EXPECT_EQ(L"3", textOf(track.get()));
}

TEST_F(PlayerControl, info_without_a_file_comes_with_error_information) {
    EXPECT_EQ(static_cast<HRESULT>(0x800A005B), player->get_Info_Samplerate(&number));
    EXPECT_EQ(0, number);
    ComPtr<IErrorInfo> error;
    ASSERT_EQ(S_OK, ::GetErrorInfo(0, error.put()));
    GUID iid{};
    Bstr source, text;
    error->GetGUID(&iid);
    error->GetSource(source.put());
    error->GetDescription(text.put());
    EXPECT_EQ(IID__cPlayer, iid);
    EXPECT_EQ(L"Corvina.cPlayer", textOf(source.get()));
    EXPECT_EQ(L"Object variable or With block variable not set", textOf(text.get()));
    EXPECT_EQ(S_OK, player.query<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(IID__cPlayer));
    EXPECT_EQ(S_FALSE, player.query<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(IID_IUnknown));
}

TEST_F(PlayerControl, a_missing_file_raises_err_with_number_1_by_reference) {
    EventSink sink(DIID___cPlayer);
    ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
    player->Init(&number);
    EXPECT_EQ(1, open(L"no such file.wav"));
    ASSERT_EQ(1u, sink.received.size());
    EXPECT_EQ(errEvent, sink.received[0].id);
    EXPECT_EQ((std::vector<VARTYPE>{VT_BSTR, VT_BYREF | VT_I4, VT_BSTR}), sink.received[0].types);
    EXPECT_EQ(L"", textOf(V_BSTR(&sink.received[0].arguments[0])));
    EXPECT_EQ(1, V_I4(&sink.received[0].arguments[1]));
    EXPECT_EQ(L"File doen't exist", textOf(V_BSTR(&sink.received[0].arguments[2])));
}

TEST_F(PlayerControl, may_be_released_in_its_err_handler) {
    EventSink sink(DIID___cPlayer);
    sink.connect(player.get(), DIID___cPlayer);
    player->Init(&number);
    sink.handler = [&](const EventSink::Event&) {
        sink.disconnect();
        player.reset();
    };
    _cPlayer* raw = player.get();
    EXPECT_EQ(S_OK, raw->OpenAudioFile(Bstr(L"none.wav").get(), &number));
    EXPECT_EQ(1, number);
}

TEST_F(PlayerControl, identity_is_the_same_from_every_interface) {
    ComPtr<IUnknown> first = player.query<IUnknown>();
    for (REFIID iid : {IID_IDispatch,
                       IID__cPlayer,
                       IID_ISubclass,
                       IID_cCallback,
                       IID_IOleObject,
                       IID_IOleControl,
                       IID_IOleInPlaceObject,
                       IID_IOleWindow,
                       IID_IOleInPlaceActiveObject,
                       IID_IViewObject,
                       IID_IViewObject2,
                       IID_IViewObjectEx,
                       IID_IPersist,
                       IID_IPersistStreamInit,
                       IID_IPersistStorage,
                       IID_IPersistPropertyBag,
                       IID_IProvideClassInfo,
                       IID_IProvideClassInfo2,
                       IID_ISupportErrorInfo,
                       IID_IConnectionPointContainer,
                       IID_IQuickActivate}) {
        ComPtr<IUnknown> other, back;
        ASSERT_EQ(S_OK, player->QueryInterface(iid, other.putVoid()));
        ASSERT_EQ(S_OK, other->QueryInterface(IID_IUnknown, back.putVoid()));
        EXPECT_EQ(first.get(), back.get());
    }
}

TEST_F(PlayerControl, does_not_claim_to_be_safe_for_strangers) {
    constexpr GUID objectSafety{
        0xcb5bdc81, 0x93c1, 0x11cf, {0x8f, 0x20, 0x00, 0x80, 0x5f, 0x2c, 0xd0, 0x64}};
    void* found = this;
    EXPECT_EQ(E_NOINTERFACE, player->QueryInterface(objectSafety, &found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(E_POINTER, player->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(PlayerControl, always_returns_preprocess_whatever_is_set) {
    const auto subclass = player.query<ISubclass>();
    EXPECT_EQ(S_OK, subclass->put_MsgResponse(emrConsume));
    EMsgResponse response = emrConsume;
    EXPECT_EQ(S_OK, subclass->get_MsgResponse(&response));
    EXPECT_EQ(emrPreprocess, response);
}

TEST_F(PlayerControl, dispatches_its_second_interface_by_its_own_names) {
    const auto subclass = player.query<ISubclass>();
    Variant result;
    EXPECT_EQ(S_OK, callByName(subclass.get(), L"MsgResponse", DISPATCH_PROPERTYGET, {}, &result));
    EXPECT_EQ(2, V_I4(&result));
}

TEST_F(PlayerControl, ignores_messages_that_are_not_its_own) {
    const auto subclass = player.query<ISubclass>();
    EXPECT_EQ(S_OK, subclass->WindowProc(0, WM_USER, 1, 2, &number));
    EXPECT_EQ(0, number);
    EXPECT_EQ(E_POINTER, subclass->WindowProc(0, WM_USER, 1, 2, nullptr));
}

TEST_F(PlayerControl, takes_samples_and_does_nothing_with_them) {
    EXPECT_EQ(S_OK, player.query<cCallback>()->Samples(nullptr, -1, 0));
}

TEST_F(PlayerControl, shows_and_closes_its_about_box) {
    bool seen = false;
    std::thread closer([&seen] {
        for (int i = 0; i < 500 && !seen; ++i, ::Sleep(10))
            if (const HWND box = ::FindWindowW(nullptr, L"About Corvina")) {
                ::PostMessageW(box, WM_COMMAND, IDOK, 0);
                seen = true;
            }
    });
    EXPECT_EQ(S_OK, player->About());
    closer.join();
    EXPECT_TRUE(seen);
}

// The owners of the boxes that were to be created while none could be.
std::vector<HWND> ownersOfRefusedBoxes;

LRESULT CALLBACK refuseBoxes(int code, WPARAM wParam, LPARAM lParam) {
    wchar_t kind[20]{};
    if (code != HCBT_CREATEWND || ::GetClassNameW(reinterpret_cast<HWND>(wParam), kind, 20) == 0 ||
        std::wstring(kind) != L"#32770")
        return ::CallNextHookEx(nullptr, code, wParam, lParam);
    ownersOfRefusedBoxes.push_back(reinterpret_cast<CBT_CREATEWND*>(lParam)->lpcs->hwndParent);
    return 1;
}

TEST_F(PlayerControl, goes_on_if_the_box_cannot_be_shown_over_the_active_window) {
    const HiddenWindow form;
    ::SetActiveWindow(form.handle());
    ownersOfRefusedBoxes.clear();
    const HHOOK hook = ::SetWindowsHookExW(WH_CBT, &refuseBoxes, nullptr, ::GetCurrentThreadId());
    EXPECT_EQ(S_OK, player->About());
    ::UnhookWindowsHookEx(hook);
    EXPECT_EQ(std::vector<HWND>{form.handle()}, ownersOfRefusedBoxes);
}

} // namespace
