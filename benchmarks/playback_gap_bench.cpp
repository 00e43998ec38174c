// Whether the sound goes on while the host handles no messages for 300 ms, a hundred times over.

#include "Figure.h"
#include "support/PlayerHost.h"
#include "support/Recording.h"
#include "support/TempFolder.h"

namespace corvina::bench {
namespace {

constexpr int blocks = 100;
constexpr DWORD blockedMs = 300;
constexpr auto between = std::chrono::milliseconds(100);
constexpr std::size_t frames = 44100 * 45;
constexpr auto deadline = std::chrono::seconds(60);

// Silent stretches in a recording of a signal that is never silent.
int gapsIn(const test::Frames& heard) {
    int gaps = 0;
    bool silent = false;
    for (const test::Frame& frame : heard) {
        const bool nothing = frame == test::Frame{};
        gaps += nothing && !silent;
        silent = nothing;
    }
    return gaps;
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina;
    using namespace corvina::bench;
    const test::Recording recording;
    if (!recording.available())
        giveUp("no recording of what is heard (run this on the stage)");
    test::TempFolder folder;
    const test::Frames signal = test::signal(frames);
    const std::wstring path = folder.write(L"signal.wav", test::stereoWav(signal));

    test::PlayerHost host;
    host.init();
    const std::size_t start = recording.now();
    if (host.player.PlayStart(path, -1, 0) != 0)
        giveUp("the player does not start");
    for (int block = 0; block < blocks; ++block) {
        (void)test::pumpUntil([] { return false; }, between);
        ::Sleep(blockedMs);
    }
    if (host.player.DonePlay())
        giveUp("the sound ended before the last block");
    if (!test::pumpUntil([&host] { return host.player.DonePlay(); }, deadline))
        giveUp("the player does not end");

    test::Frames heard = recording.listen(start, frames, std::chrono::seconds(5));
    heard = test::withoutSilenceBehind(std::move(heard));
    if (heard.size() < frames / 2)
        giveUp("the recording heard too little");
    int gaps = gapsIn(heard);
    if (gaps == 0 && test::firstDifference(signal, heard))
        gaps = 1; // something is missing without a silence in its place
    report("Gaps with the host's message loop blocked for 300 ms a hundred times", "gaps", gaps, 0,
           0, Judged::valueAtMost, 0);
}
