// Files that are cut, or whose records say what no file can, through the source and the platform's
// own codecs: they end, whatever the codecs believe.

#include "WavCodecsFixture.h"
#include "runtime/RuntimeError.h"
#include "support/FaultyFiles.h"
#include "support/FileBytes.h"

#include <cstring>

namespace corvina {
namespace {

using namespace test;

TEST_F(WavCodecs, a_file_that_is_shorter_than_its_data_chunk_says_ends) {
    const Bytes samples = noise(100'000);
    const Bytes file =
        WavBytes().format(pcm(44100, 2, 16)).chunk("data", samples, 1'000'000).bytes();
    ASSERT_TRUE(open(folder_.write(L"a.wav", file)));
    EXPECT_EQ(pullAll(), samples);
}

TEST_F(WavCodecs, compressed_files_cut_anywhere_end) {
    for (const wchar_t* const name :
         {L"ms-adpcm.wav", L"ima-adpcm.wav", L"gsm.wav", L"mulaw.wav"}) {
        FileAccess access;
        FileRecord file = access.openForReading(mediaFile(name));
        Bytes whole(200'000);
        whole.resize(static_cast<std::size_t>(access.read(file, whole.data(), 200'000)));
        for (std::size_t length = whole.size(); length > 60; length = length * 2 / 3 - 1) {
            const std::wstring cut =
                folder_.write(name, Bytes(whole.begin(), whole.begin() + static_cast<int>(length)));
            if (open(cut)) {
                EXPECT_LT(pullAll().size(), 2'000'000u) << length;
            }
            wav_.CloseSource();
        }
    }
}

TEST_F(WavCodecs, formats_with_zero_fields_are_refused_or_end) {
    for (int field = 0; field < 5; ++field) {
        WAVEFORMATEX record = pcm(44100, 2, 16);
        if (field == 0)
            record.nChannels = 0;
        if (field == 1)
            record.nSamplesPerSec = 0;
        if (field == 2)
            record.nAvgBytesPerSec = 0;
        if (field == 3)
            record.nBlockAlign = 0;
        if (field == 4)
            record.wBitsPerSample = 0;
        if (open(folder_.write(L"a.wav", plainWav(record, noise(10'000))))) {
            EXPECT_LE(pullAll().size(), 100'000u) << field;
        }
        wav_.CloseSource();
    }
}

// The platform's codec counts these blocks and reads whole samples.
TEST_F(WavCodecs, pcm_blocks_that_are_too_small_for_their_samples_end) {
    for (const WORD channels : {WORD{1}, WORD{2}, WORD{65}, WORD{513}})
        for (const WORD bits : {WORD{8}, WORD{16}, WORD{24}})
            for (const WORD blockAlign : {WORD{1}, WORD{2}, WORD{3}}) {
                WAVEFORMATEX record = pcm(8000, channels, bits);
                record.nBlockAlign = blockAlign;
                record.nAvgBytesPerSec = record.nSamplesPerSec * blockAlign;
                if (open(folder_.write(L"a.wav", plainWav(record, noise(20'000))))) {
                    EXPECT_LE(pullAll().size(), 20'000u / blockAlign * channels * 2);
                }
                wav_.CloseSource();
            }
}

// The platform's codecs believe the count, not the size of the blocks.
TEST_F(WavCodecs, compressed_blocks_that_claim_any_number_of_samples_end) {
    constexpr std::size_t samplesPerBlock = 38;
    for (const wchar_t* const name : {L"clip-ms-adpcm.wav", L"clip-ima-adpcm.wav"}) {
        Bytes bytes = fileBytes(mediaFile(name));
        for (const int count : {0, 1, 2, 3, 1000, 32767, 32768, 65535}) {
            bytes[samplesPerBlock] = static_cast<std::uint8_t>(count);
            bytes[samplesPerBlock + 1] = static_cast<std::uint8_t>(count >> 8);
            if (open(folder_.write(name, bytes))) {
                EXPECT_LE(pullAll().size(), 2'000'000u) << count;
            }
            wav_.CloseSource();
        }
    }
}

TEST_F(WavCodecs, records_of_garbage_are_refused_or_end) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        WAVEFORMATEX record;
        std::memcpy(&record, noise(sizeof record, seed).data(), sizeof record);
        const WORD tags[] = {1, 2, 6, 7, 0x11, 0x31, 0x55, 0xFFFE};
        record.wFormatTag = tags[seed % 8];
        record.nChannels %= 9;
        if (seed % 3 == 0)
            record.nSamplesPerSec %= 200'000;
        try {
            if (open(folder_.write(L"a.wav", WavBytes()
                                                 .format(record, 18, noise(60, seed))
                                                 .chunk("data", noise(10'000))
                                                 .bytes())))
                (void)pullAll(50'000);
        } catch (const RuntimeError&) {
        }
        wav_.CloseSource();
    }
}

TEST_F(WavCodecs, any_failure_of_the_file_layer_in_mid_stream_ends_it) {
    fileFaults.disarm();
    const Bytes samples = noise(300'000);
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(44100, 2, 16), samples));
    forEachFault(fileFaults, [&] {
        DecWAV source(faultyFileApi, faultyMmioApi);
        cPCM converter;
        if (source.OpenSource(path) != 0 || !converter.InitConversion(source, nullptr, false))
            return;
        Bytes buffer(8000);
        std::int32_t got = 8000;
        for (int pulls = 0; got == 8000; ++pulls) {
            ASSERT_LT(pulls, 1000);
            ASSERT_TRUE(converter.GetSamples(buffer.data(), 8000, got));
        }
    });
    EXPECT_EQ(openFiles, 0);
}

} // namespace
} // namespace corvina
