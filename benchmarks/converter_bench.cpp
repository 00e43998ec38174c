// How fast the WAV source and the converter deliver files, compared with the bare system functions
// that the work needs in any case.

#include "Figure.h"
#include "platform/AcmApi.h"
#include "sources/DecWAV.h"
#include "stream/cPCM.h"
#include "support/Media.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

namespace corvina::bench {
namespace {

using namespace test;

constexpr int turns = 15;
constexpr std::int32_t blockBytes = 8000;

struct Block {
    char data[blockBytes];
};

Block block;

class RawFile {
public:
    RawFile(const std::wstring& path, LONG offset)
        : handle_(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                0, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE)
            giveUp("a file of the benchmark cannot be opened");
        ::SetFilePointer(handle_, offset, nullptr, FILE_BEGIN);
    }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;
    ~RawFile() { ::CloseHandle(handle_); }

    DWORD read(void* to, DWORD bytes) {
        DWORD got = 0;
        ::ReadFile(handle_, to, bytes, &got, nullptr);
        return got;
    }

private:
    HANDLE handle_;
};

// Seconds for reading the file in blocks, without opening it.
double throughConverter(const std::wstring& path) {
    DecWAV source;
    cPCM converter;
    if (source.OpenSource(path) != 0 || !converter.InitConversion(source, nullptr, false))
        giveUp("the converter refuses a file of the benchmark");
    return secondsFor([&converter] {
        std::int32_t got = blockBytes;
        while (got == blockBytes)
            converter.GetSamples(block.data, blockBytes, got);
    });
}

void pcmBesideReadFile(TempFolder& folder) {
    constexpr std::size_t bytes = 8000 * 8000;
    const std::wstring path = folder.write(L"pcm.wav", plainWav(pcm(44100, 2, 16), noise(bytes)));
    const Pair seconds = interleaved(
        turns, [&path] { return throughConverter(path); },
        [&path] {
            RawFile file(path, 44);
            return secondsFor([&file] {
                while (file.read(block.data, blockBytes) == blockBytes)
                    continue;
            });
        });
    constexpr double megabytes = bytes / 1e6;
    report("PCM through the converter, beside a bare ReadFile loop", "MB/s",
           megabytes / seconds.value, megabytes / seconds.reference, 1 / seconds.ratio,
           Judged::ratioAtLeast, 0.95);
}

// Samples below full scale, without a pattern.
Bytes samplesOf(WORD tag, WORD bits, std::size_t bytes) {
    Bytes data = noise(bytes);
    const std::size_t width = bits / 8;
    if (tag == WAVE_FORMAT_IEEE_FLOAT)
        for (std::size_t last = width - 1; last < bytes; last += width)
            data[last] =
                static_cast<std::uint8_t>((data[last] & 0x80) | (width == 4 ? 0x3E : 0x3F));
    return data;
}

// The record of stereo sound in the extensible form, which the audio compression manager refuses.
Bytes extensibleWav(WORD tag, WORD bits, const Bytes& data) {
    WAVEFORMATEXTENSIBLE record{};
    record.Format = pcm(44100, 2, bits);
    record.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    record.Format.cbSize = sizeof record - sizeof record.Format;
    record.Samples.wValidBitsPerSample = bits;
    record.SubFormat = {tag, 0, 0x10, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
    const auto* const first = reinterpret_cast<const std::uint8_t*>(&record);
    return WavBytes()
        .format(record.Format, sizeof record.Format,
                Bytes(first + sizeof record.Format, first + sizeof record))
        .chunk("data", data)
        .bytes();
}

// Such samples are converted by our own code, which counts, rounds and adds noise for each of them.
void linearBesideReadFile(TempFolder& folder, WORD tag, WORD bits, const std::string& title) {
    constexpr std::size_t bytes = 8000 * 6000;
    const Bytes wav = extensibleWav(tag, bits, samplesOf(tag, bits, bytes));
    const auto offset = static_cast<LONG>(wav.size() - bytes);
    const std::wstring path = folder.write(L"linear.wav", wav);
    const Pair seconds = interleaved(
        turns, [&path] { return throughConverter(path); },
        [&path, offset] {
            RawFile file(path, offset);
            return secondsFor([&file] {
                while (file.read(block.data, blockBytes) == blockBytes)
                    continue;
            });
        });
    constexpr double megabytes = bytes / 1e6;
    report(title + " through the converter, beside a bare ReadFile loop", "MB/s",
           megabytes / seconds.value, megabytes / seconds.reference, 1 / seconds.ratio,
           Judged::ratioAtLeast, 0.5);
}

// A file made by another program, with its data repeated: blocks of ADPCM do not depend on each
// other.
Bytes longAdpcm(const std::wstring& path, int times) {
    DecWAV source;
    if (source.OpenSource(path) != 0)
        giveUp("the ADPCM file was not made");
    const WAVEFORMATEX& format = *source.WFXPointer();
    Bytes data(1'000'000);
    std::int32_t got = 0;
    source.Read(data.data(), static_cast<std::int32_t>(data.size()), got);
    data.resize(static_cast<std::size_t>(got) / format.nBlockAlign * format.nBlockAlign);
    Bytes all;
    for (int i = 0; i < times; ++i)
        all.insert(all.end(), data.begin(), data.end());
    const auto* const extra = reinterpret_cast<const std::uint8_t*>(&format) + sizeof format;
    return WavBytes()
        .format(format, sizeof format, Bytes(extra, extra + format.cbSize))
        .chunk("data", all)
        .bytes();
}

// Reads and converts half a second at a time; the sound goes nowhere.
double bareAcmLoop(const std::wstring& path) {
    DecWAV source;
    if (source.OpenSource(path) != 0)
        giveUp("the ADPCM file of the benchmark cannot be opened");
    auto* const from = const_cast<WAVEFORMATEX*>(source.WFXPointer());
    // 8 bits if the codec can make them, as the converter does for 4-bit sources.
    WAVEFORMATEX to = pcm(from->nSamplesPerSec, from->nChannels, 8);
    HACMSTREAM stream = nullptr;
    if (::acmStreamOpen(&stream, nullptr, from, &to, nullptr, 0, 0, 0) != 0) {
        to = pcm(from->nSamplesPerSec, from->nChannels, 16);
        if (::acmStreamOpen(&stream, nullptr, from, &to, nullptr, 0, 0, 0) != 0)
            giveUp("no codec for ADPCM");
    }
    const DWORD outputBytes = to.nAvgBytesPerSec / 2;
    DWORD sourceBytes = 0;
    ::acmStreamSize(stream, outputBytes, &sourceBytes, ACM_STREAMSIZEF_DESTINATION);
    sourceBytes = sourceBytes / from->nBlockAlign * from->nBlockAlign;
    Bytes input(sourceBytes), output(outputBytes);
    RawFile file(path, 20 + 18 + from->cbSize + 8);
    const double seconds = secondsFor([&] {
        while (const DWORD got = file.read(input.data(), sourceBytes)) {
            ACMSTREAMHEADER header{};
            header.cbStruct = sizeof header;
            header.pbSrc = input.data();
            header.cbSrcLength = got;
            header.pbDst = output.data();
            header.cbDstLength = outputBytes;
            ::acmStreamPrepareHeader(stream, &header, 0);
            ::acmStreamConvert(stream, &header, ACM_STREAMCONVERTF_BLOCKALIGN);
            ::acmStreamUnprepareHeader(stream, &header, 0);
        }
    });
    ::acmStreamClose(stream, 0);
    return seconds;
}

void adpcmBesideAcm(TempFolder& folder, const wchar_t* name, const char* title) {
    constexpr int times = 40;
    const std::wstring path = folder.write(name, longAdpcm(mediaFile(name), times));
    const Pair seconds = interleaved(
        turns, [&path] { return throughConverter(path); }, [&path] { return bareAcmLoop(path); });
    constexpr double soundSeconds = 3.0 * times;
    report(title, "x realtime", soundSeconds / seconds.value, soundSeconds / seconds.reference,
           1 / seconds.ratio, Judged::ratioAtLeast, 0.95);
}

} // namespace
} // namespace corvina::bench

int main() {
    corvina::test::TempFolder folder;
    corvina::bench::pcmBesideReadFile(folder);
    corvina::bench::linearBesideReadFile(folder, WAVE_FORMAT_PCM, 24, "24 bits");
    corvina::bench::linearBesideReadFile(folder, WAVE_FORMAT_PCM, 32, "32 bits");
    corvina::bench::linearBesideReadFile(folder, WAVE_FORMAT_IEEE_FLOAT, 32, "Floating point");
    corvina::bench::linearBesideReadFile(folder, WAVE_FORMAT_IEEE_FLOAT, 64,
                                         "Floating point of 64 bits");
    corvina::bench::adpcmBesideAcm(folder, L"ms-adpcm.wav",
                                   "MS-ADPCM through the converter, beside a bare ACM loop");
    corvina::bench::adpcmBesideAcm(folder, L"ima-adpcm.wav",
                                   "IMA-ADPCM through the converter, beside a bare ACM loop");
}
