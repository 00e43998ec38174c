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
    int tolerance = 0; // of a sample
};

class PlaybackOfDecoded : public SoundTest, public ::testing::WithParamInterface<Decoded> {};

TEST_P(PlaybackOfDecoded, is_heard_as_the_library_alone_decodes_it) {
    const std::wstring path = mediaFile(GetParam().file);
    const Frames expected = sounding(GetParam().decode(path));
    ASSERT_GT(expected.size(), 43000u);
    const Frames heard = sounding(playWhole(path, expected.size()));
    ASSERT_GE(heard.size(), expected.size());
    const auto alike = [tolerance = GetParam().tolerance](Frame one, Frame two) {
        return std::abs(one.left - two.left) <= tolerance &&
               std::abs(one.right - two.right) <= tolerance;
    };
    const auto [wanted, got] =
        std::mismatch(expected.begin(), expected.end(), heard.begin(), alike);
    EXPECT_TRUE(wanted == expected.end())
        << "frame " << wanted - expected.begin() << " of " << expected.size() << ": " << got->left
        << ' ' << got->right << " for " << wanted->left << ' ' << wanted->right;
}

// The system's WMA decoder rounds its samples with noise, differently each time.
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
                      Decoded{"mp3", L"tone.mp3", &decodedByReader},
                      Decoded{"wma", L"tone.wma", &decodedByReader, 1}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace corvina::test
