// The time from PlayStart to the first buffer at the device, compared with the minimal player when
// it opens a codec as well: the search for one loads one after the other, and is the system's.
// Beside the minimal player without a codec the time is only shown.

#include "Figure.h"
#include "MinimalWavPlayer.h"
#include "support/BarePlayer.h"
#include "support/Media.h"

namespace corvina::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int turns = 20;
constexpr auto deadline = std::chrono::seconds(10);

Moment firstWrite;

double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

MMRESULT WINAPI notedWrite(HWAVEOUT device, LPWAVEHDR header, UINT size) {
    if (firstWrite == Moment{})
        firstWrite = Clock::now();
    return ::waveOutWrite(device, header, size);
}

double playerStart(test::BarePlayer& host, const std::wstring& path) {
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

double bareStart(MinimalWavPlayer& minimal, const std::wstring& path,
                 MinimalWavPlayer::Codec codec) {
    const Moment start = Clock::now();
    minimal.start(path, codec);
    const double result = milliseconds(minimal.firstWrite() - start);
    minimal.stop();
    return result;
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina::bench;
    corvina::WaveApi wave;
    wave.outWrite = &notedWrite;
    corvina::test::BarePlayer host({.wave = wave});
    host.init();
    MinimalWavPlayer minimal;
    const std::wstring path = corvina::test::mediaFile(L"tune.wav");
    const auto besideMinimal = [&](MinimalWavPlayer::Codec codec) {
        return shortest(
            turns, [&] { return playerStart(host, path); },
            [&] { return bareStart(minimal, path, codec); });
    };
    const Pair time = besideMinimal(MinimalWavPlayer::Codec::opened);
    report("PlayStart to the first waveOutWrite, beside the minimal player with a codec", "ms",
           time.value, time.reference, time.ratio, Judged::excessAtMost, 2);
    const Pair bare = besideMinimal(MinimalWavPlayer::Codec::none);
    reportWithoutGoal("The same beside the minimal player without a codec", "ms", bare.value,
                      bare.reference);
}
