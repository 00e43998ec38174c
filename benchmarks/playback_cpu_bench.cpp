// Processor time of this process while a file plays, beside a bare ring.

#include "BareRing.h"
#include "Figure.h"
#include "support/Media.h"
#include "support/PlayerHost.h"

namespace corvina::bench {
namespace {

constexpr int turns = 7;
constexpr auto playTime = std::chrono::seconds(8);
constexpr auto deadline = std::chrono::seconds(10);

double processorSeconds() {
    FILETIME creation, exit, kernel, user;
    if (!::GetProcessTimes(::GetCurrentProcess(), &creation, &exit, &kernel, &user))
        giveUp("no processor times");
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) / 1e7;
}

// Milliseconds of processor time for a second of sound, start and stop not counted.
template <typename Done>
double whilePlaying(Done done) {
    const double before = processorSeconds();
    if (test::pumpUntil(done, playTime))
        giveUp("the sound ended too early");
    return (processorSeconds() - before) * 1000 / std::chrono::duration<double>(playTime).count();
}

double player(test::PlayerHost& host, const std::wstring& path) {
    if (host.player.PlayStart(path, -1, 0) != 0)
        giveUp("the player does not start");
    const double result = whilePlaying([&host] { return host.player.DonePlay(); });
    host.player.PlayStop();
    if (!test::pumpUntil([&host] { return host.player.DonePlay(); }, deadline))
        giveUp("the player does not stop");
    return result;
}

double bare(BareRing& ring, const std::wstring& path) {
    ring.start(path);
    const double result = whilePlaying([&ring] { return ring.done(); });
    ring.stop();
    return result;
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina::bench;
    corvina::test::PlayerHost host;
    host.init();
    BareRing ring;
    const std::wstring path = corvina::test::mediaFile(L"half-minute.wav");
    const Pair time = interleaved(
        turns, [&] { return player(host, path); }, [&] { return bare(ring, path); });
    report("Processor time for a second of sound, beside a bare ring", "ms", time.value,
           time.reference, time.value / time.reference, Judged::ratioAtMost, 1.15);
}
