// Random calls of the published members of both controls.

#include "InterfaceFuzzer.h"

#include <cstdint>
#include <vector>

namespace corvina::test {

void InterfaceFuzzer::callMembers() {
    if (const auto player = as<_cPlayer>())
        callPlayer(*player.get());
    if (const auto graph = as<_cAudioGraph>())
        callGraph(*graph.get());
}

void InterfaceFuzzer::callPlayer(_cPlayer& player) {
    long result = 0;
    Bstr text;
    const Bstr given(random_.text());
    AudioDeviceDetails details{};
    if (random_.oneIn(2)) {
        callNewerMember(player);
        return;
    }
    switch (random_.below(13)) {
    case 0:
        player.OpenAudioFile(given.get(), &result);
        break;
    case 1:
        player.PlayStart(given.get(), random_.number(), random_.number(), &result);
        break;
    case 2:
        player.PositionSet(random_.number(), &result);
        break;
    case 3:
        player.PositionGet(&result);
        break;
    case 4:
        player.GetID3Tags(random_.oneIn(4) ? nullptr : given.get(), &result);
        break;
    case 5:
        player.put_Tag_Title(random_.oneIn(4) ? nullptr : given.get());
        break;
    case 6:
        player.GetSecondsAsTimeString(random_.number(), text.put());
        break;
    case 7:
        player.ErrorTextOut(random_.number(), text.put());
        break;
    case 8:
        player.PlayStop(random_.oneIn(4) ? nullptr : &result);
        break;
    case 9:
        player.GetDetailsDevice(random_.number(), random_.number(), &details, &result);
        ::SysFreeString(details.DeviceName);
        ::SysFreeString(details.DeviceDriver);
        break;
    case 10:
        as<ISubclass>()->WindowProc(random_.number(), static_cast<long>(random_.below(0x500)),
                                    random_.number(), random_.number(), &result);
        break;
    case 11:
        as<cCallback>()->Samples(nullptr, random_.number(), 2);
        break;
    default:
        player.PlayPause(&result);
        break;
    }
}

void InterfaceFuzzer::callNewerMember(_cPlayer& player) {
    long result = 0;
    float gain = 0;
    Bstr text;
    ComPtr<IPictureDisp> picture;
    PlayState state{};
    VARIANT_BOOL flag{};
    const Bstr given(random_.text());
    const LONG number = random_.number();
    const auto truth = static_cast<VARIANT_BOOL>(number);
    switch (random_.below(22)) {
    case 0:
        player.put_Volume(number);
        break;
    case 1:
        player.put_Mute(truth);
        break;
    case 2:
        player.put_Balance(number);
        break;
    case 3:
        player.put_EqualizerGain(number, static_cast<float>(random_.number()));
        break;
    case 4:
        player.get_EqualizerGain(number, random_.oneIn(4) ? nullptr : &gain);
        break;
    case 5:
        player.put_Looping(truth);
        break;
    case 6:
        player.put_NextFile(random_.oneIn(4) ? nullptr : given.get());
        break;
    case 7:
        player.get_NextFile(random_.oneIn(4) ? nullptr : text.put());
        break;
    case 8:
        player.put_PositionMs(number);
        break;
    case 9:
        player.get_PositionMs(random_.oneIn(4) ? nullptr : &result);
        break;
    case 10:
        player.get_DurationMs(random_.oneIn(4) ? nullptr : &result);
        break;
    case 11:
        player.get_State(random_.oneIn(4) ? nullptr : &state);
        break;
    case 12:
        player.put_PositionInterval(number);
        break;
    case 13:
        player.put_Device(random_.oneIn(4) ? nullptr : given.get());
        break;
    case 14:
        player.put_Recover(truth);
        break;
    case 15:
        player.put_CleanEnd(truth);
        player.get_CleanEnd(random_.oneIn(4) ? nullptr : &flag);
        break;
    case 16:
        player.get_Level(number, random_.oneIn(4) ? nullptr : &result);
        break;
    case 17:
        player.get_FormatName(random_.oneIn(4) ? nullptr : text.put());
        break;
    case 18:
        player.get_TagText(random_.oneIn(4) ? nullptr : given.get(),
                           random_.oneIn(4) ? nullptr : text.put());
        break;
    case 19:
        player.get_TagCount(random_.oneIn(4) ? nullptr : &result);
        break;
    case 20:
        player.get_TagName(number, random_.oneIn(4) ? nullptr : text.put());
        break;
    default:
        player.get_Picture(random_.oneIn(4) ? nullptr : picture.put());
        break;
    }
}

void InterfaceFuzzer::callNewerMember(_cAudioGraph& graph) {
    const LONG number = random_.number();
    ComPtr<IDispatch> player;
    switch (random_.below(8)) {
    case 0:
        graph.put_FramesPerSecond(number);
        break;
    case 1:
        graph.put_LevelScale(static_cast<AudioGraphLevelScale>(random_.below(4)));
        break;
    case 2:
        graph.put_FrequencyAxis(static_cast<AudioGraphFrequencyAxis>(random_.below(4)));
        break;
    case 3:
        graph.put_PeakHold(static_cast<VARIANT_BOOL>(number));
        break;
    case 4:
        graph.put_ChannelWaveforms(static_cast<VARIANT_BOOL>(number));
        break;
    case 5:
        // No player at all, or an object that is none.
        graph.put_Player(random_.oneIn(2) ? nullptr : static_cast<IDispatch*>(site_.get()));
        break;
    case 6:
        graph.putref_Player(random_.oneIn(2) ? nullptr : static_cast<IDispatch*>(site_.get()));
        break;
    default:
        graph.get_Player(random_.oneIn(4) ? nullptr : player.put());
        break;
    }
}

void InterfaceFuzzer::callGraph(_cAudioGraph& graph) {
    long result = 0;
    const LONG number = random_.number();
    static const std::vector<std::int16_t> samples(4096, 1234);
    if (random_.oneIn(3)) {
        callNewerMember(graph);
        return;
    }
    switch (random_.below(12)) {
    case 0:
        graph.SetAudioData(number, &result);
        break;
    case 1:
        graph.SetAudioData(static_cast<long>(reinterpret_cast<LONG_PTR>(samples.data())), &result);
        break;
    case 2:
    case 3:
        graph.Display();
        break;
    case 4:
        graph.ClearGraph(random_.oneIn(4) ? nullptr : &result);
        break;
    case 5:
        graph.put_Bands(number);
        break;
    case 6:
        graph.put_BandsSpace(number);
        break;
    case 7:
        graph.put_BandsWidth(number);
        break;
    case 8:
        graph.put_GraphStyle(static_cast<AudioGraphStyle>(random_.below(3)));
        break;
    case 9:
        graph.put_BackgroundColor(static_cast<OLE_COLOR>(number));
        break;
    case 10:
        graph.put_BorderStyle(static_cast<BorderStyle>(random_.below(3)));
        break;
    default:
        graph.get_hWnd(&result);
        own_ = reinterpret_cast<HWND>(result);
        break;
    }
}

} // namespace corvina::test
