// What a library decodes is what is heard through the control, sample by sample.

#include "SoundTest.h"
#include "support/BareDecoders.h"
#include "support/BareReader.h"
#include "support/Media.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace corvina::test {
namespace {

Frames framesOf(const std::vector<std::uint8_t>& bytes) {
    Frames frames(bytes.size() / sizeof(Frame));
    std::memcpy(frames.data(), bytes.data(), frames.size() * sizeof(Frame));
    return frames;
}

template <typename Decoder>
Frames decodedBy(const std::wstring& path) {
    Decoder decoder(path);
    return framesOf(readRest(decoder));
}

Frames decodedByReader(const std::wstring& path) {
    BareReader reader(path);
    return framesOf(reader.rest());
}

// A decoder may begin with silence, and so may what is heard for other reasons; the sounding frames
// in their order are what must be the same.
Frames sounding(Frames frames) {
    std::erase(frames, Frame{});
    return frames;
}

struct Decoded {
    const char* name;
    const wchar_t* file; // of build/media, one second at 44.1 kHz
    Frames (*decode)(const std::wstring& path);
};

using DecodedSound = SoundTest;

class PlaybackOfDecoded : public SoundTest, public ::testing::WithParamInterface<Decoded> {};

TEST_P(PlaybackOfDecoded, is_heard_as_the_library_alone_decodes_it) {
    const std::wstring path = mediaFile(GetParam().file);
    const Frames expected = sounding(GetParam().decode(path));
    ASSERT_GT(expected.size(), 43000u);
    const Frames heard = sounding(playWhole(path, expected.size()));
    EXPECT_EQ(compare(expected, heard).difference, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Files, PlaybackOfDecoded,
    ::testing::Values(Decoded{"ogg", L"tone.ogg", &decodedBy<BareOgg>},
                      Decoded{"ape_fast", L"tone-1.ape", &decodedBy<BareApe>},
                      Decoded{"ape_normal", L"tone-2.ape", &decodedBy<BareApe>},
                      Decoded{"ape_high", L"tone-3.ape", &decodedBy<BareApe>},
                      Decoded{"ape_extra_high", L"tone-4.ape", &decodedBy<BareApe>},
                      Decoded{"ape_insane", L"tone-5.ape", &decodedBy<BareApe>},
                      Decoded{"au", L"tone.au", &decodedBy<BareSnd>},
                      Decoded{"aiff", L"tone.aiff", &decodedBy<BareSnd>},
                      Decoded{"voc", L"tone.voc", &decodedBy<BareSnd>},
                      Decoded{"mp3", L"tone.mp3", &decodedByReader}),
    [](const auto& test) { return std::string(test.param.name); });

// libsndfile takes headerless au and snd for sound, and APE's source opens whatever its library
// says: these are refused when they are to be converted.
TEST_F(DecodedSound,
       garbage_is_refused_with_words_or_plays_as_headless_sound_and_the_next_file_plays) {
    const LoggedEvent notOpened{L"Err", L"", 1, L"Could not open file"};
    const LoggedEvent notConverted{L"Err", L"InitConversion", 5, L"Can't init conversion"};
    PlayerHost host;
    const auto refusal = [&](const std::wstring& extension) {
        const std::size_t before = host.events().size();
        const long result = host.start(folder.write(L"garbage." + extension, Bytes(5000, 0xA5)));
        EXPECT_EQ(host.events().size(), before + 1);
        return std::pair(result, host.events().back());
    };
    for (const wchar_t* extension :
         {L"wav", L"ogg", L"mp3", L"wma", L"wmv", L"aiff", L"aif", L"aifc", L"voc", L"cda"})
        EXPECT_EQ(refusal(extension), std::pair(3L, notOpened)) << extension;
    EXPECT_EQ(refusal(L"ape"), std::pair(5L, notConverted));
    // To libsndfile every file without a header is sound of the oldest kind, 8000 Hz mu-law.
    std::size_t played = 0;
    for (const wchar_t* extension : {L"au", L"snd"}) {
        ASSERT_EQ(
            host.start(folder.write(std::wstring(L"headless.") + extension, Bytes(5000, 0xA5))), 0);
        EXPECT_TRUE(host.waitForDone(++played)) << extension;
    }
    ASSERT_EQ(host.start(file(signal(shortLength))), 0);
    EXPECT_TRUE(host.waitForDone(++played));
}

// Wine's WMA decoder may leave out its first frames, and fills noise in, differently each time.
TEST_F(DecodedSound, wma_is_heard_as_the_reader_alone_decodes_it_but_for_its_noise) {
    constexpr std::ptrdiff_t mayLack = 4096;
    constexpr int noise = 4;
    const std::wstring path = mediaFile(L"tone.wma");
    Frames expected = sounding(decodedByReader(path));
    ASSERT_GT(expected.size(), 40000u);
    const Frames heard = sounding(playWhole(path, expected.size() - mayLack));
    expected.erase(expected.begin(), expected.begin() + mayLack);
    const auto alike = [](Frame one, Frame two) {
        return std::abs(one.left - two.left) <= noise && std::abs(one.right - two.right) <= noise;
    };
    const auto start =
        std::search(heard.begin(), heard.end(), expected.begin(), expected.begin() + 1000, alike);
    ASSERT_LE(start - heard.begin(), 2 * mayLack);
    const auto [wanted, got] =
        std::mismatch(expected.begin(), expected.end(), start, heard.end(), alike);
    EXPECT_TRUE(wanted == expected.end())
        << "frame " << wanted - expected.begin() << " of " << expected.size();
}

} // namespace
} // namespace corvina::test
