// From PlayStart to the first buffer at the device, beside a bare ring.

#include "BareRing.h"
#include "Figure.h"
#include "support/Media.h"
#include "support/PlayerHost.h"

namespace corvina::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int turns = 15;
constexpr auto deadline = std::chrono::seconds(10);

Moment firstWrite;

MMRESULT WINAPI notedWrite(HWAVEOUT device, LPWAVEHDR header, UINT size) {
    if (firstWrite == Moment{})
        firstWrite = Clock::now();
    return ::waveOutWrite(device, header, size);
}

double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

double playerStart(test::PlayerHost& host, const std::wstring& path) {
    firstWrite = {};
    const Moment start = Clock::now();
    if (host.player.PlayStart(path, -1, 0) != 0 ||
        !test::pumpUntil([] { return firstWrite != Moment{}; }, deadline))
        giveUp("the player does not start");
    host.player.PlayStop();
    if (!test::pumpUntil([&host] { return host.player.DonePlay(); }, deadline))
        giveUp("the player does not stop");
    return milliseconds(firstWrite - start);
}

double bareStart(BareRing& ring, const std::wstring& path) {
    const Moment start = Clock::now();
    ring.start(path);
    const double result = milliseconds(ring.firstWrite() - start);
    ring.stop();
    return result;
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina::bench;
    corvina::WaveApi wave;
    wave.outWrite = &notedWrite;
    corvina::test::PlayerHost host({.wave = wave});
    host.init();
    BareRing ring;
    const std::wstring path = corvina::test::mediaFile(L"tune.wav");
    const Pair time = interleaved(
        turns, [&] { return playerStart(host, path); }, [&] { return bareStart(ring, path); });
    report("PlayStart to the first waveOutWrite, beside a bare ring", "ms", time.value,
           time.reference, time.ratio, Judged::excessAtMost, 5);
}
