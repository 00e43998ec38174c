// How fast the Windows Media source and the converter deliver MP3 and WMA, compared with a bare
// loop over the same reader.

#include "Figure.h"
#include "sources/DecWMAMP3.h"
#include "stream/cPCM.h"
#include "support/BareReader.h"
#include "support/Media.h"

namespace corvina::bench {
namespace {

using namespace test;

constexpr int turns = 9;
constexpr double soundSeconds = 30;
constexpr std::int32_t blockBytes = 8000;
char block[blockBytes];

const auto forget = [](const BYTE*, DWORD) {};

void openSource(DecWMAMP3& source, const std::wstring& path) {
    if (source.OpenSource(path) != 0)
        giveUp("the source cannot open a file of the benchmark");
}

void firstBlock(DecWMAMP3& source) {
    std::int32_t got = 0;
    if (source.Read(block, blockBytes, got) != 0)
        giveUp("a file of the benchmark ends at once");
}

void firstBlock(BareReader& reader) {
    if (!reader.opened() || !reader.next(forget))
        giveUp("the bare reader cannot read a file of the benchmark");
}

void throughput(const std::wstring& path, const std::string& kind) {
    const Pair seconds = interleaved(
        turns,
        [&path] {
            DecWMAMP3 source;
            openSource(source, path);
            cPCM converter;
            if (!converter.InitConversion(source, nullptr, false))
                giveUp("the converter refuses a file of the benchmark");
            return secondsFor([&converter] {
                std::int32_t got = blockBytes;
                while (got == blockBytes)
                    converter.GetSamples(block, blockBytes, got);
            });
        },
        [&path] {
            BareReader reader(path);
            return secondsFor([&reader] {
                firstBlock(reader);
                while (reader.next(forget))
                    continue;
            });
        });
    report(kind + " through the converter, beside a bare reader loop", "x realtime",
           soundSeconds / seconds.value, soundSeconds / seconds.reference, 1 / seconds.ratio,
           Judged::ratioAtLeast, 0.95);
}

// The source object exists before the file is opened, as the player has it; so does the library.
void openToFirstBlock(const std::wstring& path, const std::string& kind) {
    DecWMAMP3 source;
    const Pair seconds = interleaved(
        turns,
        [&] {
            source.CloseSource();
            return secondsFor([&] {
                openSource(source, path);
                firstBlock(source);
            });
        },
        [&path] {
            return secondsFor([&path] {
                BareReader reader(path);
                firstBlock(reader);
            });
        });
    report(kind + ", open to first block, beside the bare reader", "ms", seconds.value * 1000,
           seconds.reference * 1000, seconds.ratio, Judged::excessAtMost, 2);
}

void seekAndFirstBlock(const std::wstring& path, const std::string& kind) {
    DecWMAMP3 source;
    openSource(source, path);
    BareReader reader(path);
    firstBlock(reader);
    static constexpr std::int32_t places[] = {5, 20, 10, 25, 1};
    const Pair seconds = interleaved(
        turns,
        [&source] {
            return secondsFor([&source] {
                for (const std::int32_t second : places) {
                    std::int32_t mode = SeekMode::seconds;
                    source.SeekTo(second, mode);
                    firstBlock(source);
                }
            });
        },
        [&reader] {
            return secondsFor([&reader] {
                for (const std::int32_t second : places) {
                    reader.reader().SetRange(static_cast<QWORD>(second) * 10'000'000, 0);
                    // As many bytes as the source delivers in its first block.
                    for (DWORD bytes = 0; bytes < blockBytes;)
                        if (!reader.next([&bytes](const BYTE*, DWORD length) { bytes += length; }))
                            break;
                }
            });
        });
    report(kind + ", five seeks with their first blocks, beside the bare reader", "ms",
           seconds.value * 1000, seconds.reference * 1000, seconds.ratio, Judged::ratioAtMost, 1.5);
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina::bench;
    const std::pair<const wchar_t*, const char*> kinds[] = {{L"half-minute.mp3", "MP3"},
                                                            {L"half-minute.wma", "WMA"}};
    for (const auto& [file, kind] : kinds) {
        const std::wstring path = corvina::test::mediaFile(file);
        throughput(path, kind);
        openToFirstBlock(path, kind);
        seekAndFirstBlock(path, kind);
    }
}
