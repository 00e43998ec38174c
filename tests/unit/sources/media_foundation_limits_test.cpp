// What a call of Media Foundation that does not come back costs the host: a limited time, and the
// rest of that file.

#include "DecodedFiles.h"
#include "sources/MediaFoundationSource.h"
#include "support/ProcessObjects.h"
#include "support/StalledMediaFoundation.h"

namespace corvina::test {
namespace {

using System = StalledMediaFoundation;
using Call = System::Call;

constexpr DWORD limit = 1000;

// What an action took is the limit, and nowhere near two of them.
template <typename Action>
void expectGivenUpInTime(Action action) {
    const DWORD start = ::GetTickCount();
    action();
    const DWORD waited = ::GetTickCount() - start;
    EXPECT_GE(waited, limit - 20);
    EXPECT_LE(waited, MediaFoundationSource::longestCall / 2);
}

template <typename Action>
void expectAtOnce(Action action) {
    const DWORD start = ::GetTickCount();
    action();
    EXPECT_LT(::GetTickCount() - start, limit);
}

class MediaFoundationLimits : public testing::Test {
protected:
    // The first open starts the system's decoders, which takes longer.
    static void SetUpTestSuite() {
        MediaFoundationSource first(System::api);
        ASSERT_EQ(first.OpenSource(mediaFile(L"tune.m4a")), 0);
    }

    // What was left behind has its own share of the library, and gives it back when it ends.
    void TearDown() override {
        source.reset();
        System::openGate();
        EXPECT_EQ(System::startsLeft(), 0);
    }

    void open() { ASSERT_EQ(source->OpenSource(mediaFile(L"tune.m4a")), 0); }

    // The source is as good as new for the next file.
    void expectNextFileWhole() {
        System::openGate();
        open();
        EXPECT_TRUE(readToEnd(*source).bytes == samplesOf(L"tune.wav"));
    }

    std::unique_ptr<MediaFoundationSource> source =
        std::make_unique<MediaFoundationSource>(System::api, limit);
};

TEST_F(MediaFoundationLimits, an_open_that_never_ends_returns_1_in_time_and_the_next_file_opens) {
    System::stall(Call::makeReader);
    expectGivenUpInTime([&] { EXPECT_EQ(source->OpenSource(mediaFile(L"tune.m4a")), 1); });
    EXPECT_EQ(source->CloseSource(), 1);
    expectNextFileWhole();
}

TEST_F(MediaFoundationLimits, a_first_block_that_never_comes_makes_the_open_return_1) {
    System::stall(Call::read);
    expectGivenUpInTime([&] { EXPECT_EQ(source->OpenSource(mediaFile(L"tune.m4a")), 1); });
    expectNextFileWhole();
}

TEST_F(MediaFoundationLimits, a_read_that_never_ends_ends_the_file_in_time) {
    open();
    System::stall(Call::read);
    Reading reading;
    expectGivenUpInTime([&] { reading = readToEnd(*source); });
    EXPECT_EQ(reading.result, 5);
    EXPECT_TRUE(source->EndOfStream());
    // What was there before is heard.
    const Bytes whole = samplesOf(L"tune.wav");
    ASSERT_FALSE(reading.bytes.empty());
    ASSERT_LT(reading.bytes.size(), whole.size());
    EXPECT_TRUE(std::equal(reading.bytes.begin(), reading.bytes.end(), whole.begin()));
    expectAtOnce([&] {
        EXPECT_TRUE(readToEnd(*source).bytes.empty());
        std::int32_t mode = SeekMode::seconds;
        EXPECT_EQ(source->SeekTo(0, mode), 4);
        EXPECT_EQ(source->Duration(), 3000);
        EXPECT_EQ(source->CloseSource(), 0);
    });
    expectNextFileWhole();
}

TEST_F(MediaFoundationLimits, a_seek_that_never_ends_returns_4_in_time_and_ends_the_file) {
    open();
    System::stall(Call::seek);
    std::int32_t mode = SeekMode::seconds;
    expectGivenUpInTime([&] { EXPECT_EQ(source->SeekTo(1, mode), 4); });
    expectAtOnce([&] {
        EXPECT_EQ(source->SeekTo(1, mode), 4);
        EXPECT_EQ(readToEnd(*source).result, 5);
        EXPECT_EQ(source->CloseSource(), 0);
    });
    expectNextFileWhole();
}

TEST_F(MediaFoundationLimits, a_read_behind_a_seek_that_never_ends_ends_the_file_in_time) {
    open();
    System::stall(Call::read);
    std::int32_t mode = SeekMode::seconds;
    expectGivenUpInTime([&] { EXPECT_EQ(source->SeekTo(1, mode), 0); });
    expectAtOnce([&] {
        EXPECT_EQ(readToEnd(*source).result, 5);
        EXPECT_TRUE(source->EndOfStream());
    });
    expectNextFileWhole();
}

TEST_F(MediaFoundationLimits, a_close_that_never_ends_returns_in_time) {
    open();
    System::stall(Call::release);
    expectGivenUpInTime([&] { EXPECT_EQ(source->CloseSource(), 0); });
    expectNextFileWhole();
}

// Each is left behind while the gate is closed, and comes back when it opens.
TEST_F(MediaFoundationLimits, calls_that_come_back_late_leave_no_handle) {
    const auto giveUpOne = [this](Call call) {
        MediaFoundationSource hasty(System::api, 50);
        if (hasty.OpenSource(mediaFile(L"clip.m4a")) != 0)
            return; // the machine is busy: it was given up before
        System::stall(call);
        (void)readToEnd(hasty);
        hasty.CloseSource();
        System::openGate();
    };
    const auto handlesAfter = [&](int rounds) {
        for (int round = 0; round < rounds; ++round) {
            giveUpOne(Call::read);
            giveUpOne(Call::release);
        }
        source.reset();
        EXPECT_EQ(System::startsLeft(), 0);
        ::Sleep(300); // the last thread gives back its share before it ends
        return countKernelHandles();
    };
    const int handles = handlesAfter(5);
    EXPECT_LE(handlesAfter(20), handles + 5);
}

} // namespace
} // namespace corvina::test
