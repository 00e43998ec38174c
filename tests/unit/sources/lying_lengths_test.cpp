// A file that lies about a length never makes a source, or libsndfile behind it, allocate by that
// lie: each field that could be a length is overwritten with enormous numbers, and the largest
// block that anybody asks for is watched.

#include "runtime/RuntimeError.h"
#include "sources/DecAPE.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "sources/Mp4Tags.h"
#include "sources/SndfileSource.h"
#include "support/FileBytes.h"
#include "support/GuardedNew.h"
#include "support/ImportedMemory.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <array>
#include <cctype>
#include <gtest/gtest.h>
#include <memory>

namespace corvina::test {
namespace {

// A megabyte is more than the buffers and tables of any of these small files.
constexpr std::size_t most = 1 << 20;
// The lengths of FLAC's blocks have 24 bits, and its decoder makes room for a table of seek points
// that is half as long again in memory.
constexpr std::size_t mostInFlac = 24 << 20;

struct Format {
    const wchar_t* clip;
    std::unique_ptr<cSoundSTRM> (*make)();
};

void PrintTo(const Format& format, std::ostream* stream) {
    for (const wchar_t* character = format.clip; *character; ++character)
        *stream << static_cast<char>(*character);
}

template <typename Source>
constexpr Format format(const wchar_t* clip) {
    return {clip, []() -> std::unique_ptr<cSoundSTRM> { return std::make_unique<Source>(); }};
}

class LyingLengths : public testing::TestWithParam<Format> {
protected:
    // What a damaged file returns is another test's matter.
    void use(const Bytes& bytes) {
        try {
            if (source_->OpenSource(folder_.write(GetParam().clip, bytes)) == 0) {
                std::int32_t got = 0;
                std::int32_t mode = SeekMode::percent;
                (void)source_->Read(buffer_.data(), static_cast<std::int32_t>(buffer_.size()), got);
                (void)source_->SeekTo(50, mode);
                (void)source_->Read(buffer_.data(), static_cast<std::int32_t>(buffer_.size()), got);
            }
        } catch (const RuntimeError&) {
        }
        (void)source_->CloseSource();
    }

    TempFolder folder_;
    const Bytes clip_ = fileBytes(mediaFile(GetParam().clip));
    Bytes buffer_ = Bytes(4002);
    ImportedMemory& library_ = sndfileMemory();
    std::unique_ptr<cSoundSTRM> source_ = GetParam().make();

private:
    static ImportedMemory& sndfileMemory() {
        static ImportedMemory memory("libsndfile.dll");
        return memory;
    }
};

TEST_P(LyingLengths, size_no_memory) {
    using Lie = std::array<std::uint8_t, 4>;
    constexpr Lie lies[] = {{0x7F, 0xFF, 0xFF, 0xF0}, // either order of bytes
                            {0xF0, 0xFF, 0xFF, 0x7F},
                            {0xFF, 0xFF, 0xFF, 0xFF}};
    constexpr std::size_t header = 120;
    const bool isFlac = std::wstring(GetParam().clip).ends_with(L"flac") ||
                        std::wstring(GetParam().clip).ends_with(L"oga");
    use(clip_);
    for (std::size_t at = 0; at < std::min(header, clip_.size() - 4); ++at)
        for (const Lie& lie : lies) {
            Bytes bytes = clip_;
            std::copy(lie.begin(), lie.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
            (void)takeLargestBlock();
            (void)ImportedMemory::takeLargestBlock();
            use(bytes);
            ASSERT_LE(takeLargestBlock(), most) << "at " << at << " by the source";
            ASSERT_LE(ImportedMemory::takeLargestBlock(), isFlac ? mostInFlac : most)
                << "at " << at << " by libsndfile";
        }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, LyingLengths,
    testing::Values(format<DecWAV>(L"clip.wav"), format<DecWAV>(L"clip-32bit.wav"),
                    format<DecWAV>(L"clip-rf64.wav"), format<DecAPE>(L"clip.ape"),
                    format<DecSND>(L"clip.aiff"), format<DecSND>(L"clip.aifc"),
                    format<DecSND>(L"clip.au"), format<DecSND>(L"clip.voc"),
                    format<SndfileSource>(L"clip.flac"), format<SndfileSource>(L"clip-tagged.flac"),
                    format<SndfileSource>(L"clip.oga"), format<SndfileSource>(L"clip-tagged.opus"),
                    format<SndfileSource>(L"clip-six.oga"), format<SndfileSource>(L"clip.w64"),
                    format<SndfileSource>(L"clip.caf"), format<SndfileSource>(L"clip.rf64"),
                    format<SndfileSource>(L"clip.mp3")),
    [](const testing::TestParamInfo<Format>& tested) {
        std::string letters;
        for (const wchar_t character : std::wstring(tested.param.clip))
            letters += std::isalnum(character) ? static_cast<char>(character) : '_';
        return letters;
    });

TEST(LyingLengthsOfTags, size_no_memory) {
    TempFolder folder;
    const Bytes clip = fileBytes(mediaFile(L"clip.m4a"));
    // The boxes of the tracks and tags stand behind the sound.
    for (std::size_t at = clip.size() * 2 / 3; at + 4 < clip.size(); ++at) {
        Bytes bytes = clip;
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 4, std::uint8_t{0x7F});
        const std::wstring path = folder.write(L"a.m4a", bytes);
        (void)takeLargestBlock();
        StrmTags tags;
        readMp4Tags(path, tags);
        ASSERT_LE(takeLargestBlock(), clip.size()) << "at " << at;
    }
}

// That a lie would be seen: memory of that size is asked for on purpose.
TEST(LyingLengthsThemselves, are_seen_when_somebody_believes_them) {
    (void)takeLargestBlock();
    const Bytes believed(2 * most);
    EXPECT_GE(takeLargestBlock(), believed.size());
}

} // namespace
} // namespace corvina::test
