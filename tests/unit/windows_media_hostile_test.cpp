// Damaged files through the system's own reader, with every block of our memory guarded.

#include "runtime/RuntimeError.h"
#include "sources/DecWMAMP3.h"
#include "support/Media.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <random>

namespace corvina {
namespace {

using namespace test;
using Bytes = std::vector<std::uint8_t>;

Bytes contents(const std::wstring& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    Bytes bytes(file == INVALID_HANDLE_VALUE ? 0 : ::GetFileSize(file, nullptr));
    DWORD got = 0;
    if (!bytes.empty())
        (void)::ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
    ::CloseHandle(file);
    return bytes;
}

// What is damaged, and from which byte on. Wine's own reader, on which the tests run, may wait for
// ever for a WMA file whose beginning is damaged, so these are damaged in their second half only.
struct Kind {
    const char* name;
    const wchar_t* file;
    std::size_t firstDamaged;
    int variants;
};

constexpr Kind kinds[] = {
    {"mp3", L"short.mp3", 0, 1000},
    {"wma", L"tune.wma", 27'000, 100},
};

class HostileMedia : public testing::TestWithParam<Kind> {
protected:
    void SetUp() override { ASSERT_GT(good_.size(), GetParam().firstDamaged); }

    // Opens a file with these bytes and uses all that the source offers; what the open answered.
    std::int32_t use(const Bytes& bytes) {
        write(bytes);
        const std::int32_t result = source_.OpenSource(path_);
        EXPECT_TRUE(result == 0 || result == 1 || result == 12) << result;
        if (result == 0) {
            readSome();
            std::int32_t mode = SeekMode::percent;
            const std::int32_t sought = source_.SeekTo(50, mode);
            EXPECT_TRUE(sought == 0 || sought == 4) << sought;
            readSome();
        }
        EXPECT_EQ(source_.CloseSource(), result == 0 ? 0 : 1);
        return result;
    }

    // No file here is as long as that when it is whole.
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
    const std::wstring path_ = folder_.file(std::wstring(L"a") + (GetParam().file + 5));
    const Bytes good_ = contents(mediaFile(GetParam().file));
    Bytes buffer_ = Bytes(8000);
    DecWMAMP3 source_;
};

INSTANTIATE_TEST_SUITE_P(Kinds, HostileMedia, testing::ValuesIn(kinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(HostileMedia, bit_flipped_files_are_survived) {
    const std::size_t first = GetParam().firstDamaged;
    for (int seed = 1; seed <= GetParam().variants; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(static_cast<unsigned>(seed));
        Bytes bytes = good_;
        for (unsigned flips = 1 + random() % 8; flips > 0; --flips)
            bytes[first + random() % (bytes.size() - first)] ^=
                static_cast<std::uint8_t>(1u << random() % 8);
        use(bytes);
    }
    EXPECT_EQ(use(good_), 0);
}

TEST_P(HostileMedia, truncated_files_are_survived) {
    for (std::size_t part = 0; part < 64; ++part) {
        const std::size_t length = good_.size() * part / 64;
        if (length < GetParam().firstDamaged)
            continue;
        SCOPED_TRACE("cut to " + std::to_string(length));
        use(Bytes(good_.begin(), good_.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    EXPECT_EQ(use(good_), 0);
}

TEST_P(HostileMedia, an_empty_file_and_one_of_one_byte_answer_1) {
    EXPECT_EQ(use({}), 1);
    EXPECT_EQ(use({0xFF}), 1);
}

TEST_P(HostileMedia, garbage_is_survived) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Bytes garbage(5000);
        for (std::uint8_t& byte : garbage)
            byte = static_cast<std::uint8_t>(random());
        use(garbage);
    }
}

TEST_P(HostileMedia, the_extension_does_not_matter) {
    const std::wstring other = folder_.write(L"b.wmv", good_);
    EXPECT_EQ(source_.OpenSource(other), 0);
}

TEST_P(HostileMedia, a_file_that_somebody_else_has_locked_answers_1) {
    write(good_);
    const HANDLE lock =
        ::CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(source_.OpenSource(path_), 1);
    ::CloseHandle(lock);
    EXPECT_EQ(source_.OpenSource(path_), 0);
}

TEST_P(HostileMedia, a_file_deleted_in_mid_play_is_survived) {
    write(good_);
    ASSERT_EQ(source_.OpenSource(path_), 0);
    std::int32_t got = 0;
    (void)source_.Read(buffer_.data(), 100, got);
    EXPECT_EQ(got, 100);
    (void)::DeleteFileW(path_.c_str());
    readSome();
    EXPECT_EQ(source_.CloseSource(), 0);
    EXPECT_EQ(source_.OpenSource(path_), 1);
}

} // namespace
} // namespace corvina
