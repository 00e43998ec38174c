// The settings and events of the registered player, through early-bound and late-bound hosts.

#include "PlayerControlFixture.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <algorithm>

using namespace corvina;
using namespace corvina::test;

namespace {

class PlayerSettings : public PlayerControl {
protected:
    HRESULT put(const wchar_t* name, const Variant& value) {
        return callByName(player.get(), name, DISPATCH_PROPERTYPUT, {value});
    }
    HRESULT get(const wchar_t* name, std::vector<Variant> arguments = {}) {
        ::VariantClear(&result);
        return callByName(player.get(), name, DISPATCH_PROPERTYGET, std::move(arguments), &result);
    }

    Variant result;
};

TEST_F(PlayerSettings, have_their_initial_values_before_Init) {
    long value = -1;
    VARIANT_BOOL flag = VARIANT_TRUE;
    EXPECT_EQ(S_OK, player->get_Volume(&value));
    EXPECT_EQ(100, value);
    EXPECT_EQ(S_OK, player->get_Balance(&value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(S_OK, player->get_PositionMs(&value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(S_OK, player->get_DurationMs(&value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(S_OK, player->get_PositionInterval(&value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(S_OK, player->get_Level(1, &value));
    EXPECT_EQ(0, value);
    for (const auto getter : {&_cPlayer::get_Mute, &_cPlayer::get_Looping, &_cPlayer::get_Recover,
                              &_cPlayer::get_CleanEnd}) {
        flag = VARIANT_TRUE;
        EXPECT_EQ(S_OK, (player.get()->*getter)(&flag));
        EXPECT_EQ(VARIANT_FALSE, flag);
    }
    PlayState state = PLAY_PAUSED;
    EXPECT_EQ(S_OK, player->get_State(&state));
    EXPECT_EQ(PLAY_STOPPED, state);
    for (const auto getter :
         {&_cPlayer::get_NextFile, &_cPlayer::get_Device, &_cPlayer::get_FormatName}) {
        Bstr text;
        EXPECT_EQ(S_OK, (player.get()->*getter)(text.put()));
        EXPECT_EQ(L"", textOf(text.get()));
    }
    Bstr extensions;
    EXPECT_EQ(S_OK, player->get_Extensions(extensions.put()));
    EXPECT_EQ(0u, textOf(extensions.get()).find(L"*.ape;*.ogg;*.wav;"));
}

TEST_F(PlayerSettings, are_written_and_read_by_an_early_bound_host) {
    long value = 0;
    float gain = 0;
    EXPECT_EQ(S_OK, player->put_Volume(30));
    EXPECT_EQ(S_OK, player->get_Volume(&value));
    EXPECT_EQ(30, value);
    EXPECT_EQ(S_OK, player->put_Balance(-100));
    EXPECT_EQ(S_OK, player->get_Balance(&value));
    EXPECT_EQ(-100, value);
    EXPECT_EQ(S_OK, player->put_EqualizerGain(10, -4.5F));
    EXPECT_EQ(S_OK, player->get_EqualizerGain(10, &gain));
    EXPECT_EQ(-4.5F, gain);
    for (const auto& [put, get] : {std::pair(&_cPlayer::put_Mute, &_cPlayer::get_Mute),
                                   std::pair(&_cPlayer::put_Looping, &_cPlayer::get_Looping),
                                   std::pair(&_cPlayer::put_Recover, &_cPlayer::get_Recover),
                                   std::pair(&_cPlayer::put_CleanEnd, &_cPlayer::get_CleanEnd)})
        for (const VARIANT_BOOL flag : {VARIANT_TRUE, VARIANT_FALSE}) {
            VARIANT_BOOL got = static_cast<VARIANT_BOOL>(~flag);
            EXPECT_EQ(S_OK, (player.get()->*put)(flag));
            EXPECT_EQ(S_OK, (player.get()->*get)(&got));
            EXPECT_EQ(flag, got);
        }
    EXPECT_EQ(S_OK, player->put_NextFile(Bstr(L"C:\\next.wav").get()));
    Bstr text;
    EXPECT_EQ(S_OK, player->get_NextFile(text.put()));
    EXPECT_EQ(L"C:\\next.wav", textOf(text.get()));
}

TEST_F(PlayerSettings, are_written_and_read_by_a_late_bound_host) {
    EXPECT_EQ(S_OK, put(L"volume", Variant(L"70"))) << "converted as any argument is";
    EXPECT_EQ(S_OK, get(L"Volume"));
    EXPECT_EQ(70, V_I4(&result));
    for (const wchar_t* name : {L"Mute", L"Looping", L"Recover", L"CleanEnd"}) {
        EXPECT_EQ(S_OK, put(name, Variant(1))) << name;
        EXPECT_EQ(S_OK, get(name));
        EXPECT_EQ(VARIANT_TRUE, V_BOOL(&result)) << name;
    }
    EXPECT_EQ(S_OK, get(L"EqualizerGain", {Variant(3)}));
    EXPECT_EQ(0.0F, V_R4(&result));
    EXPECT_EQ(S_OK, get(L"Level", {Variant(2)}));
    EXPECT_EQ(S_OK, put(L"Device", Variant(L"Loudspeaker")));
    EXPECT_EQ(S_OK, get(L"Device"));
    EXPECT_EQ(L"Loudspeaker", textOf(V_BSTR(&result)));
    EXPECT_TRUE(FAILED(put(L"State", Variant(1)))) << "it is read-only";
}

TEST_F(PlayerSettings, out_of_range_raise_380_with_the_range_in_words) {
    EXPECT_EQ(invalidPropertyValue, player->put_Volume(101));
    EXPECT_EQ(L"Volume must be from 0 to 100", errorText());
    EXPECT_EQ(invalidPropertyValue, player->put_Balance(-101));
    EXPECT_EQ(L"Balance must be from -100 to 100", errorText());
    EXPECT_EQ(invalidPropertyValue, player->put_EqualizerGain(0, 0));
    EXPECT_EQ(L"Band must be from 1 to 10", errorText());
    EXPECT_EQ(invalidPropertyValue, player->put_EqualizerGain(1, 13));
    EXPECT_EQ(L"EqualizerGain must be from -12 to 12", errorText());
    EXPECT_EQ(invalidPropertyValue, player->put_PositionInterval(-1));
    EXPECT_EQ(L"PositionInterval must be from 0 to 3600000", errorText());
    EXPECT_EQ(invalidPropertyValue, player->put_PositionMs(1));
    EXPECT_EQ(L"PositionMs must be from 0 to 0", errorText());
    EXPECT_EQ(invalidPropertyValue, player->get_Level(3, &number));
    EXPECT_EQ(L"Channel must be from 1 to 2", errorText());
    EXPECT_EQ(E_POINTER, player->get_Volume(nullptr));
    EXPECT_EQ(E_POINTER, player->get_State(nullptr));
    long value = 0;
    EXPECT_EQ(S_OK, player->get_Volume(&value));
    EXPECT_EQ(100, value);
}

TEST_F(PlayerSettings, an_opened_file_has_a_format_and_a_length_in_milliseconds) {
    TempFolder folder;
    ASSERT_EQ(S_OK, player->Init(&number));
    // 100 frames more than half a second, under a header that says twice the bytes per second.
    WAVEFORMATEX format = pcm(44100, 2, 16);
    format.nAvgBytesPerSec *= 2;
    const std::wstring file = folder.write(L"a.wav", plainWav(format, Bytes((22050 + 441) * 4)));
    ASSERT_EQ(0, open(file.c_str()));
    long duration = 0;
    EXPECT_EQ(S_OK, player->get_DurationMs(&duration));
    EXPECT_EQ(510, duration);
    Bstr name;
    EXPECT_EQ(S_OK, player->get_FormatName(name.put()));
    EXPECT_EQ(L"WAV, 16 bits", textOf(name.get()));
    EXPECT_EQ(S_OK, player->DeInit(&number));
}

TEST_F(PlayerSettings, the_events_of_a_playback_come_with_their_arguments) {
    if (::waveOutGetNumDevs() == 0)
        GTEST_SKIP() << "there is no wave output device";
    constexpr DISPID ended = 3, stateChanged = 4, positionChanged = 5;
    TempFolder folder;
    EventSink sink(IID_NULL);
    ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
    ASSERT_EQ(S_OK, player->Init(&number));
    ASSERT_EQ(S_OK, player->put_PositionInterval(20));
    const Bstr file(folder.write(L"a.wav", plainWav(pcm(44100, 2, 16), Bytes(44100 * 2))).c_str());
    const auto references = [&] {
        player->AddRef();
        return player->Release();
    };
    const ULONG before = references();
    ASSERT_EQ(S_OK, player->PlayStart(file.get(), -1, 0, &number));
    ASSERT_EQ(0, number);
    const auto countOf = [&](DISPID id) {
        return std::count_if(sink.received.begin(), sink.received.end(),
                             [id](const EventSink::Event& event) { return event.id == id; });
    };
    EXPECT_TRUE(pumpUntil([&] { return countOf(ended) > 0; }));
    EXPECT_EQ(1, countOf(ended));
    EXPECT_EQ(2, countOf(stateChanged));
    EXPECT_GT(countOf(positionChanged), 3);
    EXPECT_EQ(before, references()) << "the timed events have kept nothing";
    const EventSink::Event& last = sink.received.back();
    ASSERT_EQ(ended, last.id);
    ASSERT_EQ(1u, last.arguments.size());
    EXPECT_EQ(PLAYEND_FINISHED, V_I4(&last.arguments[0]));
    EXPECT_EQ(S_OK, player->DeInit(&number));
}

} // namespace
