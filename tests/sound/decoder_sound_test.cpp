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
