// The player: opening files, and the properties of an opened file.

#include "PlaybackFixture.h"
#include "support/ErrorNumber.h"

#include <cstring>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PlayerTest : public Playback {
protected:
    // A player that reads real files.
    static PlayerPlatform realSources() {
        return {fakeWaveApi, systemWindowApi, fakeAcmApi, systemFileApi, &makeSources};
    }
};

// A source that refuses every file of its kind.
class RefusingSource final : public cSoundSTRM {
public:
    cSoundInf& Info() override { throwObjectNotSet(); }
    std::vector<std::wstring> Extensions() override { return {L"test"}; }
    bool EndOfStream() override { return true; }
    bool Seekable() override { return false; }
    const WAVEFORMATEX* WFXPointer() override { return nullptr; }
    std::int32_t OpenSource(const std::wstring&) override { return SourceResult::notOpen; }
    std::int32_t CloseSource() override { return SourceResult::done; }
    std::int32_t Read(void*, std::int32_t, std::int32_t&) override { return SourceResult::notOpen; }
    std::int32_t SeekTo(std::int32_t, std::int32_t&) override { return SourceResult::notOpen; }
};

std::vector<std::unique_ptr<cSoundSTRM>> makeRefusingAndScripted() {
    std::vector<std::unique_ptr<cSoundSTRM>> sources;
    sources.push_back(std::make_unique<RefusingSource>());
    sources.push_back(std::make_unique<ScriptedSource>());
    return sources;
}

TEST_F(PlayerTest, a_file_is_opened_by_the_source_of_its_extension) {
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
    EXPECT_THAT(script.log, ElementsAre(L"Open song.test"));
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(PlayerTest, a_missing_file_returns_1) {
    EXPECT_EQ(host.player.OpenAudioFile(folder.path() + L"\\no.test"), 1);
    EXPECT_THAT(host.events, ElementsAre(L"|1|File doen't exist"));
    EXPECT_THAT(script.log, IsEmpty());
}

TEST_F(PlayerTest, a_missing_file_leaves_the_opened_one_open) {
    host.player.OpenAudioFile(file);
    host.player.OpenAudioFile(L"no such file");
    EXPECT_EQ(host.player.Info_Samplerate(), 44100);
}

TEST_F(PlayerTest, an_unknown_format_returns_2_and_raises_the_number_1) {
    EXPECT_EQ(host.player.OpenAudioFile(folder.write(L"song.xyz", {0})), 2);
    EXPECT_THAT(host.events, ElementsAre(L"|1|Format not supported"));
}

TEST_F(PlayerTest, a_file_that_cannot_be_opened_returns_3_and_raises_the_number_1) {
    script.openResult = 4;
    EXPECT_EQ(host.player.OpenAudioFile(file), 3);
    EXPECT_THAT(host.events, ElementsAre(L"|1|Could not open file"));
    EXPECT_EQ(host.player.Info_Samplerate(), 44100) << "its source stays the current one";
}

TEST_F(PlayerTest, opening_closes_the_file_before) {
    host.player.OpenAudioFile(file);
    host.player.OpenAudioFile(folder.write(L"next.test", {0}));
    EXPECT_THAT(script.log, ElementsAre(L"Open song.test", L"Close", L"Open next.test"));
}

TEST_F(PlayerTest, an_unknown_format_closes_the_file_before_and_leaves_none_open) {
    host.player.OpenAudioFile(file);
    host.player.OpenAudioFile(folder.write(L"song.xyz", {0}));
    EXPECT_THAT(script.log, ElementsAre(L"Open song.test", L"Close"));
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(host.player.Info_Bitrate()); }), 91);
}

TEST_F(PlayerTest, PlayStart_passes_the_result_of_opening_on_without_a_second_event) {
    EXPECT_EQ(host.player.PlayStart(L"missing.test", -1, 0), 1);
    EXPECT_EQ(host.player.PlayStart(folder.write(L"song.xyz", {0}), -1, 0), 2);
    script.openResult = 1;
    EXPECT_EQ(start(), 3);
    EXPECT_THAT(host.events, ElementsAre(L"|1|File doen't exist", L"|1|Format not supported",
                                         L"|1|Could not open file"));
    EXPECT_THAT(fakeWave.log, IsEmpty());
    EXPECT_FALSE(host.player.IsPlaying());
}

TEST_F(PlayerTest, hostile_names_find_no_file) {
    const std::wstring names[] = {L"",
                                  std::wstring(1, L'\0'),
                                  file + std::wstring(1, L'\0') + L"x",
                                  std::wstring(259, L'a'),
                                  std::wstring(260, L'a'),
                                  std::wstring(261, L'a'),
                                  std::wstring(32768, L'a'),
                                  folder.path(),
                                  folder.path() + L"\\",
                                  L"\x4e2d\x6587.test"};
    for (const std::wstring& name : names)
        EXPECT_EQ(host.player.PlayStart(name, -1, 0), 1) << name.size();
}

