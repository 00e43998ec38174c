// The graph control in a container: the time of a Display, what it leaves behind, and the time of
// checking and copying the samples.

#include "Figure.h"
#include "LibraryControls.h"
#include "platform/GuardedCopy.h"
#include "support/FreeGdiObjects.h"
#include "support/MessagePump.h"

#include "Corvina.h"

#include <array>
#include <cmath>
#include <ole2.h>
#include <psapi.h>
#include <string>
#include <vector>

namespace {

using namespace corvina;

// The number of objects that the process can still make; those not given back are missing from it.
std::size_t freeUserObjects() {
    std::vector<HMENU> menus;
    while (const HMENU menu = ::CreateMenu())
        menus.push_back(menu);
    for (const HMENU menu : menus)
        ::DestroyMenu(menu);
    return menus.size();
}

SIZE_T committedBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

// Seconds for one call: the fastest of many turns, so that other work of the machine does not
// count.
template <typename Body>
double fastestCall(int calls, Body body) {
    std::vector<double> times;
    for (int turn = 0; turn < 151; ++turn)
        times.push_back(bench::secondsFor([&] {
                            for (int call = 0; call < calls; ++call)
                                body();
                        }) /
                        calls);
    return *std::min_element(times.begin(), times.end());
}

void reportLimit(const char* name, const char* unit, double value, double goal) {
    bench::report(name, unit, value, goal, value / goal, bench::Judged::valueAtMost, goal);
}

double fastestDisplayMs(_cAudioGraph& graph, AudioGraphStyle style) {
    graph.put_GraphStyle(style);
    test::dispatchWaitingMessages();
    return 1e3 * fastestCall(4, [&] { graph.Display(); });
}

} // namespace

int main() {
    ::OleInitialize(nullptr);
    const auto graph = bench::createControl<_cAudioGraph>(CLSID_cAudioGraph);
    const bench::Form form(graph.get(), {400, 200});

    std::array<std::int16_t, 512> samples;
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(20000.0 * std::sin(0.13 * static_cast<double>(i)));
    long zero = 0;
    graph->SetAudioData(reinterpret_cast<LONG>(samples.data()), &zero);

    reportLimit("Display of 50 bands at 400 x 200", "ms",
                fastestDisplayMs(*graph.get(), FREQUENCY_STYLE), 0.5);
    reportLimit("Display of the waveform at 400 x 200", "ms",
                fastestDisplayMs(*graph.get(), AMPLITUDE_STYLE), 0.5);
    std::array<std::uint8_t, 1023> taken;
    reportLimit(
        "checking and copying samples", "us",
        1e6 * fastestCall(
                  1000, [&] { (void)copyIfReadable(taken.data(), samples.data(), taken.size()); }),
        1.0);

    const auto displayBothStyles = [&](int times) {
        for (int i = 0; i < times; ++i) {
            graph->put_GraphStyle(i % 2 ? AMPLITUDE_STYLE : FREQUENCY_STYLE);
            graph->Display();
            if (i % 100 == 0)
                test::dispatchWaitingMessages();
        }
    };
    displayBothStyles(1000);
    const auto gdi = static_cast<double>(test::freeGdiObjects());
    const auto user = static_cast<double>(freeUserObjects());
    const auto bytes = static_cast<double>(committedBytes());
    displayBothStyles(20'000);
    reportLimit("GDI objects left behind by 20,000 Displays", "objects",
                gdi - static_cast<double>(test::freeGdiObjects()), 1.0);
    reportLimit("USER objects left behind by 20,000 Displays", "objects",
                user - static_cast<double>(freeUserObjects()), 1.0);
    reportLimit("memory left behind by 20,000 Displays", "KiB",
                (static_cast<double>(committedBytes()) - bytes) / 1024, 64.0);
}
