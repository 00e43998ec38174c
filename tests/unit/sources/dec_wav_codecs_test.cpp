// Files made by other programs, through the source and the platform's own codecs.

#include "WavCodecsFixture.h"
#include "platform/AnsiText.h"
#include "support/FileBytes.h"
#include "support/SampleObserver.h"

#include <cmath>

namespace corvina {
namespace {

using namespace test;

TEST_F(WavCodecs, pcm_of_8_and_16_bits_comes_through_bit_for_bit) {
    for (const WORD bits : {WORD{8}, WORD{16}})
        for (const WORD channels : {WORD{1}, WORD{2}})
            for (const DWORD rate : {8000u, 11025u, 22050u, 44100u, 48000u, 96000u}) {
                const Bytes samples = noise(4 * 30'000);
                const std::wstring path =
                    folder_.write(std::to_wstring(rate * bits * channels),
                                  plainWav(pcm(rate, channels, bits), samples));
                ASSERT_TRUE(open(path));
                EXPECT_EQ(converter_.OutputBitsPerSample(), bits);
                EXPECT_EQ(pullAll(), samples) << rate << ' ' << channels << ' ' << bits;
                wav_.CloseSource();
            }
}

TEST_F(WavCodecs, pcm_is_the_same_in_blocks_of_any_size) {
    const Bytes samples = noise(400'000);
    const std::wstring path = folder_.write(L"a.wav", plainWav(pcm(44100, 2, 16), samples));
    for (const std::int32_t block : {4, 999, 8000, 88200, 300'000, 1'000'000}) {
        ASSERT_TRUE(open(path));
        EXPECT_EQ(pullAll(block), samples) << block;
        wav_.CloseSource();
    }
}

TEST_F(WavCodecs, eight_bits_forced_to_16_keep_their_length) {
    ASSERT_TRUE(open(folder_.write(L"a.wav", plainWav(pcm(8000, 1, 8), noise(20'000))), true));
    EXPECT_EQ(converter_.OutputBitsPerSample(), 16);
    EXPECT_EQ(pullAll().size(), 40'000u);
}

TEST_F(WavCodecs, twenty_four_bits_become_their_upper_16) {
    const Bytes samples = noise(3 * 20'000);
    Bytes upper;
    for (std::size_t i = 0; i < samples.size(); i += 3)
        upper.insert(upper.end(), {samples[i + 1], samples[i + 2]});
    ASSERT_TRUE(open(folder_.write(L"a.wav", plainWav(pcm(44100, 2, 24), samples))));
    EXPECT_EQ(converter_.OutputBitsPerSample(), 16);
    EXPECT_EQ(pullAll(), upper);
}

TEST_F(WavCodecs, files_of_other_programs_have_their_right_length) {
    EXPECT_DOUBLE_EQ(secondsOf(L"tune.wav", 16), 3.0);
    EXPECT_DOUBLE_EQ(secondsOf(L"mono.wav", 16), 3.0);
    EXPECT_DOUBLE_EQ(secondsOf(L"8khz.wav", 16), 3.0);
    EXPECT_DOUBLE_EQ(secondsOf(L"48khz.wav", 16), 3.0);
    EXPECT_DOUBLE_EQ(secondsOf(L"8bit.wav", 8), 3.0);
    EXPECT_DOUBLE_EQ(secondsOf(L"24bit.wav", 16), 3.0);
}

TEST_F(WavCodecs, compressed_files_have_their_right_length_within_a_block) {
    EXPECT_NEAR(secondsOf(L"ms-adpcm.wav", 8), 3.0, 0.05);
    EXPECT_NEAR(secondsOf(L"ima-adpcm.wav", 16), 3.0, 0.05);
    EXPECT_NEAR(secondsOf(L"gsm.wav", 16), 3.0, 0.05);
    EXPECT_DOUBLE_EQ(secondsOf(L"mulaw.wav", 16), 3.0);
    EXPECT_DOUBLE_EQ(secondsOf(L"alaw.wav", 16), 3.0);
}

TEST_F(WavCodecs, four_bit_adpcm_is_8_bit_unless_16_are_forced) {
    ASSERT_TRUE(open(mediaFile(L"ms-adpcm.wav")));
    EXPECT_EQ(converter_.OutputBitsPerSample(), 8);
    ASSERT_TRUE(open(mediaFile(L"ms-adpcm.wav"), true));
    EXPECT_EQ(converter_.OutputBitsPerSample(), 16);
}

TEST_F(WavCodecs, a_codec_without_8_bit_output_is_asked_for_16) {
    for (const wchar_t* const name : {L"ima-adpcm.wav", L"gsm.wav"}) {
        ASSERT_TRUE(open(mediaFile(name)));
        EXPECT_EQ(converter_.OutputBitsPerSample(), 16);
    }
}

// The first samples that a 16-bit decoder gives for a file, next to those of the original.
TEST_F(WavCodecs, adpcm_sounds_like_the_original) {
    ASSERT_TRUE(open(mediaFile(L"tune.wav")));
    const Bytes original = pullAll();
    for (const wchar_t* const name : {L"ms-adpcm.wav", L"ima-adpcm.wav"}) {
        ASSERT_TRUE(open(mediaFile(name), true));
        const Bytes decoded = pullAll();
        ASSERT_GE(decoded.size(), original.size() - 8192);
        double signal = 0, noisePower = 0;
        for (std::size_t i = 0; i + 1 < std::min(original.size(), decoded.size()); i += 2) {
            const auto sample = [i](const Bytes& from) {
                return double(static_cast<std::int16_t>(from[i] | from[i + 1] << 8));
            };
            signal += sample(original) * sample(original);
            noisePower += std::pow(sample(original) - sample(decoded), 2);
        }
        EXPECT_GT(10 * std::log10(signal / noisePower), 25.0);
    }
}

// All hold the same 16-bit samples, in other widths and forms.
TEST_F(WavCodecs, linear_samples_without_a_codec_come_through_bit_for_bit) {
    ASSERT_TRUE(open(mediaFile(L"tune.wav")));
    const Bytes samples = pullAll();
    for (const wchar_t* const name : {L"float.wav", L"double.wav", L"extensible.wav", L"32bit.wav",
                                      L"rf64.wav", L"piped.wav", L"sox-piped.wav"}) {
        wav_.CloseSource();
        ASSERT_TRUE(open(mediaFile(name))) << toAnsi(name).text;
        EXPECT_EQ(wav_.Duration(), 3000) << toAnsi(name).text;
        EXPECT_EQ(converter_.OutputBitsPerSample(), 16);
        EXPECT_TRUE(pullAll() == samples) << toAnsi(name).text;
    }
}

TEST_F(WavCodecs, a_seek_lands_on_a_sample_without_a_word_to_the_converter) {
    ASSERT_TRUE(open(mediaFile(L"tune.wav")));
    const Bytes samples = pullAll();
    for (const wchar_t* const name : {L"24bit.wav", L"extensible.wav", L"float.wav"}) {
        wav_.CloseSource();
        ASSERT_TRUE(open(mediaFile(name)));
        Bytes before(8000);
        std::int32_t got = 0;
        ASSERT_TRUE(converter_.GetSamples(before.data(), 8000, got));
        std::int32_t mode = SeekMode::seconds;
        ASSERT_EQ(wav_.SeekTo(2, mode), 0);
        const Bytes after = pullAll();
        ASSERT_GT(after.size(), 44100u * 4);
        EXPECT_TRUE(std::equal(after.end() - 44100 * 4, after.end(), samples.end() - 44100 * 4))
            << toAnsi(name).text;
    }
}

TEST_F(WavCodecs, six_channels_come_through_in_their_order_and_mix_to_two) {
    ASSERT_TRUE(open(mediaFile(L"tune.wav")));
    const Bytes two = pullAll();
    wav_.CloseSource();
    ASSERT_TRUE(open(mediaFile(L"six.wav")));
    ASSERT_EQ(converter_.OutputChannels(), 6);
    const Bytes six = pullAll();
    ASSERT_EQ(six.size(), two.size() * 3);
    for (std::size_t frame = 0; frame < two.size() / 4; ++frame)
        ASSERT_TRUE(std::equal(&two[frame * 4], &two[frame * 4] + 4, &six[frame * 12])) << frame;
    wav_.CloseSource();
    ASSERT_TRUE(open(mediaFile(L"six.wav")));
    ASSERT_TRUE(converter_.mixToStereo());
    EXPECT_EQ(pullAll().size(), two.size());
}

TEST_F(WavCodecs, mp3_in_wav_plays_to_its_end) {
    EXPECT_NEAR(secondsOf(L"mp3-in.wav", 16), 3.0, 0.08);
}

TEST_F(WavCodecs, the_observer_sees_all_16_bit_samples_in_order) {
    SampleObserver observer;
    ASSERT_EQ(wav_.OpenSource(mediaFile(L"tune.wav")), 0);
    ASSERT_TRUE(converter_.InitConversion(wav_, &observer, false));
    const Bytes heard = pullAll();
    Bytes seen;
    for (const auto& block : observer.blocks)
        seen.insert(seen.end(), block.content.begin(), block.content.end());
    EXPECT_EQ(seen, heard);
}

TEST_F(WavCodecs, after_a_seek_and_a_reset_the_sound_of_the_new_place_comes) {
    const Bytes samples = noise(44100 * 4 * 3);
    ASSERT_TRUE(open(folder_.write(L"a.wav", plainWav(pcm(44100, 2, 16), samples))));
    Bytes buffer(88200);
    std::int32_t got = 0;
    ASSERT_TRUE(converter_.GetSamples(buffer.data(), 88200, got));
    std::int32_t seconds = SeekMode::seconds;
    ASSERT_EQ(wav_.SeekTo(2, seconds), 0);
    converter_.ResetACM();
    ASSERT_TRUE(converter_.GetSamples(buffer.data(), 88200, got));
    EXPECT_EQ(buffer, Bytes(samples.begin() + 352'800, samples.begin() + 441'000));
}

// The largest difference of 16-bit samples.
int largestDifference(const Bytes& one, const Bytes& other) {
    EXPECT_EQ(one.size(), other.size());
    int largest = 0;
    for (std::size_t at = 0; at + 1 < std::min(one.size(), other.size()); at += 2) {
        std::int16_t x = 0;
        std::int16_t y = 0;
        std::memcpy(&x, &one[at], sizeof x);
        std::memcpy(&y, &other[at], sizeof y);
        largest = std::max(largest, std::abs(x - y));
    }
    return largest;
}

// Without a reset, as the player seeks in mid-play: what is converted already comes first.
TEST_F(WavCodecs, a_seek_in_compressed_sound_lands_on_the_very_frame) {
    const struct {
        const wchar_t* name;
        int most; // a codec may never be quite as it was
    } files[] = {{L"ms-adpcm.wav", 0}, {L"ima-adpcm.wav", 0}, {L"gsm.wav", 64}, {L"mp3-in.wav", 4}};
    for (const auto& file : files) {
        SCOPED_TRACE(toAnsi(file.name).text);
        ASSERT_TRUE(open(mediaFile(file.name), true));
        const Bytes whole = pullAll();
        const std::int32_t second = converter_.OutputSamplerate() * converter_.OutputChannels() * 2;
        for (const std::int32_t seconds : {2, 0, 1}) {
            ASSERT_TRUE(open(mediaFile(file.name), true));
            Bytes before(static_cast<std::size_t>(second));
            std::int32_t got = 0;
            ASSERT_TRUE(converter_.GetSamples(before.data(), second, got));
            std::int32_t mode = SeekMode::seconds;
            ASSERT_EQ(wav_.SeekTo(seconds, mode), 0);
            const Bytes heard = pullAll();
            const Bytes rest(whole.begin() + seconds * second, whole.end());
            ASSERT_GE(heard.size(), rest.size());
            EXPECT_LE(heard.size(), rest.size() + static_cast<std::size_t>(second / 2));
            EXPECT_LE(
                largestDifference(
                    Bytes(heard.end() - static_cast<std::ptrdiff_t>(rest.size()), heard.end()),
                    rest),
                file.most)
                << seconds;
        }
    }
}

} // namespace
} // namespace corvina
