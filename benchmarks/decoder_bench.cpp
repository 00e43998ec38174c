// How fast Ogg Vorbis, APE, AU, FLAC and Opus files are opened, sought and converted, compared with
// bare loops over the same libraries; and our build of the Vorbis library compared with the
// system's native one.

#include "Figure.h"
#include "sources/DecAPE.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/SndfileSource.h"
#include "stream/cPCM.h"
#include "support/BareDecoders.h"
#include "support/Media.h"

#include <cstdio>
#include <memory>

namespace corvina::bench {
namespace {

using namespace test;

constexpr int turns = 7;
constexpr double soundSeconds = 60;
constexpr std::int32_t blockBytes = 8000;
char block[blockBytes];
// The first request of the converter: half a second.
constexpr std::int32_t fillBytes = 88'200;
char fill[fillBytes];

void open(cSoundSTRM& source, const std::wstring& path) {
    if (source.OpenSource(path) != 0 || source.Info().SampleRate() == 0)
        giveUp("a file of the benchmark cannot be opened");
}

template <typename Source>
double throughConverter(const std::wstring& path) {
    Source source;
    cPCM converter;
    open(source, path);
    if (!converter.InitConversion(source, nullptr, false))
        giveUp("the converter refuses a file of the benchmark");
    return secondsFor([&converter] {
        std::int32_t got = blockBytes;
        while (got == blockBytes)
            converter.GetSamples(block, blockBytes, got);
    });
}

template <typename Bare>
double bareLoop(const std::wstring& path) {
    Bare bare(path);
    return secondsFor([&bare] {
        while (bare.read(block, blockBytes) > 0)
            continue;
    });
}

// Milliseconds of several openings; one is too short to be timed alone.
template <typename Body>
double millisecondsEach(int times, Body body) {
    return 1000 / static_cast<double>(times) * secondsFor([times, &body] {
               for (int time = 0; time < times; ++time)
                   body();
           });
}

template <typename Source, typename Bare>
void measure(const std::string& format, const wchar_t* file, double throughGoal) {
    const std::wstring path = mediaFile(file);
    const Pair through = interleaved(
        turns, [&path] { return throughConverter<Source>(path); },
        [&path] { return bareLoop<Bare>(path); });
    report(format + " through the converter, beside the library's bare loop", "x realtime",
           soundSeconds / through.value, soundSeconds / through.reference, 1 / through.ratio,
           Judged::ratioAtLeast, throughGoal);

    Source source;
    const Pair opening = interleaved(
        turns,
        [&] {
            return millisecondsEach(10, [&] {
                std::int32_t got = 0;
                open(source, path);
                source.Read(block, blockBytes, got);
            });
        },
        [&] {
            return millisecondsEach(10, [&] {
                Bare bare(path);
                bare.read(block, blockBytes);
            });
        });
    report(format + ", open to first block, beside the bare library", "ms", opening.value,
           opening.reference, opening.ratio, Judged::excessAtMost, 2);

    open(source, path);
    Bare bare(path);
    const Pair seeking = interleaved(
        turns,
        [&] {
            return millisecondsEach(9, [&, second = std::int32_t{0}]() mutable {
                std::int32_t got = 0, mode = SeekMode::seconds;
                source.SeekTo(second += 6, mode);
                source.Read(fill, fillBytes, got);
                if (got <= 0)
                    giveUp("no block after a seek");
            });
        },
        [&] {
            return millisecondsEach(9, [&, second = 0]() mutable {
                bare.seekSeconds(second += 6);
                if (bare.read(fill, fillBytes) <= 0)
                    giveUp("no block after a seek");
            });
        });
    report(format + ", seek and first block, beside the bare library", "ms", seeking.value,
           seeking.reference, seeking.ratio, Judged::ratioAtMost, 1.5);
}

// Runs the native program, which writes its seconds to a file when it is done: Wine gives no handle
// to wait for on a native program.
double nativeLoop() {
    constexpr const char* result = "native_ov_read.seconds";
    std::remove(result);
    char command[] = "native_ov_read ../../media/minute.ogg native_ov_read.seconds";
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!::CreateProcessA("native_ov_read", command, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &start, &process))
        giveUp("the native decoder cannot be started");
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    const ULONGLONG deadline = ::GetTickCount64() + 60'000;
    while (::GetTickCount64() < deadline) {
        double seconds = 0;
        if (FILE* const file = std::fopen(result, "r")) {
            const bool complete =
                std::fscanf(file, "%lf s", &seconds) == 1 && std::fgetc(file) == '\n';
            std::fclose(file);
            if (complete)
                return seconds;
        }
        ::Sleep(10);
    }
    giveUp("the native decoder did not finish");
}

void besideNative() {
    const Pair seconds = interleaved(
        turns, [] { return bareLoop<BareOgg>(mediaFile(L"minute.ogg")); }, &nativeLoop);
    report("ov_read of our vorbisfile.dll, beside the system's native decoder", "x realtime",
           soundSeconds / seconds.value, soundSeconds / seconds.reference, 1 / seconds.ratio,
           Judged::ratioAtLeast, 0.9);
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina;
    using namespace corvina::bench;
    measure<DecOGG, test::BareOgg>("Ogg Vorbis", L"minute.ogg", 0.95);
    measure<DecSND, test::BareSnd>("AU", L"minute.au", 0.95);
    measure<DecAPE, test::BareApe>("APE", L"minute.ape", 0.95);
    measure<SndfileSource, test::BareSnd>("FLAC", L"minute.flac", 0.95);
    measure<SndfileSource, test::BareSnd>("Opus", L"minute.opus", 0.95);
    besideNative();
}
