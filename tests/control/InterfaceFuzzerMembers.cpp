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

void InterfaceFuzzer::callGraph(_cAudioGraph& graph) {
    long result = 0;
    const LONG number = random_.number();
    static const std::vector<std::int16_t> samples(4096, 1234);
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
