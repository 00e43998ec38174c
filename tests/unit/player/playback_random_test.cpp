// Ended comes exactly once for every successful start, whatever a host does and whatever fails.

#include "PlaybackFaultsFixture.h"

#include <random>

namespace corvina::test {
namespace {

class RandomHost : public PlaybackFaults, public testing::WithParamInterface<unsigned> {
protected:
    RandomHost() {
        script.moves = true;
        script.durationMs = 1000;
        next = folder.write(L"next.test", {0});
        script.otherData[L"next.test"] = noise(buffer * 3, 5);
        other = folder.write(L"other.test", {0});
        script.otherData[L"other.test"] = noise(buffer * 2, 6);
        script.otherFormats[L"other.test"] = pcm(22050, 1, 16);
        host.onErr = [this](const std::wstring&) { perhapsAct(); };
        host.onDonePlay = [this] { perhapsAct(); };
        host.onProgress = [this](const std::wstring&) { perhapsAct(); };
    }

    [[nodiscard]] unsigned below(unsigned count) { return random() % count; }
    // Handlers act too, but not without end.
    void perhapsAct() {
        if (depth < 3 && below(8) == 0)
            act();
    }
    void begin() {
        try {
            if (start() == 0)
                ++starts;
        } catch (const RuntimeError&) {
        }
    }
    // What is refused has changed nothing.
    template <typename Question>
    static void asked(Question question) {
        try {
            (void)question();
        } catch (const RuntimeError&) {
        }
    }
    void askForFacts() {
        FileFacts& facts = host.player.facts();
        asked([&] { return facts.formatName() + facts.tagText(L"TITLE"); });
        asked([&] { return facts.tagName(static_cast<std::int32_t>(below(3))); });
        asked([&] { return facts.picture(); });
    }
    // Everything that only asks.
    void ask() {
        Player& player = host.player;
        switch (below(12)) {
        case 0:
            asked([&] { return player.PositionMs() + player.DurationMs(); });
            break;
        case 1:
            asked([&] { return player.Level(static_cast<std::int32_t>(below(4))); });
            break;
        case 2:
            asked([&] { return player.PositionGet(); });
            break;
        case 3:
            asked([&] { return player.Info_Bitrate() + player.Info_BitsPerSample(); });
            break;
        case 4:
            asked([&] { return player.Info_Duration() + player.Info_Samplerate(); });
            break;
        case 5:
            asked([&] { return player.GetID3Tags(L"ogg"); });
            break;
        case 6:
            if (below(8) == 0) // it reads the file
                askForFacts();
            break;
        case 7:
            asked([&] { return player.DurationMs() + player.State(); });
            break;
        case 8:
            asked([&] { return player.Info_Channels(); });
            break;
        case 9:
            asked([&] { return player.Extensions() + player.NextFile(); });
            break;
        case 10:
            asked([&] {
                AudioDevice device;
                return player.NumOfAudioDevices(2) + player.GetDetailsDevice(0, 2, device);
            });
            break;
        default:
            asked([&] { return player.AudioDataOut() + player.IsPausedOut() + player.DonePlay(); });
        }
    }
    void failOtherwise() {
        static constexpr const char* codec[] = {"acmStreamOpen", "acmStreamConvert",
                                                "acmStreamPrepareHeader", "acmStreamSize"};
        static constexpr const char* window[] = {"PostMessage", "SetTimer", "KillTimer"};
        const int nth = 1 + static_cast<int>(below(6));
        switch (below(3)) {
        case 0:
            fakeAcm.faults.arm(codec[below(std::size(codec))], nth, once);
            break;
        case 1:
            windowFaults.arm(window[below(std::size(window))], nth, once);
            break;
        default:
            script.openResult = static_cast<std::int32_t>(below(2));
        }
    }
    void failOnce() {
        static constexpr const char* calls[] = {
            "waveOutOpen",  "waveOutPrepareHeader", "waveOutWrite",   "waveOutUnprepareHeader",
            "waveOutReset", "waveOutClose",         "waveOutRestart", "waveOutGetPosition"};
        fakeWave.faults.arm(calls[below(std::size(calls))], 1 + static_cast<int>(below(10)),
                            below(4) == 0 ? forever : once);
    }
    void change() {
        PlaybackOptions& options = host.player.settings().options();
        switch (below(10)) {
        case 6:
            options.sound.mute = !options.sound.mute;
            host.player.soundChanged();
            break;
        case 7:
            host.player.settings().setBalance(static_cast<std::int32_t>(below(201)) - 100);
            host.player.soundChanged();
            break;
        case 8:
            host.player.settings().setBandGain(static_cast<std::int32_t>(1 + below(10)),
                                               static_cast<float>(below(25)) - 12);
            host.player.soundChanged();
            break;
        case 9:
            options.device = below(2) ? L"no such device" : L"";
            break;
        case 0:
            options.loops = !options.loops;
            break;
        case 1:
            options.nextFile = below(2) ? next : other;
            break;
        case 2:
            options.cleanEnd = !options.cleanEnd;
            break;
        case 3:
            options.recovers = !options.recovers;
            break;
        case 4:
            options.sound.volume = static_cast<std::int32_t>(below(101));
            host.player.soundChanged();
            break;
        default:
            options.positionInterval = static_cast<std::int32_t>(below(2) * 50);
            host.player.intervalChanged();
        }
    }
    void act() {
        ++depth;
        switch (below(20)) {
        case 16:
            ask();
            break;
        case 17:
            failOtherwise();
            break;
        case 18:
            host.player.PositionSet(static_cast<std::int32_t>(below(3)));
            break;
        case 19:
            host.player.OpenAudioFile(below(2) ? L"missing.test" : L"missing.unknown");
            break;
        case 0:
        case 1:
            begin();
            break;
        case 2:
            host.player.PlayStop();
            break;
        case 3:
            host.player.PlayPause();
            break;
        case 4:
            host.player.PlayUnPause();
            break;
        case 5:
            host.player.OpenAudioFile(below(2) ? next : file);
            break;
        case 6:
            try {
                host.player.setPositionMs(static_cast<std::int32_t>(below(1000)));
            } catch (const RuntimeError&) {
            }
            break;
        case 7:
            host.player.DeInit();
            host.init();
            break;
        case 8:
            failOnce();
            break;
        case 9:
            disarm();
            break;
        case 10:
            change();
            break;
        case 11:
            tickTimers();
            break;
        case 12:
            script.onRead =
                below(3) == 0 ? std::function<void()>([] { throwOverflow(); }) : nullptr;
            break;
        case 13:
            ::PostMessageA(host.window.handle(), below(2) ? MM_WOM_DONE : MM_WOM_CLOSE, 0, 0);
            break;
        default:
            fakeWave.finishOne();
            dispatchWaitingMessages();
        }
        --depth;
    }
    void disarm() {
        fakeWave.faults.disarm();
        fakeAcm.faults.disarm();
        windowFaults.disarm();
        script.openResult = 0;
    }
    // The player is left, and a device that never closed is replaced.
    void leave() {
        disarm();
        script.onRead = nullptr;
        host.player.DeInit();
        dispatchWaitingMessages();
        host.player.DeInit();
        fakeWave.open = false;
        fakeWave.queued.clear();
        host.player.settings().options() = {};
        host.init();
    }

