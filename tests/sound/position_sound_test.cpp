// PositionMs beside what is heard.
//
// A device says that it has played what it has only handed on to the sound system, which holds it
// for some time yet: under Wine for 60 to 130 ms, another time after each start and each pause. No
// program can know how long, so that time is measured in the recording, by counting the frames that
// were heard since the device began, and taken off.

#include "PlaceSound.h"
#include "support/BarePlayer.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace corvina::test {
namespace {

// What the device said when it was asked last, in its frames since it began or was reset.
DWORD framesOfDevice = 0;

MMRESULT WINAPI notedPosition(HWAVEOUT device, LPMMTIME time, UINT size) {
    const MMRESULT result = ::waveOutGetPosition(device, time, size);
    framesOfDevice = time->u.sample;
    return result;
}

WaveApi notingApi() {
    WaveApi api;
    api.outGetPosition = &notedPosition;
    return api;
}

struct Query {
    double seconds = 0;
    double positionMs = 0;
    double deviceMs = 0;
};
using Queries = std::vector<Query>;

class HeardPosition : public ::testing::Test {
protected:
    static constexpr double nearMs = 15;
    static constexpr double soundMs = 8000;
    static constexpr double edgeMs = 5; // what a change of the rate may smear

    void SetUp() override {
        if (!recording.available())
            GTEST_SKIP() << "CORVINA_HEARD names no recording";
        ASSERT_EQ(host.init(), 0);
    }
    void TearDown() override {
        host.player.PlayStop();
        EXPECT_TRUE(pumpUntil([this] { return host.player.DonePlay(); }));
    }

    std::wstring file(const Frames& frames, DWORD rate = 44100) {
        return folder.write(std::to_wstring(++files) + L".wav",
                            plainWav(pcm(rate, 2, 16), bytesOf(frames)));
    }
    // From now on the device counts from 0, once the sound of that place is heard.
    void begin(double placeMs) {
        beginsAt = placeMs;
        begunFrom = recording.now();
        begun = false;
    }
    void start(const std::wstring& path, DWORD rate = 44100) {
        sampleRate = rate;
        begin(0);
        ASSERT_EQ(host.player.PlayStart(path, -1, 0), 0);
    }
    void jump(std::int32_t placeMs) {
        begin(placeMs);
        host.player.setPositionMs(placeMs);
    }

    Queries listen(std::chrono::milliseconds time) {
        Queries queries;
        (void)pumpUntil(
            [&] {
                clock.note(recording);
                const double seconds = secondsNow();
                const double position = host.player.PositionMs();
                queries.push_back({seconds, position, framesOfDevice * 1000.0 / sampleRate});
                return false;
            },
            time);
        return queries;
    }

    // The first frame of the sound that was begun last.
    void findBegin() {
        if (begun)
            return;
        const Frames heard = recording.since(begunFrom);
        const auto first = std::find_if(heard.begin(), heard.end(), [&](const Frame& frame) {
            const auto place = sound.placeOf(frame);
            return place && std::abs(*place - beginsAt) < edgeMs;
        });
        begun = first != heard.end();
        begunFrom += static_cast<std::size_t>(first - heard.begin());
    }

    // Each position is near the place that was heard. lengthMs: behind which places begin again.
    void expectNear(const Queries& queries, double gain = 1, double lengthMs = soundMs) {
        findBegin();
        ASSERT_TRUE(begun) << "the sound of " << beginsAt << " ms was not heard";
        const Frames heard = recording.since(begunFrom);
        std::vector<double> ahead;
        std::size_t counted = 0;
        double countedMs = 0;
        for (const Query& query : queries) {
            const std::size_t at = clock.frameAt(query.seconds);
            if (at < begunFrom || at >= begunFrom + heard.size())
                continue;
            const std::size_t frame = at - begunFrom;
            for (; counted <= frame; ++counted)
                if (heard[counted] != Frame{})
                    countedMs += 1 / 44.1;
            const auto place = sound.placeOf(heard[frame], gain);
            if (!place)
                continue;
            ahead.push_back(query.deviceMs - countedMs);
            const double away = query.positionMs - *place - ahead.back();
            ASSERT_LE(std::abs(std::remainder(away, lengthMs)), nearMs)
                << "PositionMs " << query.positionMs << " when " << *place << " was heard, and "
                << countedMs << " since the device began, which says " << query.deviceMs;
        }
        ASSERT_GT(ahead.size(), 20u);
        const auto [least, most] = std::minmax_element(ahead.begin(), ahead.end());
        RecordProperty("device_ahead_ms_least", static_cast<int>(*least));
        RecordProperty("device_ahead_ms_most", static_cast<int>(*most));
    }

    Recording recording;
    RecordingClock clock;
    TempFolder folder;
    PlaceSound sound{soundMs};
    const WaveApi api = notingApi();
    BarePlayer host{{.wave = api}};
    DWORD sampleRate = 44100;
    double beginsAt = 0;
    std::size_t begunFrom = 0; // frame of the recording: when begun is set, the first one heard
    bool begun = false;

private:
    int files = 0;
};

class AtRate : public HeardPosition, public ::testing::WithParamInterface<DWORD> {};

TEST_P(AtRate, is_the_place_that_is_heard_after_a_start_a_pause_and_jumps) {
    start(file(sound.frames(GetParam()), GetParam()), GetParam());
    expectNear(listen(800ms));
    ASSERT_EQ(host.player.PlayPause(), 0);
    const Queries paused = listen(200ms);
    EXPECT_EQ(paused.front().positionMs, paused.back().positionMs);
    ASSERT_EQ(host.player.PlayUnPause(), 0);
    expectNear(listen(800ms));
    jump(6123);
    expectNear(listen(800ms));
    ASSERT_EQ(host.player.PlayPause(), 0);
    jump(1234);
    EXPECT_EQ(host.player.PositionMs(), 1234);
    ASSERT_EQ(host.player.PlayUnPause(), 0);
    expectNear(listen(800ms));
}
INSTANTIATE_TEST_SUITE_P(Rates, AtRate, ::testing::Values(8000, 22050, 44100, 48000),
                         ::testing::PrintToStringParamName());

TEST_F(HeardPosition, is_the_place_that_is_heard_over_changes_of_the_volume) {
    start(file(sound.frames()));
    expectNear(listen(500ms));
    host.player.settings().setVolume(80);
    host.player.soundChanged();
    (void)listen(300ms);
    expectNear(listen(500ms), 0.64);
}

TEST_F(HeardPosition, is_the_place_in_the_next_file_once_that_is_heard) {
    const Frames all = sound.frames();
    const auto half = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
    const std::wstring second = file(Frames(half, all.end()));
    host.player.settings().options().nextFile = second;
    start(file(Frames(all.begin(), half)));
    (void)listen(400ms);
    jump(static_cast<std::int32_t>(soundMs / 2) - 400);
    expectNear(listen(1200ms), 1, soundMs / 2);
    EXPECT_LT(host.player.PositionMs(), 2000);
}

TEST_F(HeardPosition, is_the_place_in_each_round_of_a_loop) {
    sound = PlaceSound(300);
    host.player.settings().options().loops = true;
    start(file(sound.frames()));
    expectNear(listen(1500ms), 1, 300);
}

} // namespace
} // namespace corvina::test
