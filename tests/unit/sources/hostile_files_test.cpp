// Damaged files through the sources and the real libraries: whatever a file holds, the host lives,
// every call ends, nothing is written outside the buffer that was given (each block of our own
// memory ends at a page that faults), and nothing is kept. support/RandomDamage.h says how many.

#include "runtime/RuntimeError.h"
#include "sources/DecAPE.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "sources/SndfileSource.h"
#include "stream/cPCM.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/OggPages.h"
#include "support/ProcessObjects.h"
#include "support/RandomDamage.h"
#include "support/TempFolder.h"

#include <cctype>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <vector>

namespace corvina::test {
namespace {

struct Format {
    const wchar_t* clip;
    std::function<std::unique_ptr<cSoundSTRM>()> make;
};

void PrintTo(const Format& format, std::ostream* stream) {
    for (const wchar_t* character = format.clip; *character; ++character)
        *stream << static_cast<char>(*character);
}

template <typename Source>
Format format(const wchar_t* clip) {
    return {clip, [] { return std::make_unique<Source>(); }};
}

constexpr const wchar_t* wavClips[] = {
    L"clip.wav",      L"clip-ms-adpcm.wav", L"clip-ima-adpcm.wav", L"clip-mulaw.wav",
    L"clip-alaw.wav", L"clip-gsm.wav",      L"clip-float.wav",     L"clip-24bit.wav",
    L"clip-six.wav",  L"clip-rf64.wav",     L"clip-32bit.wav",     L"clip-double.wav",
    L"clip-piped.wav"};
constexpr const wchar_t* sndfileClips[] = {
    L"clip.flac",    L"clip-tagged.flac", L"clip.opus", L"clip-tagged.opus",
    L"clip.oga",     L"clip.caf",         L"clip.w64",  L"clip.rf64",
    L"clip-six.oga", L"clip.mp2",         L"clip.mp3"};

// Reads up to 2 MB; a damaged header may promise any length.
void readSome(cSoundSTRM& source, Bytes& buffer) {
    const auto size = static_cast<std::int32_t>(buffer.size());
    std::int32_t result = 0;
    for (int reads = 0; result == 0 && reads < 500; ++reads) {
        std::int32_t got = 0;
        result = source.Read(buffer.data(), size, got);
        ASSERT_TRUE(result == 0 || result == 1 || result == 5) << result;
        ASSERT_LE(got, size);
    }
}

void useWhole(cSoundSTRM& source, const std::wstring& path, Bytes& buffer) {
    const std::int32_t opened = source.OpenSource(path);
    ASSERT_TRUE(opened == 0 || opened == 1 || opened == 12) << opened;
    readSome(source, buffer);
    for (const auto& [value, mode] :
         {std::pair{50, 0}, std::pair{99, 0}, std::pair{0, 0}, std::pair{0x7FFFFFFF, 1}}) {
        std::int32_t by = mode;
        source.SeekTo(value, by);
        readSome(source, buffer);
    }
    (void)source.EndOfStream();
    (void)source.Info().Position();
    (void)source.Info().Duration();
}

void playConverted(cSoundSTRM& source, const std::wstring& path, Bytes& buffer) {
    cPCM converter;
    if (source.OpenSource(path) != 0 || !converter.InitConversion(source, nullptr, false))
        return;
    const auto size = static_cast<std::int32_t>(buffer.size());
    std::int32_t got = size;
    for (int pulls = 0; got == size && pulls < 500; ++pulls) {
        ASSERT_TRUE(converter.GetSamples(buffer.data(), size, got));
        ASSERT_LE(got, size);
    }
}

class HostileFiles : public testing::TestWithParam<Format> {
protected:
    // What the first conversion and the first error leave in memory is there before it is counted.
    static void SetUpTestSuite() {
        Bytes buffer(4002);
        for (const wchar_t* clip : wavClips) {
            DecWAV source;
            playConverted(source, mediaFile(clip), buffer);
        }
        raisingAtMost([] { throwOverflow(); });
    }

    void TearDown() override {
        if (played <= firstPlays || heapsAreChecked())
            return;
        if (anyHeapGroupsSmallBlocks())
            expectNothingMoreIsKept();
        else
            EXPECT_EQ(countHeapBytes(), heapBytes);
    }

    void play(const Bytes& bytes) {
        playOnce(bytes);
        if (++played == firstPlays)
            heapBytes = countHeapBytes();
        if (firstFiles.size() < mostFiles)
            firstFiles.push_back(bytes);
    }

