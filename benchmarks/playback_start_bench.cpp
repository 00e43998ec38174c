// The time from PlayStart to the first buffer at the device, compared with the minimal player. Most
// of the difference is the system's search for a codec, which loads one after the other; so the
// time without it is shown too.

#include "Figure.h"
#include "MinimalWavPlayer.h"
#include "support/BarePlayer.h"
#include "support/Media.h"

namespace corvina::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int turns = 15;
constexpr auto deadline = std::chrono::seconds(10);

Moment firstWrite;

std::vector<double> codecSearches;

double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

MMRESULT WINAPI timedStreamOpen(LPHACMSTREAM stream, HACMDRIVER driver, LPWAVEFORMATEX source,
                                LPWAVEFORMATEX output, LPWAVEFILTER filter, DWORD_PTR callback,
                                DWORD_PTR instance, DWORD flags) {
    const Moment start = Clock::now();
    const MMRESULT result =
        ::acmStreamOpen(stream, driver, source, output, filter, callback, instance, flags);
    codecSearches.push_back(milliseconds(Clock::now() - start));
    return result;
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

double bareStart(MinimalWavPlayer& minimal, const std::wstring& path) {
    const Moment start = Clock::now();
    minimal.start(path);
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
    corvina::AcmApi acm;
    acm.streamOpen = &timedStreamOpen;
    corvina::test::BarePlayer host({.wave = wave, .acm = acm});
    host.init();
    MinimalWavPlayer minimal;
    const std::wstring path = corvina::test::mediaFile(L"tune.wav");
    const Pair time = interleaved(
        turns, [&] { return playerStart(host, path); }, [&] { return bareStart(minimal, path); });
    report("PlayStart to the first waveOutWrite, beside the minimal player", "ms", time.value,
           time.reference, time.ratio, Judged::excessAtMost, 5);
    const double rest = time.value - median(codecSearches);
    report("The same without the system's search for a codec", "ms", rest, time.reference,
           rest / time.reference, Judged::excessAtMost, 5);
}
