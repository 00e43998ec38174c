// Whether the sound goes on while the host handles no messages for 300 ms, sixty times over. A gap
// that the minimal player has as well is the machine's.

#include "Figure.h"
#include "MinimalWavPlayer.h"
#include "support/BarePlayer.h"
#include "support/Comparison.h"
#include "support/Recording.h"
#include "support/TempFolder.h"

namespace corvina::bench {
namespace {

constexpr int blocks = 60;
constexpr DWORD blockedMs = 300;
constexpr auto between = std::chrono::milliseconds(100);
constexpr std::size_t frames = 44100 * 27;
constexpr auto deadline = std::chrono::seconds(60);

// Silent stretches in a recording of a signal that is never silent. Something missing without a
// silence in its place counts as one. After the signal comes the rest of the last block.
int gapsIn(const test::Frames& signal, const test::Frames& heard) {
    int gaps = 0;
    bool silent = false;
    for (const test::Frame& frame : heard) {
        const bool nothing = frame == test::Frame{};
        gaps += nothing && !silent;
        silent = nothing;
    }
    return gaps == 0 && test::compare(signal, heard).difference ? 1 : gaps;
}

// Gaps in the sound that start() begins, recorded to its end.
template <typename Start, typename Done>
int gapsWhileBlocked(const test::Recording& recording, const test::Frames& signal, Start start,
                     Done done) {
    const std::size_t position = recording.now();
    start();
    for (int block = 0; block < blocks; ++block) {
        (void)test::pumpUntil([] { return false; }, between);
        ::Sleep(blockedMs);
    }
    if (done())
        giveUp("the sound ended before the last block");
    if (!test::pumpUntil(done, deadline))
        giveUp("the sound does not end");
    test::Frames heard = recording.listen(position, frames, std::chrono::seconds(5));
    heard = test::withoutSilenceBehind(std::move(heard));
    if (heard.size() < frames / 2)
        giveUp("the recording heard too little");
    return gapsIn(signal, heard);
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina;
    using namespace corvina::bench;
    const test::Recording recording;
    if (!recording.available())
        giveUp("no recording of what is heard (run this in the test environment)");
    test::TempFolder folder;
    const test::Frames signal = test::signal(frames);
    const std::wstring path = folder.write(L"signal.wav", test::stereoWav(signal));

    test::BarePlayer host;
    host.init();
    const int gaps = gapsWhileBlocked(
        recording, signal,
        [&] {
            if (host.player.PlayStart(path, -1, 0) != 0)
                giveUp("the player does not start");
        },
        [&host] { return host.player.DonePlay(); });
    int bare = 0;
    if (gaps > 0) {
        MinimalWavPlayer minimal;
        bare = gapsWhileBlocked(
            recording, signal, [&] { minimal.start(path); }, [&minimal] { return minimal.done(); });
    }
    report("Gaps with the message loop blocked for 300 ms sixty times, beside the minimal player",
           "gaps", gaps, bare, bare == 0 ? 0 : static_cast<double>(gaps) / bare,
           Judged::excessAtMost, 0);
}
