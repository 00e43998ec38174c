// Damaged files through the system's Media Foundation, with every block of our memory guarded.
// support/RandomDamage.h says how many.

#include "runtime/RuntimeError.h"
#include "sources/MediaFoundationSource.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/RandomDamage.h"
#include "support/TempFolder.h"

#include <cctype>
#include <gtest/gtest.h>
#include <random>

namespace corvina::test {
namespace {

using Clip = const wchar_t*;
constexpr Clip clips[] = {L"clip.m4a", L"clip-lossless.m4a", L"clip.aac", L"clip.mp4"};

// A good file opens in milliseconds; a call that is never done is given up sooner here than in a
// host.
constexpr DWORD longestCall = 3000;

class HostileMovies : public testing::TestWithParam<Clip> {
protected:
    // The first open starts the system's decoders, which takes longer.
    static void SetUpTestSuite() {
        MediaFoundationSource source;
        ASSERT_EQ(source.OpenSource(mediaFile(L"clip.m4a")), 0);
    }

    void TearDown() override {
        if (givenUp_ > 0)
            std::printf("%d files were given up\n", givenUp_);
        EXPECT_LE(longestUse_, 10'000u) << "milliseconds in one file";
    }

    // Opens a file with these bytes and uses all that the source offers; what the open returned.
    std::int32_t use(const Bytes& bytes) {
        const std::wstring path =
            writeOnceClosed(L"a" + std::to_wstring(givenUp_) + (GetParam() + 4), bytes);
        const DWORD start = ::GetTickCount();
        const std::int32_t result = source_.OpenSource(path);
        EXPECT_TRUE(result == 0 || result == 1 || result == 12) << result;
        if (result == 0)
            useAll();
        EXPECT_EQ(source_.CloseSource(), result == 0 ? 0 : 1);
        const DWORD used = ::GetTickCount() - start;
        longestUse_ = std::max(longestUse_, used);
        // The reader that was left behind keeps its file open.
        if (used >= longestCall)
            ++givenUp_;
        return result;
    }

    // On a busy machine a thread of the system may have the last file open for a moment after it
    // was closed. One that is kept open fails the test.
    std::wstring writeOnceClosed(const std::wstring& name, const Bytes& bytes) {
        for (int attempt = 0; attempt < 100; ++attempt) {
            try {
                return folder_.write(name, bytes);
            } catch (const std::runtime_error&) {
                ::Sleep(10);
            }
        }
        return folder_.write(name, bytes);
    }

    void useAll() {
        readSome();
        for (const auto& [value, mode] :
             {std::pair{50, SeekMode::percent}, std::pair{99, SeekMode::percent},
              std::pair{0, SeekMode::seconds}, std::pair{0x7FFFFFFF, SeekMode::seconds}}) {
            raisingAtMost([this, to = value, by = mode]() mutable {
                const std::int32_t sought = source_.SeekTo(to, by);
                EXPECT_TRUE(sought == 0 || sought == 4) << sought;
            });
            readSome();
        }
        raisingAtMost([&] { (void)source_.Position(); });
        raisingAtMost([&] { (void)source_.Duration(); });
        (void)source_.Bitrate();
    }

    // A run-time error is a result too: a duration beyond 32 bits.
    template <typename Use>
    static void raisingAtMost(Use use) {
        try {
            use();
        } catch (const RuntimeError&) {
        }
    }

    // No clip is as long as that when it is whole.
    void readSome() {
        std::int32_t result = 0;
        for (std::int32_t total = 0; result == 0 && total < 1'000'000;) {
            std::int32_t got = 0;
            result = source_.Read(buffer_.data(), static_cast<std::int32_t>(buffer_.size()), got);
            ASSERT_TRUE(result == 0 || result == 5) << result;
            total += got;
        }
    }

    TempFolder folder_;
    const Bytes clip_ = fileBytes(mediaFile(GetParam()));
    Bytes buffer_ = Bytes(4002);
    MediaFoundationSource source_{systemLibraryApi, longestCall};
    int givenUp_ = 0;
    DWORD longestUse_ = 0;
};

std::string lettersOf(const testing::TestParamInfo<Clip>& clip) {
    std::string letters;
    for (const wchar_t character : std::wstring(clip.param))
        letters += std::isalnum(character) ? static_cast<char>(character) : '_';
    return letters;
}

INSTANTIATE_TEST_SUITE_P(Clips, HostileMovies, testing::ValuesIn(clips), lettersOf);

TEST_P(HostileMovies, random_damage) {
    RandomDamage::forEachVariant(clip_, [this](const Bytes& bytes) { use(bytes); });
    EXPECT_EQ(use(clip_), 0);
}

TEST_P(HostileMovies, cut_at_every_64th_part) {
    for (std::size_t part = 0; part < 64; ++part) {
        const std::size_t length = clip_.size() * part / 64;
        SCOPED_TRACE("cut to " + std::to_string(length));
        use(Bytes(clip_.begin(), clip_.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    EXPECT_EQ(use(clip_), 0);
}

TEST_P(HostileMovies, an_empty_file_and_one_of_one_byte_return_1) {
    EXPECT_EQ(use({}), 1);
    EXPECT_EQ(use({0xFF}), 1);
}

TEST_P(HostileMovies, garbage) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Bytes garbage(5000);
        for (std::uint8_t& byte : garbage)
            byte = static_cast<std::uint8_t>(random());
        use(garbage);
        std::copy_n(clip_.begin(), 16, garbage.begin());
        use(garbage);
    }
}

TEST_P(HostileMovies, another_format_under_this_name) {
    for (const wchar_t* name : {L"clip.wav", L"clip.ogg", L"clip.ape", L"clip.aiff", L"clip.mp3",
                                L"short.wma", L"clip.flac", L"clip.opus"})
        use(fileBytes(mediaFile(name)));
    EXPECT_EQ(use(clip_), 0);
}

} // namespace
} // namespace corvina::test

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 100);
}