TEST_F(PlayerTest, a_real_wav_file_is_opened_and_described) {
    BarePlayer real(realSources());
    ASSERT_EQ(real.init(), 0);
    const auto format = pcm(22050, 1, 16);
    const std::wstring wav = folder.write(L"a.WAV", plainWav(format, noise(22050)));
    ASSERT_EQ(real.player.OpenAudioFile(wav), 0);
    EXPECT_EQ(real.player.Info_Samplerate(), 22050);
    EXPECT_EQ(real.player.Info_Channels(), 1);
    EXPECT_EQ(real.player.Info_BitsPerSample(), 16);
    EXPECT_EQ(real.player.Info_Bitrate(), 22050 * 16);
    EXPECT_DOUBLE_EQ(real.player.Info_Duration(), 0.5);
}

TEST_F(PlayerTest, information_without_an_opened_file_raises_91) {
    const Player& player = host.player;
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Bitrate()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_BitsPerSample()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Channels()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Duration()); }), 91);
    EXPECT_EQ(errorNumberOf([&] { static_cast<void>(player.Info_Samplerate()); }), 91);
}

TEST_F(PlayerTest, the_duration_is_in_seconds_with_fraction) {
    script.durationMs = 1234;
    host.player.OpenAudioFile(file);
    EXPECT_DOUBLE_EQ(host.player.Info_Duration(), 1.234);
}

TEST_F(PlayerTest, tags_without_an_opened_file_raise_91_and_clear_the_texts) {
    host.player.tagTexts().title = L"old";
    EXPECT_EQ(errorNumberOf([&] { host.player.GetID3Tags(L"song.ogg"); }), 91);
    EXPECT_EQ(host.player.tagTexts().title, L"");
}

TEST_F(PlayerTest, tags_are_those_of_the_opened_file_under_the_names_of_the_given_one) {
    script.tags = {{L"Title", L"the title"}, {L"description", L"the comment"}};
    BarePlayer tagged(fakePlatform());
    tagged.init();
    tagged.player.OpenAudioFile(file);
    EXPECT_EQ(tagged.player.GetID3Tags(L"nothing of that name.ogg"), 0);
    EXPECT_EQ(tagged.player.tagTexts().title, L"the title");
    EXPECT_EQ(tagged.player.tagTexts().comment, L"the comment");
    EXPECT_EQ(tagged.player.GetID3Tags(L"song.flac"), 0);
    EXPECT_EQ(tagged.player.tagTexts().title, L"");
}

TEST_F(PlayerTest, the_position_is_0_without_an_opened_file) {
    EXPECT_EQ(host.player.PositionGet(), 0);
    EXPECT_EQ(host.player.PositionSet(5), 0);
    EXPECT_THAT(script.log, IsEmpty());
}

TEST_F(PlayerTest, the_position_is_rounded_to_whole_seconds_ties_to_even) {
    host.player.OpenAudioFile(file);
    const std::pair<std::int32_t, std::int32_t> cases[] = {
        {0, 0},    {499, 0},  {500, 0},  {501, 1},
        {1500, 2}, {2500, 2}, {2501, 3}, {INT32_MAX, 2147484}};
    for (const auto& [milliseconds, seconds] : cases) {
        script.positionMs = milliseconds;
        EXPECT_EQ(host.player.PositionGet(), seconds) << milliseconds;
    }
}