    void playOnce(const Bytes& bytes) {
        const std::wstring path = folder.write(GetParam().clip, bytes);
        raisingAtMost([&] { useWhole(*source, path, buffer); });
        raisingAtMost([&] { playConverted(*source, path, buffer); });
        raisingAtMost([&] { source->CloseSource(); });
    }

    // A heap that keeps small blocks in groups makes new groups for a while, and each counts whole.
    // The same files again and again come to a round that adds nothing, unless each of them leaves
    // something behind.
    void expectNothingMoreIsKept() {
        constexpr std::size_t few = 32 * 1024;
        constexpr int mostRounds = 8;
        std::size_t before = heapBytes;
        std::size_t now = countHeapBytes();
        for (int round = 0; round < mostRounds && now > before + few; ++round) {
            for (const Bytes& bytes : firstFiles)
                playOnce(bytes);
            before = std::exchange(now, countHeapBytes());
        }
        EXPECT_LE(now, before + few);
    }

    // A run-time error is a result too: a block align of 0, a length that overflows.
    template <typename Use>
    static void raisingAtMost(Use use) {
        try {
            use();
        } catch (const RuntimeError&) {
        }
    }

    TempFolder folder;
    Bytes buffer = Bytes(4002);
    Bytes clip = fileBytes(mediaFile(GetParam().clip));
    std::unique_ptr<cSoundSTRM> source = GetParam().make();

    // After so many the libraries, which are on the same heap, have all they keep for themselves. A
    // file that is kept open could not be written again.
    static constexpr int firstPlays = 10;
    int played = 0;
    std::size_t heapBytes = 0;
    static constexpr std::size_t mostFiles = 64; // of the files, to play them again
    std::vector<Bytes> firstFiles;
};

TEST_P(HostileFiles, empty_and_one_byte) {
    play({});
    play({0});
    play({clip.front()});
}

TEST_P(HostileFiles, garbage) {
    std::mt19937 random(1);
    for (const std::size_t size : {16u, 100u, 5000u}) {
        Bytes bytes(size);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        play(bytes);
        std::copy_n(clip.begin(), std::min<std::size_t>(16, size), bytes.begin());
        play(bytes);
    }
}

TEST_P(HostileFiles, cut_at_every_64th_part) {
    for (std::size_t part = 0; part < 64; ++part)
        play({clip.begin(), clip.begin() + static_cast<std::ptrdiff_t>(clip.size() * part / 64)});
}

TEST_P(HostileFiles, another_format_under_this_name) {
    for (const wchar_t* name : {L"clip.wav", L"clip.ogg", L"clip.ape", L"clip.aiff", L"tune.mp3"})
        play(fileBytes(mediaFile(name)));
}

TEST_P(HostileFiles, random_damage) {
    RandomDamage::forEachVariant(clip, [this](const Bytes& bytes) { play(bytes); });
}

std::vector<Format> formats() {
    std::vector<Format> all{format<DecOGG>(L"clip.ogg"),      format<DecAPE>(L"clip.ape"),
                            format<DecSND>(L"clip.au"),       format<DecSND>(L"clip.aiff"),
                            format<DecSND>(L"clip.voc"),      format<DecSND>(L"clip.vox"),
                            format<DecSND>(L"clip-float.au"), format<DecSND>(L"clip.aifc")};
    for (const wchar_t* clip : sndfileClips)
        all.push_back(format<SndfileSource>(clip));
    for (const wchar_t* clip : wavClips)
        all.push_back(format<DecWAV>(clip));
    return all;
}

std::string lettersOf(const testing::TestParamInfo<Format>& tested) {
    std::string letters;
    for (const wchar_t character : std::wstring(tested.param.clip))
        letters += std::isalnum(character) ? static_cast<char>(character) : '_';
    return letters;
}

INSTANTIATE_TEST_SUITE_P(Formats, HostileFiles, testing::ValuesIn(formats()), lettersOf);

// Behind right checksums the damage reaches the packets.
class HostilePackets : public HostileFiles {};

TEST_P(HostilePackets, random_damage_behind_good_checksums) {
    RandomDamage::forEachVariant(clip, [this](Bytes bytes) {
        correctOggPages(bytes);
        play(bytes);
    });
}

INSTANTIATE_TEST_SUITE_P(Formats, HostilePackets,
                         testing::Values(format<DecOGG>(L"clip.ogg"),
                                         format<SndfileSource>(L"clip.oga"),
                                         format<SndfileSource>(L"clip-six.oga"),
                                         format<SndfileSource>(L"clip-tagged.opus")),
                         lettersOf);

} // namespace
} // namespace corvina::test

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 40);
}
