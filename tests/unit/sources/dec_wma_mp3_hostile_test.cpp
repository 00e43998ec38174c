// Damaged files through the system's own reader, with every block of our memory guarded.
// support/RandomDamage.h says how many.

#include "runtime/RuntimeError.h"
#include "sources/DecWMAMP3.h"
#include "support/FileBytes.h"
#include "support/Media.h"
#include "support/RandomDamage.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <random>

namespace corvina {
namespace {

using namespace test;

struct Kind {
    const char* name;
    const wchar_t* clip; // to be damaged
    const wchar_t* tune; // to be played for a while
    const wchar_t* longTune;
};

void PrintTo(const Kind& kind, std::ostream* stream) {
    *stream << kind.name;
}

constexpr Kind kinds[] = {
    {"mp3", L"short.mp3", L"tune.mp3", L"half-minute.mp3"},
    {"wma", L"short.wma", L"tune.wma", L"half-minute.wma"},
};

class HostileMedia : public testing::TestWithParam<Kind> {
protected:
    // Opens a file with these bytes and uses all that the source offers; what the open returned.
    std::int32_t use(const Bytes& bytes) {
        write(bytes);
        const std::int32_t result = source_.OpenSource(path_);
        EXPECT_TRUE(result == 0 || result == 1 || result == 12) << result;
        if (result == 0)
            useAll();
        EXPECT_EQ(source_.CloseSource(), result == 0 ? 0 : 1);
        return result;
    }

    // On Wine's reader some damaged files are never done opening. The wrapper ends that after ten
    // seconds, which would take too long here; a good file opens in milliseconds.
    void useDamaged(const Bytes& bytes) {
        ::SetEnvironmentVariableW(L"CORVINA_READER_LIMIT", L"1000");
        use(bytes);
        ::SetEnvironmentVariableW(L"CORVINA_READER_LIMIT", nullptr);
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
        raisingAtMost([&] { (void)source_.Bitrate(); });
    }

    // A run-time error is a result too: a duration of 0, or one beyond 32 bits.
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

    // Fails while anybody still holds the file of the time before.
    void write(const Bytes& bytes) {
        const HANDLE file =
            ::CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        (void)::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        ::CloseHandle(file);
        ASSERT_EQ(written, bytes.size());
    }

    TempFolder folder_;
    const std::wstring path_ = folder_.file(std::wstring(L"a") + (GetParam().clip + 5));
    const Bytes clip_ = fileBytes(mediaFile(GetParam().clip));
    const Bytes tune_ = fileBytes(mediaFile(GetParam().tune));
    Bytes buffer_ = Bytes(8000);
    DecWMAMP3 source_;
};

INSTANTIATE_TEST_SUITE_P(Kinds, HostileMedia, testing::ValuesIn(kinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(HostileMedia, random_damage) {
    RandomDamage::forEachVariant(clip_, [this](const Bytes& bytes) { useDamaged(bytes); });
    EXPECT_EQ(use(clip_), 0);
}

TEST_P(HostileMedia, cut_at_every_64th_part) {
    for (std::size_t part = 0; part < 64; ++part) {
        const std::size_t length = clip_.size() * part / 64;
        SCOPED_TRACE("cut to " + std::to_string(length));
        useDamaged(Bytes(clip_.begin(), clip_.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    EXPECT_EQ(use(clip_), 0);
}

TEST_P(HostileMedia, an_empty_file_and_one_of_one_byte_return_1) {
    EXPECT_EQ(use({}), 1);
    EXPECT_EQ(use({0xFF}), 1);
}

TEST_P(HostileMedia, garbage) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Bytes garbage(5000);
        for (std::uint8_t& byte : garbage)
            byte = static_cast<std::uint8_t>(random());
        useDamaged(garbage);
        std::copy_n(clip_.begin(), 16, garbage.begin());
        useDamaged(garbage);
    }
}

TEST_P(HostileMedia, the_extension_does_not_matter) {
    const std::wstring other = folder_.write(L"b.wmv", tune_);
    EXPECT_EQ(source_.OpenSource(other), 0);
}

TEST_P(HostileMedia, a_file_that_somebody_else_has_locked_returns_1) {
    write(tune_);
    const HANDLE lock =
        ::CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(source_.OpenSource(path_), 1);
    ::CloseHandle(lock);
    EXPECT_EQ(source_.OpenSource(path_), 0);
}

TEST_P(HostileMedia, a_file_deleted_in_mid_play_is_survived) {
    write(tune_);
    ASSERT_EQ(source_.OpenSource(path_), 0);
    std::int32_t got = 0;
    (void)source_.Read(buffer_.data(), 100, got);
    EXPECT_EQ(got, 100);
    (void)::DeleteFileW(path_.c_str());
    readSome();
    EXPECT_EQ(source_.CloseSource(), 0);
    EXPECT_EQ(source_.OpenSource(path_), 1);
}

TEST_P(HostileMedia, a_file_that_is_locked_in_mid_play_ends_and_opens_again_afterwards) {
    write(fileBytes(mediaFile(GetParam().longTune)));
    ASSERT_EQ(source_.OpenSource(path_), 0);
    std::int32_t got = 0;
    (void)source_.Read(buffer_.data(), 100, got);
    const HANDLE neighbour =
        ::CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                      OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(::LockFile(neighbour, 0, 0, 0x7FFFFFFF, 0));
    useAll();
    EXPECT_EQ(source_.CloseSource(), 0);
    ::CloseHandle(neighbour);
    EXPECT_EQ(source_.OpenSource(path_), 0);
    EXPECT_EQ(source_.Read(buffer_.data(), 8000, got), 0);
    EXPECT_EQ(source_.CloseSource(), 0);
}

TEST_P(HostileMedia, another_format_under_this_name) {
    for (const wchar_t* name : {L"clip.wav", L"clip.ogg", L"clip.ape", L"clip.aiff", L"clip.au"})
        EXPECT_EQ(use(fileBytes(mediaFile(name))), 1);
    EXPECT_EQ(use(clip_), 0);
}

} // namespace
} // namespace corvina

int main(int argc, char** argv) {
    return corvina::test::RandomDamage::runTests(argc, argv, 200);
}
