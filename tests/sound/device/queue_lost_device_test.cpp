// The host program's queue when the sound server ends while it plays.

#include "../SoundTest.h"
#include "OwnSoundServer.h"
#include "PlayQueue.h"

namespace corvina::test {
namespace {

TEST_F(SoundTest, a_queue_whose_device_is_lost_says_so_once_and_ends_and_plays_again_later) {
    OwnSoundServer server;
    if (!server.available())
        GTEST_SKIP() << "the test has no sound server of its own";
    server.start();
    std::vector<std::wstring> notices, failures;
    int started = 0, ended = 0;
    app::PlayQueue queue(app::QueueHandlers{
        .started = [&] { ++started; },
        .ended = [&] { ++ended; },
        .failed = [&](const std::wstring& words) { failures.push_back(words); },
        .noticed = [&](const std::wstring& words) { notices.push_back(words); }});
    for (std::uint32_t seed : {1u, 2u, 3u})
        queue.add(file(signal(10 * 44100, seed)));
    const std::size_t before = recording.now();
    queue.play(0);
    ASSERT_TRUE(pumpUntil([&] {
        const auto first = recording.soundSince(before);
        return first && recording.now() > *first + 22050;
    }));
    server.end();
    ASSERT_TRUE(pumpUntil([&] {
        queue.tick();
        return ended > 0;
    }));
    EXPECT_EQ(notices, std::vector<std::wstring>{L"The output device was lost."});
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(started, 1) << "the others would fail on it, too";
    EXPECT_TRUE(failures.empty()) << "the file is not to blame";
    EXPECT_TRUE(queue.failure(0).empty());
    EXPECT_NE(queue.result(), 0);
    EXPECT_FALSE(queue.isActive());

    server.start();
    const Frames again = signal(shortLength, 4);
    queue.clear();
    queue.add(file(again));
    expectRecorded(again, [&] {
        const std::size_t from = recording.now();
        ended = 0;
        queue.play(0);
        EXPECT_TRUE(pumpUntil([&] { return ended > 0; }));
        return recording.listen(from, again.size(), 5s);
    });
}

} // namespace
} // namespace corvina::test
