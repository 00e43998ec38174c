// How fast the source of MP4 and the converter deliver AAC, compared with a bare loop over the
// system's source reader.

#include "Figure.h"
#include "sources/MediaFoundationLibrary.h"
#include "sources/MediaFoundationSource.h"
#include "stream/cPCM.h"
#include "support/Media.h"

namespace corvina::bench {
namespace {

constexpr int turns = 9;
constexpr double soundSeconds = 60;
constexpr std::int32_t blockBytes = 8000;
char block[blockBytes];

constexpr auto sound = static_cast<DWORD>(MF_SOURCE_READER_FIRST_AUDIO_STREAM);

class BareSourceReader {
public:
    explicit BareSourceReader(const std::wstring& path) {
        if (!library_.start())
            giveUp("there is no Media Foundation");
        reader_ = library_.openFile(path);
        const ComPtr<IMFMediaType> type = library_.makeType();
        if (!reader_ || FAILED(type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio)) ||
            FAILED(type->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_PCM)) ||
            FAILED(reader_->SetCurrentMediaType(sound, nullptr, type.get())))
            giveUp("the bare reader cannot open a file of the benchmark");
    }

    // The bytes of the next sample; 0 at the end.
    DWORD next() {
        DWORD stream = 0, flags = 0, bytes = 0;
        LONGLONG time = 0;
        ComPtr<IMFSample> sample;
        ComPtr<IMFMediaBuffer> buffer;
        BYTE* data = nullptr;
        if (FAILED(reader_->ReadSample(sound, 0, &stream, &flags, &time, sample.put())) ||
            !sample || FAILED(sample->ConvertToContiguousBuffer(buffer.put())) ||
            FAILED(buffer->Lock(&data, nullptr, &bytes)))
            return 0;
        buffer->Unlock();
        return bytes;
    }

private:
    MediaFoundationLibrary library_{systemLibraryApi};
    ComPtr<IMFSourceReader> reader_;
};

void open(MediaFoundationSource& source, const std::wstring& path) {
    if (source.OpenSource(path) != 0)
        giveUp("the source cannot open a file of the benchmark");
}

void throughput(const std::wstring& path) {
    const Pair seconds = interleaved(
        turns,
        [&path] {
            MediaFoundationSource source;
            open(source, path);
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
            BareSourceReader reader(path);
            return secondsFor([&reader] {
                while (reader.next() > 0)
                    continue;
            });
        });
    report("M4A through the converter, beside a bare source reader", "x realtime",
           soundSeconds / seconds.value, soundSeconds / seconds.reference, 1 / seconds.ratio,
           Judged::ratioAtLeast, 0.9);
}

// The library is started before, as after the first file of a host.
void openToFirstBlock(const std::wstring& path) {
    MediaFoundationSource source;
    const Pair seconds = interleaved(
        turns,
        [&] {
            source.CloseSource();
            return secondsFor([&] {
                std::int32_t got = 0;
                open(source, path);
                if (source.Read(block, blockBytes, got) != 0)
                    giveUp("a file of the benchmark ends at once");
            });
        },
        [&path] {
            return secondsFor([&path] {
                BareSourceReader reader(path);
                if (reader.next() == 0)
                    giveUp("a file of the benchmark ends at once");
            });
        });
    report("M4A, open to first block, beside a bare source reader", "ms", seconds.value * 1000,
           seconds.reference * 1000, seconds.ratio, Judged::excessAtMost, 2);
}

} // namespace
} // namespace corvina::bench

int main() {
    const std::wstring path = corvina::test::mediaFile(L"minute.m4a");
    (void)::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    corvina::bench::throughput(path);
    corvina::bench::openToFirstBlock(path);
    ::CoUninitialize();
}
