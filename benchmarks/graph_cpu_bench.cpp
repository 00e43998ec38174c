// Processor time of a host that plays a file and draws it 30 times a second, compared with playing
// alone.

#include "LibraryControls.h"
#include "ProcessorTime.h"
#include "com/Bstr.h"
#include "support/Media.h"
#include "support/MessagePump.h"

#include "Corvina.h"

#include <chrono>
#include <ole2.h>
#include <string>
#include <vector>

namespace {

using namespace corvina;
using namespace std::chrono_literals;

constexpr int turns = 3;
constexpr auto playTime = 4s;
constexpr auto picture = 33ms;

// Milliseconds of processor time for a second of sound, start and stop not counted.
double playing(_cPlayer& player, _cAudioGraph* graph) {
    const Bstr file(test::mediaFile(L"half-minute.wav"));
    long result = 1;
    if (FAILED(player.PlayStart(file.get(), -1, 0, &result)) || result != 0)
        bench::giveUp("the player does not start");
    const double before = bench::processorSeconds();
    const auto start = std::chrono::steady_clock::now();
    for (auto next = start; next < start + playTime; next += picture) {
        const auto due = [&] { return std::chrono::steady_clock::now() >= next; };
        if (!test::pumpUntil(due, playTime))
            bench::giveUp("the clock stands still");
        if (!graph)
            continue;
        long address = 0;
        player.get_AudioDataOut(&address);
        graph->SetAudioData(address, &result);
        graph->Display();
    }
    const double used = bench::processorSeconds() - before;
    VARIANT_BOOL isPlaying = VARIANT_TRUE;
    player.PlayStop(&result);
    if (!test::pumpUntil([&] { return player.IsPlaying(&isPlaying) == S_OK && !isPlaying; }))
        bench::giveUp("the player does not stop");
    return used * 1000 / std::chrono::duration<double>(playTime).count();
}

struct Times {
    std::vector<double> alone, spectrum, waveform;
};

void measureTurn(Times& times, _cPlayer& player, _cAudioGraph& graph) {
    times.alone.push_back(playing(player, nullptr));
    graph.put_GraphStyle(FREQUENCY_STYLE);
    times.spectrum.push_back(playing(player, &graph));
    graph.put_GraphStyle(AMPLITUDE_STYLE);
    times.waveform.push_back(playing(player, &graph));
}

void reportExcess(const std::string& kind, const std::vector<double>& with,
                  const std::vector<double>& without) {
    const double value = bench::median(with);
    const double reference = bench::median(without);
    // 3 % of a core.
    bench::report("Processor time for a second of sound with its " + kind + ", beside without",
                  "ms", value, reference, value / reference, bench::Judged::excessAtMost, 30.0);
}

} // namespace

int main() {
    ::OleInitialize(nullptr);
    const auto player = bench::createControl<_cPlayer>(CLSID_cPlayer);
    const auto graph = bench::createControl<_cAudioGraph>(CLSID_cAudioGraph);
    const bench::Form form(graph.get(), {400, 200});
    long result = 0;
    player->Init(&result);
    Times times;
    for (int turn = 0; turn < turns; ++turn)
        measureTurn(times, *player.get(), *graph.get());
    reportExcess("spectrum", times.spectrum, times.alone);
    reportExcess("waveform", times.waveform, times.alone);
    player->DeInit(&result);
}
