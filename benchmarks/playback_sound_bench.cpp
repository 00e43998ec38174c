// What the settings of the sound cost while a file plays, and how soon a jump reaches the device.

#include "Figure.h"
#include "MinimalWavPlayer.h"
#include "player/TrackQueue.h"
#include "player/WaveRing.h"
#include "sources/DecWAV.h"
#include "support/BarePlayer.h"
#include "support/Media.h"

#include <memory>
#include <span>
#include <utility>

namespace corvina::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr PlayedFormat stereo{.sampleRate = 44100, .channels = 2, .bits = 16};
constexpr int manyTurns = 1001;

// Half a minute of stereo in 16 bits, again and again.
class File {
public:
    File() {
        const std::wstring path = test::mediaFile(L"half-minute.wav");
        auto source = std::make_shared<DecWAV>();
        if (source->OpenSource(path) != 0)
            giveUp("the file of the benchmark cannot be opened");
        auto track = std::make_shared<PlayedTrack>(path, std::move(source), systemAcmApi, nullptr);
        if (!track->begin())
            giveUp("the file of the benchmark cannot be converted");
        queue_.begin(std::move(track));
    }
    void fill(std::span<std::uint8_t> block) {
        if (queue_.fill(block, {.loops = true, .exactly = true, .next = {}}).ended)
            giveUp("the file of the benchmark ends");
    }

private:
    TrackQueue queue_;
};

// Milliseconds for each second of sound. Few blocks at a time: so short a moment is seldom
// interrupted, and then the median leaves it out.
template <typename Body>
double perSecond(int blocks, Body body) {
    const double sound = blocks * (WaveRing::bufferBytes / 4) / 44100.0;
    return secondsFor([&] {
               for (int block = 0; block < blocks; ++block)
                   body();
           }) *
           1000 / sound;
}

void measureChain() {
    File file;
    SoundSettings settings{.volume = 80, .balance = -20};
    settings.bandGains.fill(3.0F);
    WaveRing changed(stereo, settings);
    WaveRing neutral(stereo, {});
    WaveRing bare(stereo, {});
    const auto filled = [&file](WaveRing& ring) -> WaveBuffer& {
        WaveBuffer& buffer = ring.next();
        file.fill(buffer.bytes());
        return buffer;
    };
    const auto without = [&](int blocks) {
        return [&, blocks] { return perSecond(blocks, [&] { (void)filled(bare); }); };
    };
    const auto through = [&](WaveRing& ring, int blocks) {
        return [&, blocks] { return perSecond(blocks, [&] { ring.applySettings(filled(ring)); }); };
    };
    const Pair whole = interleaved(manyTurns, through(changed, 2), without(2));
    report("All ten bands, volume and balance, for a second of stereo sound", "ms", whole.value,
           whole.reference, whole.ratio, Judged::excessAtMost, 10);
    // The blocks pass it untouched, so reading the file is all there is to compare with.
    const Pair defaults = interleaved(manyTurns, through(neutral, 50), without(50));
    report("The chain with the initial settings, beside reading the file alone", "ms",
           defaults.value, defaults.reference, defaults.ratio, Judged::ratioAtMost, 1.05);
}

Moment firstWrite;

MMRESULT WINAPI notedWrite(HWAVEOUT device, LPWAVEHDR header, UINT size) {
    if (firstWrite == Moment{})
        firstWrite = Clock::now();
    return ::waveOutWrite(device, header, size);
}

double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

// From the jump to the first block of the new sound at the device.
void measureJump() {
    constexpr int turns = 9;
    constexpr auto playTime = std::chrono::milliseconds(60);
    constexpr LONG frameBytes = 4;
    const auto playOn = [] { (void)test::pumpUntil([] { return false; }, playTime); };
    const std::wstring path = test::mediaFile(L"half-minute.wav");
    WaveApi wave;
    wave.outWrite = &notedWrite;
    test::BarePlayer host({.wave = wave});
    host.init();
    MinimalWavPlayer minimal;
    std::int32_t target = 0;
    const auto next = [&target] { return target = (target + 7777) % 25000; };
    if (host.player.PlayStart(path, -1, 0) != 0)
        giveUp("the player does not start");
    minimal.start(path);
    const Pair time = interleaved(
        turns,
        [&] {
            playOn();
            firstWrite = {};
            const Moment start = Clock::now();
            host.player.setPositionMs(next());
            if (!test::pumpUntil([] { return firstWrite != Moment{}; }))
                giveUp("no block follows a jump");
            return milliseconds(firstWrite - start);
        },
        [&] {
            playOn();
            const Moment start = Clock::now();
            minimal.jump(next() / 1000 * 44100 * frameBytes);
            return milliseconds(minimal.firstWrite() - start);
        });
    report("A jump to the first new block, beside waveOutReset and a write", "ms", time.value,
           time.reference, time.ratio, Judged::excessAtMost, 10);
    host.player.PlayStop();
    if (!test::pumpUntil([&host] { return host.player.DonePlay(); }))
        giveUp("the player does not stop");
}

} // namespace
} // namespace corvina::bench

int main() {
    corvina::bench::measureChain();
    corvina::bench::measureJump();
}