    std::mt19937 random{GetParam()};
    std::wstring next;
    std::wstring other;
    int depth = 0;
    long starts = 0;
};

TEST_P(RandomHost, gets_one_Ended_for_each_start_in_a_thousand_sequences) {
    script.data = noise(buffer * 4 + 500);
    long all = 0;
    for (int sequence = 0; sequence < 1000; ++sequence) {
        host.progress.clear();
        host.events.clear();
        fakeWave.written.clear();
        fakeWave.log.clear();
        script.log.clear();
        windowLog.clear();
        stateLog.clear();
        fakeAcm.openings.clear();
        fakeAcm.conversions.clear();
        fakeAcm.measured.clear();
        starts = 0;
        begin();
        const unsigned steps = 5 + below(25);
        for (unsigned step = 0; step < steps; ++step)
            act();
        leave();
        const auto ends =
            std::count_if(host.progress.begin(), host.progress.end(),
                          [](const std::wstring& event) { return event.starts_with(L"Ended"); });
        ASSERT_EQ(ends, starts) << "sequence " << sequence;
        ASSERT_EQ(host.player.State(), PLAY_STOPPED) << "sequence " << sequence;
        all += starts;
    }
    EXPECT_GT(all, 1000);
    host.onErr = nullptr;
    host.onDonePlay = nullptr;
    host.onProgress = nullptr;
    expectTheNextPlaybackWorks();
}

INSTANTIATE_TEST_SUITE_P(TenTimes, RandomHost, testing::Range(12345u, 12355u));

} // namespace
} // namespace corvina::test
