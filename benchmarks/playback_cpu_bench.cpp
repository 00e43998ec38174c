// Processor time of this process while a file plays, compared with the minimal player.

#include "Figure.h"
#include "MinimalWavPlayer.h"
#include "ProcessorTime.h"
#include "support/BarePlayer.h"
#include "support/Media.h"

#include <numeric>

namespace corvina::bench {
namespace {

constexpr int turns = 5;
constexpr auto playTime = std::chrono::seconds(5);
constexpr auto deadline = std::chrono::seconds(10);

// Milliseconds of processor time for a second of sound, start and stop not counted.
template <typename Done>
double whilePlaying(Done done) {
    const double before = processorSeconds();
    if (test::pumpUntil(done, playTime))
        giveUp("the sound ended too early");
    return (processorSeconds() - before) * 1000 / std::chrono::duration<double>(playTime).count();
}

double player(test::BarePlayer& host, const std::wstring& path) {
    if (host.player.PlayStart(path, -1, 0) != 0)
        giveUp("the player does not start");
    const double result = whilePlaying([&host] { return host.player.DonePlay(); });
    host.player.PlayStop();
    if (!test::pumpUntil([&host] { return host.player.DonePlay(); }, deadline))
        giveUp("the player does not stop");
    return result;
}

double bare(MinimalWavPlayer& minimal, const std::wstring& path) {
    minimal.start(path);
    const double result = whilePlaying([&minimal] { return minimal.done(); });
    minimal.stop();
    return result;
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina::bench;
    corvina::test::BarePlayer host;
    host.init();
    MinimalWavPlayer minimal;
    const std::wstring path = corvina::test::mediaFile(L"half-minute.wav");
    const Turns all = inTurns(
        turns, [&] { return player(host, path); }, [&] { return bare(minimal, path); });
    // The system counts in hundredths of a second, of which a turn takes few: the sums are
    // compared.
    const double value = std::accumulate(all.values.begin(), all.values.end(), 0.0);
    const double reference = std::accumulate(all.references.begin(), all.references.end(), 0.0);
    report("Processor time for a second of sound, beside the minimal player", "ms", value / turns,
           reference / turns, value / reference, Judged::ratioAtMost, 1.05);
}