TEST_F(PlayerTest, seeking_goes_to_whole_seconds) {
    host.player.OpenAudioFile(file);
    script.log.clear();
    for (const std::int32_t value : {3, 0, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(host.player.PositionSet(value), 0);
    EXPECT_THAT(script.log, ElementsAre(L"Seek 3 1", L"Seek 0 1", L"Seek -1 1",
                                        L"Seek 2147483647 1", L"Seek -2147483648 1"));
}

TEST_F(PlayerTest, seeking_out_of_range_returns_0) {
    script.seekResult = SourceResult::outOfRange;
    host.player.OpenAudioFile(file);
    EXPECT_EQ(host.player.PositionSet(1000), 0);
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(PlayerTest, a_file_that_one_source_refuses_is_opened_by_another_of_its_kind) {
    BarePlayer two(
        {fakeWaveApi, systemWindowApi, fakeAcmApi, systemFileApi, &makeRefusingAndScripted});
    ASSERT_EQ(two.init(), 0);
    EXPECT_EQ(two.player.OpenAudioFile(file), 0);
    EXPECT_THAT(two.events, IsEmpty());
    EXPECT_EQ(two.player.Info_Samplerate(), 44100);
    script.data = noise(buffer * 3);
    two.player.settings().options().nextFile = file;
    ASSERT_EQ(two.player.PlayStart(file, -1, 0), 0);
    dispatchWaitingMessages();
    playOut();
    EXPECT_EQ(std::count(two.progress.begin(), two.progress.end(), L"Next song.test"), 1);
    EXPECT_EQ(two.events, endOfPlayback);
}

TEST_F(PlayerTest, the_length_in_milliseconds_is_exact_and_does_not_go_by_the_header) {
    BarePlayer real(realSources());
    ASSERT_EQ(real.init(), 0);
    WAVEFORMATEX format = pcm(8000, 1, 8);
    format.nAvgBytesPerSec = 4000;
    ASSERT_EQ(real.player.OpenAudioFile(folder.write(L"a.wav", plainWav(format, Bytes(80'000)))),
              0);
    EXPECT_EQ(real.player.DurationMs(), 10'000);
}

TEST_F(PlayerTest, the_length_of_a_file_without_a_rate_is_what_its_header_says) {
    BarePlayer real(realSources());
    ASSERT_EQ(real.init(), 0);
    WAVEFORMATEX format = pcm(8000, 1, 8);
    format.nSamplesPerSec = 0;
    ASSERT_EQ(real.player.OpenAudioFile(folder.write(L"a.wav", plainWav(format, Bytes(80'000)))),
              0);
    EXPECT_EQ(real.player.DurationMs(), 10'000);
}

TEST_F(PlayerTest, the_extensions_are_patterns_of_all_sources_without_repetition) {
    script.extensions = {L"test", L"other"};
    EXPECT_EQ(host.player.Extensions(), L"*.test;*.other");
    const Player two(
        host, nullptr,
        {fakeWaveApi, systemWindowApi, fakeAcmApi, systemFileApi, &makeRefusingAndScripted});
    EXPECT_EQ(two.Extensions(), L"*.test;*.other") << "that both of its sources read";
}

TEST_F(PlayerTest, a_file_whose_playback_did_not_start_is_closed_by_the_next_one) {
    fakeWave.faults.arm("waveOutOpen", 1);
    EXPECT_NE(start(), 0);
    script.log.clear();
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
    EXPECT_THAT(script.log, ElementsAre(L"Close", L"Open song.test"));
    EXPECT_EQ(script.sources, 1);
}

TEST_F(PlayerTest, a_file_opened_before_the_end_is_reported_has_a_source_of_its_own) {
    script.data = noise(buffer * 3);
    startAndFill();
    fakeWave.finishAll();
    handleReturnedBuffers();
    ASSERT_FALSE(fakeWave.open);
    EXPECT_EQ(host.player.OpenAudioFile(file), 0);
    EXPECT_EQ(script.sources, 2);
    dispatchWaitingMessages();
    EXPECT_EQ(host.events, endOfPlayback);
    EXPECT_EQ(script.sources, 1);
    EXPECT_EQ(host.player.Info_Samplerate(), 44100);
}

UINT WINAPI countThree() {
    return 3;
}
// The first device does not say its name.
MMRESULT WINAPI nameDevices(UINT_PTR index, LPWAVEOUTCAPSA caps, UINT) {
    if (index == 0)
        return MMSYSERR_NODRIVER;
    *caps = {};
    std::strcpy(caps->szPname, index == 1 ? "Loudspeaker" : "Headphones");
    return MMSYSERR_NOERROR;
}

// Its name fills the field, which GetDetailsDevice raises an error for.
MMRESULT WINAPI nameOnlyTheLast(UINT_PTR index, LPWAVEOUTCAPSA caps, UINT size) {
    if (index != 0)
        return nameDevices(index, caps, size);
    *caps = {};
    std::memset(caps->szPname, 'x', sizeof caps->szPname);
    return MMSYSERR_NOERROR;
}

class NamedDevices : public PlayerTest {
protected:
    explicit NamedDevices(decltype(WaveApi::outGetDevCaps) name = &nameDevices)
        : other{{named(name), systemWindowApi, fakeAcmApi, systemFileApi, &makeScriptedSources}} {}

    std::int32_t startOn(const wchar_t* device) {
        EXPECT_EQ(other.init(), 0);
        other.player.settings().options().device = device;
        const std::int32_t result = other.player.PlayStart(file, -1, 0);
        other.player.shutdown();
        dispatchWaitingMessages();
        return result;
    }

private:
    const WaveApi& named(decltype(WaveApi::outGetDevCaps) name) {
        wave.outGetNumDevs = &countThree;
        wave.outGetDevCaps = name;
        return wave;
    }

    WaveApi wave = fakeWaveApi;
    BarePlayer other;
};

struct OneNamedDevice : NamedDevices {
    OneNamedDevice() : NamedDevices(&nameOnlyTheLast) {}
};

TEST_F(OneNamedDevice, is_found_behind_others_whose_names_cannot_be_read) {
    EXPECT_EQ(startOn(L"Headphones"), 0);
    EXPECT_EQ(fakeWave.device, 2u);
    EXPECT_EQ(startOn(L"not there"), MMSYSERR_BADDEVICEID);
}

TEST_F(NamedDevices, are_opened_by_their_numbers) {
    EXPECT_EQ(startOn(L"Headphones"), 0);
    EXPECT_EQ(fakeWave.device, 2u);
    EXPECT_EQ(startOn(L"Loudspeaker"), 0);
    EXPECT_EQ(fakeWave.device, 1u);
}

} // namespace
} // namespace corvina::test
