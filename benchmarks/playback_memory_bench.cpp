// Memory of this process while a file of two hours plays, compared with one of two seconds.

#include "Figure.h"
#include "support/BarePlayer.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <psapi.h>

namespace corvina::bench {
namespace {

constexpr int turns = 5;
constexpr DWORD bytesPerSecond = 44100 * 4;
constexpr auto playTime = std::chrono::milliseconds(1000);
constexpr auto deadline = std::chrono::seconds(10);

// Silence, in a file that takes no space on the disk.
std::wstring makeFile(test::TempFolder& folder, const wchar_t* name, DWORD seconds) {
    const DWORD bytes = seconds * bytesPerSecond;
    const std::wstring path = folder.write(name, test::WavBytes()
                                                     .format(test::pcm(44100, 2, 16))
                                                     .chunk("data", {}, bytes)
                                                     .bytes("WAVE", bytes + 36));
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ::SetFilePointer(file, static_cast<LONG>(bytes), nullptr, FILE_END);
    const bool good = ::SetEndOfFile(file) != 0;
    ::CloseHandle(file);
    if (!good)
        giveUp("a file of the benchmark cannot be made");
    return path;
}

double megabytesNow() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters))
        giveUp("no memory counters");
    return static_cast<double>(counters.WorkingSetSize) / 1e6;
}

// The most that was in use while the file played.
double megabytesWhilePlaying(test::BarePlayer& host, const std::wstring& path) {
    if (host.player.PlayStart(path, -1, 0) != 0)
        giveUp("the player does not start");
    double most = 0;
    (void)test::pumpUntil(
        [&most] {
            most = std::max(most, megabytesNow());
            return false;
        },
        playTime);
    host.player.PlayStop();
    if (!test::pumpUntil([&host] { return host.player.DonePlay(); }, deadline))
        giveUp("the player does not stop");
    return most;
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina;
    using namespace corvina::bench;
    test::TempFolder folder;
    const std::wstring twoHours = makeFile(folder, L"hours.wav", 2 * 60 * 60);
    const std::wstring twoSeconds = makeFile(folder, L"seconds.wav", 2);
    test::BarePlayer host;
    host.init();
    const Pair megabytes = interleaved(
        turns, [&] { return megabytesWhilePlaying(host, twoHours); },
        [&] { return megabytesWhilePlaying(host, twoSeconds); });
    report("Memory while a file of two hours plays, beside one of two seconds", "MB",
           megabytes.value, megabytes.reference, megabytes.ratio, Judged::excessAtMost, 2);
}
