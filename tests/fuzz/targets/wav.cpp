// RIFF files: the walk over their chunks and the source over them.

#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFiles.h"
#include "runtime/RuntimeError.h"
#include "sources/DecWAV.h"
#include "support/WavBytes.h"

namespace corvina::fuzz {
namespace {

template <typename Use>
void attempt(Use&& use) {
    try {
        use();
    } catch (const RuntimeError&) { // a division by zero, an overflow: promised
    }
}

void useEverything(DecWAV& source) {
    cSoundInf& info = source.Info();
    attempt([&] { (void)info.Duration(); });
    attempt([&] { (void)info.Position(); });
    attempt([&] { (void)info.Bitrate(); });
    attempt([&] { (void)source.EndOfStream(); });
    for (const std::int32_t start : {0, 1, 50, 100, 2147483647})
        for (std::int32_t mode : {0, 1}) {
            attempt([&] { (void)source.SeekTo(start, mode); });
            Bytes buffer(100);
            std::int32_t got = 0;
            attempt([&] { (void)source.Read(buffer.data(), 100, got); });
            require(got <= 100, "a read returns no more than was asked for");
        }
}

void useWav(std::span<const std::uint8_t> input) {
    const MemoryFiles disk(input);
    DecWAV source(MemoryFiles::files(), MemoryFiles::mmio());
    if (source.OpenSource(L"C:\\a.wav") != 0)
        return;
    const WAVEFORMATEX* const record = source.WFXPointer();
    require(record != nullptr, "an open source has a format");
    // Codecs read all the extra bytes.
    const Bytes copy(reinterpret_cast<const std::uint8_t*>(record),
                     reinterpret_cast<const std::uint8_t*>(record) + sizeof *record +
                         record->cbSize);
    require(copy.size() >= sizeof *record, "the record is whole");
    useEverything(source);
    attempt([&] { (void)source.OpenSource(L"C:\\b.wav"); });
    useEverything(source);
    source.CloseSource();
}

std::vector<Bytes> wavSeeds() {
    using namespace test;
    return {plainWav(pcm(44100, 2, 16), noise(200)),
            WavBytes()
                .chunk("LIST", noise(21))
                .format(pcm(8000, 1, 8), 18)
                .chunk("data", noise(50))
                .bytes(),
            WavBytes()
                .format(pcm(8000, 1, 4), 50)
                .chunk("fact", Bytes(4))
                .chunk("data", noise(64))
                .bytes()};
}

const FuzzTarget wav{"wav", &useWav, &wavSeeds, 512};

} // namespace
} // namespace corvina::fuzz
