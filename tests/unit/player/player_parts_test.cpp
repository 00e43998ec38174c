// The parts of the player that know no device: texts, times, formats, the source list, the tags;
// and the devices as they describe themselves.

#include "player/AudioDevices.h"
#include "player/ErrorText.h"
#include "player/MakeSources.h"
#include "player/SourceList.h"
#include "player/TagTexts.h"
#include "player/TimeText.h"
#include "player/cDXCallback.h"
#include "sources/DecAPE.h"
#include "sources/DecCDA.h"
#include "sources/DecOGG.h"
#include "sources/DecSND.h"
#include "sources/DecWAV.h"
#include "sources/DecWMAMP3.h"
#include "stream/PcmFormat.h"
#include "stream/StrmTags.h"
#include "support/ErrorNumber.h"
#include "support/ScriptedSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---------------------------------------------------------------- ErrorText

TEST(ErrorText, the_controls_own_numbers_have_texts) {
    EXPECT_EQ(errorText(-101), L"Error opening file");
    EXPECT_EQ(errorText(-102), L"Not audio file");
    EXPECT_EQ(errorText(-201),
              L"Control already playing, use the PlayStop function to stop playing.");
    EXPECT_EQ(errorText(-202),
              L"Control already recording, use the RecordStop function to stop recording.");
}

TEST(ErrorText, any_other_number_gives_an_empty_text) {
    for (const std::int32_t number : {5, 0, 1, -1, 11, -100, -203, INT32_MAX, INT32_MIN})
        EXPECT_EQ(errorText(number), L"") << number;
}

// ---------------------------------------------------------------- TimeText

TEST(TimeText, hours_are_not_padded_but_minutes_and_seconds_are) {
    EXPECT_EQ(secondsAsTimeText(0), L"0:00:00");
    EXPECT_EQ(secondsAsTimeText(59), L"0:00:59");
    EXPECT_EQ(secondsAsTimeText(60), L"0:01:00");
    EXPECT_EQ(secondsAsTimeText(3599), L"0:59:59");
    EXPECT_EQ(secondsAsTimeText(3600), L"1:00:00");
    EXPECT_EQ(secondsAsTimeText(3725), L"1:02:05");
    EXPECT_EQ(secondsAsTimeText(36000), L"10:00:00");
    EXPECT_EQ(secondsAsTimeText(360000), L"100:00:00");
}

TEST(TimeText, negative_and_extreme_numbers_have_a_text) {
    EXPECT_EQ(secondsAsTimeText(-5), L"0:00:-05");
    EXPECT_EQ(secondsAsTimeText(-3725), L"-1:-02:-05");
    EXPECT_EQ(secondsAsTimeText(INT32_MAX), L"596523:14:07");
    EXPECT_EQ(secondsAsTimeText(INT32_MIN), L"-596523:-14:-08");
}

// ---------------------------------------------------------------- PcmFormat

TEST(PcmFormat, describes_pcm_of_that_shape) {
    const WAVEFORMATEX format = pcmFormat(44100, 2, 16);
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_PCM);
    EXPECT_EQ(format.nChannels, 2);
    EXPECT_EQ(format.nSamplesPerSec, 44100u);
    EXPECT_EQ(format.nAvgBytesPerSec, 176400u);
    EXPECT_EQ(format.nBlockAlign, 4);
    EXPECT_EQ(format.wBitsPerSample, 16);
    EXPECT_EQ(format.cbSize, 0);
}

TEST(PcmFormat, a_block_of_half_a_byte_is_rounded_to_the_even_number) {
    EXPECT_EQ(pcmFormat(8000, 1, 4).nBlockAlign, 0);  // 0.5
    EXPECT_EQ(pcmFormat(8000, 1, 12).nBlockAlign, 2); // 1.5
    EXPECT_EQ(pcmFormat(8000, 5, 4).nBlockAlign, 2);  // 2.5
    EXPECT_EQ(pcmFormat(8000, 2, 4).nBlockAlign, 1);
}

TEST(PcmFormat, numbers_of_0_are_taken_as_they_are) {
    EXPECT_EQ(pcmFormat(0, 0, 0).nBlockAlign, 0);
    EXPECT_EQ(pcmFormat(0, 0, 0).nAvgBytesPerSec, 0u);
}

TEST(PcmFormat, what_does_not_fit_its_field_raises_overflow) {
    EXPECT_EQ(errorNumberOf([] { static_cast<void>(pcmFormat(8000, 32767, 32)); }), 6);
    EXPECT_EQ(errorNumberOf([] { static_cast<void>(pcmFormat(INT32_MAX, 2, 16)); }), 6);
}

// ---------------------------------------------------------------- SourceList

// The list asks a source for its extensions each time, so each of these keeps its own.
class NamedSource final : public cSoundSTRM {
public:
    explicit NamedSource(std::vector<std::wstring> extensions)
        : extensions_(std::move(extensions)) {}
    cSoundInf& Info() override { throwObjectNotSet(); }
    std::vector<std::wstring> Extensions() override { return extensions_; }
    bool EndOfStream() override { return true; }
    bool Seekable() override { return false; }
    const WAVEFORMATEX* WFXPointer() override { return nullptr; }
    std::int32_t OpenSource(const std::wstring&) override { return 1; }
    std::int32_t CloseSource() override { return 0; }
    std::int32_t Read(void*, std::int32_t, std::int32_t&) override { return 1; }
    std::int32_t SeekTo(std::int32_t, std::int32_t&) override { return 0; }

private:
    std::vector<std::wstring> extensions_;
};

class Sources : public ::testing::Test {
protected:
    cSoundSTRM* add(std::vector<std::wstring> extensions) {
        auto source = std::make_unique<NamedSource>(std::move(extensions));
        cSoundSTRM* const added = source.get();
        list.AddSource(std::move(source));
        return added;
    }

    SourceList list;
    cSoundSTRM* ape = add({L"ape"});
    cSoundSTRM* wav = add({L"wav"});
    cSoundSTRM* snd = add({L"au", L"snd", L"aiff"});
    cSoundSTRM* again = add({L"wav"});
};

TEST(FileExtension, is_the_text_after_the_last_dot) {
    EXPECT_EQ(GetFileExtension(L"C:\\a.b\\song.tar.MP3"), L"MP3");
    EXPECT_EQ(GetFileExtension(L"song"), L"");
    EXPECT_EQ(GetFileExtension(L"song."), L"");
    EXPECT_EQ(GetFileExtension(L""), L"");
    EXPECT_EQ(GetFileExtension(L"C:\\a.b\\song"), L"b\\song") << "a dot of the folder counts too";
}

TEST_F(Sources, are_found_by_extension_in_any_case) {
    EXPECT_EQ(list.FindSourceForFile(L"song.WaV"), wav);
    EXPECT_EQ(list.FindSourceForFile(L"song.SND"), snd);
}

TEST_F(Sources, the_first_match_wins) {
    EXPECT_NE(list.FindSourceForFile(L"song.wav"), again);
}

TEST_F(Sources, a_part_of_an_extension_is_enough) {
    EXPECT_EQ(list.FindSourceForFile(L"song.wa"), wav);
    EXPECT_EQ(list.FindSourceForFile(L"song.a"), ape);
    EXPECT_EQ(list.FindSourceForFile(L"song.if"), snd);
    EXPECT_EQ(list.FindSourceForFile(L"song.;"), snd) << "the separator is searched too";
}

TEST_F(Sources, a_name_without_an_extension_goes_to_the_first_source) {
    EXPECT_EQ(list.FindSourceForFile(L"song"), ape);
    EXPECT_EQ(list.FindSourceForFile(L"song."), ape);
}

TEST_F(Sources, an_unknown_extension_finds_none) {
    EXPECT_EQ(list.FindSourceForFile(L"song.wave"), nullptr);
    EXPECT_EQ(list.FindSourceForFile(L"song.xyz"), nullptr);
}

TEST(NoSources, find_nothing) {
    EXPECT_EQ(SourceList().FindSourceForFile(L"song"), nullptr);
    EXPECT_THAT(SourceList().AllSupportedExtensions(), IsEmpty());
}

TEST_F(Sources, all_extensions_are_listed_once_in_order) {
    EXPECT_THAT(list.AllSupportedExtensions(), ElementsAre(L"ape", L"wav", L"au", L"snd", L"aiff"));
}

TEST_F(Sources, an_extension_that_is_part_of_an_earlier_one_is_left_out) {
    add({L"aif", L"voc"});
    EXPECT_THAT(list.AllSupportedExtensions(),
                ElementsAre(L"ape", L"wav", L"au", L"snd", L"aiff", L"voc"));
}

TEST_F(Sources, are_counted) {
    EXPECT_EQ(list.SourceCount(), 4u);
}

class RealSources : public ::testing::Test {
protected:
    RealSources() {
        for (auto& source : makeSources())
            list.AddSource(std::move(source));
    }

    template <typename Source>
    [[nodiscard]] bool serves(const std::wstring& file) const {
        return dynamic_cast<Source*>(list.FindSourceForFile(file)) != nullptr;
    }

    SourceList list;
};

TEST_F(RealSources, stand_in_the_order_in_which_an_extension_is_looked_for) {
    EXPECT_EQ(list.SourceCount(), 6u);
    EXPECT_THAT(list.AllSupportedExtensions(),
                ElementsAre(L"ape", L"ogg", L"wav", L"au", L"snd", L"aiff", L"aifc", L"voc", L"vox",
                            L"wma", L"mp3", L"wmv", L"cda"));
}

TEST_F(RealSources, serve_a_name_without_an_extension_with_the_first) {
    EXPECT_TRUE(serves<DecAPE>(L"song"));
}

TEST_F(RealSources, serve_their_extensions_in_any_case) {
    EXPECT_TRUE(serves<DecAPE>(L"song.APE"));
    EXPECT_TRUE(serves<DecOGG>(L"song.Ogg"));
    EXPECT_TRUE(serves<DecWAV>(L"song.wav"));
    EXPECT_TRUE(serves<DecSND>(L"song.aif"));
    EXPECT_TRUE(serves<DecWMAMP3>(L"song.MP3"));
    EXPECT_TRUE(serves<DecCDA>(L"D:\\Track01.cda"));
}

TEST(DXCallback, takes_no_notice_of_an_event) {
    cDXCallback callback;
    callback.OnEvent(1);
    EXPECT_THAT(callback.MyEvents(), IsEmpty());
}

// ---------------------------------------------------------------- TagTexts

class TagMapping : public ::testing::Test {
protected:
    TagMapping() {
        tags.AddTag(L"ARTIST", L"the artist");
        tags.AddTag(L"Album", L"the album");
        tags.AddTag(L"title", L"the title");
        tags.AddTag(L"year", L"1999");
        tags.AddTag(L"tracknumber", L"7");
        tags.AddTag(L"genre", L"the genre");
        tags.AddTag(L"comment", L"the comment");
        tags.AddTag(L"description", L"the description");
        tags.AddTag(L"", L"without a name");
    }

    StrmTags tags;
    TagTexts texts;
};

TEST_F(TagMapping, the_texts_are_found_by_name_in_any_case) {
    fillTagTexts(texts, L"song.mp3", &tags);
    EXPECT_EQ(texts.artist, L"the artist");
    EXPECT_EQ(texts.album, L"the album");
    EXPECT_EQ(texts.title, L"the title");
    EXPECT_EQ(texts.songYear, L"1999");
    EXPECT_EQ(texts.trackNumber, L"7");
    EXPECT_EQ(texts.genre, L"the genre");
}

TEST_F(TagMapping, the_comment_is_called_description_in_ogg_files_alone) {
    for (const wchar_t* name : {L"song.mp3", L"song.APE", L"song.Wma", L"MP3"}) {
        fillTagTexts(texts, name, &tags);
        EXPECT_EQ(texts.comment, L"the comment") << name;
    }
    fillTagTexts(texts, L"song.ogg", &tags);
    EXPECT_EQ(texts.comment, L"the description");
}

TEST_F(TagMapping, an_unknown_ending_clears_all_texts_and_sets_none) {
    for (const wchar_t* name : {L"song.flac", L"song.wav", L"", L"og"}) {
        fillTagTexts(texts, L"song.ogg", &tags);
        fillTagTexts(texts, name, &tags);
        for (const std::wstring* text : {&texts.artist, &texts.album, &texts.title, &texts.songYear,
                                         &texts.trackNumber, &texts.genre, &texts.comment})
            EXPECT_EQ(*text, L"") << name;
    }
}

TEST_F(TagMapping, of_two_tags_with_one_name_the_later_wins) {
    tags.AddTag(L"artist", L"another");
    fillTagTexts(texts, L"song.ogg", &tags);
    EXPECT_EQ(texts.artist, L"another");
}

TEST_F(TagMapping, texts_without_a_tag_are_cleared) {
    texts.artist = L"old";
    fillTagTexts(texts, L"song.ogg", nullptr);
    EXPECT_EQ(texts.artist, L"");
}

// ---------------------------------------------------------------- AudioDevices

struct DeviceQuery {
    bool output = false;
    UINT_PTR id = 0;
    UINT bytes = 0;
};
DeviceQuery query;
MMRESULT queryResult = 0;
char deviceName[32];

template <typename Caps>
MMRESULT answer(Caps* caps) {
    if (queryResult != 0)
        return queryResult;
    std::memcpy(caps->szPname, deviceName, sizeof deviceName);
    caps->vDriverVersion = 0x0510;
    caps->dwFormats = 0xFFFFF;
    caps->wChannels = 2;
    return 0;
}

MMRESULT WINAPI outCaps(UINT_PTR id, LPWAVEOUTCAPSA caps, UINT bytes) {
    query = {true, id, bytes};
    return answer(caps);
}
MMRESULT WINAPI inCaps(UINT_PTR id, LPWAVEINCAPSA caps, UINT bytes) {
    query = {false, id, bytes};
    return answer(caps);
}
UINT WINAPI outCount() {
    return 3;
}
UINT WINAPI inCount() {
    return 1;
}

class AudioDevices : public ::testing::Test {
protected:
    AudioDevices() {
        queryResult = 0;
        query = {};
        std::memset(deviceName, 0, sizeof deviceName);
        std::strcpy(deviceName, "Loudspeaker");
        wave.outGetNumDevs = &outCount;
        wave.inGetNumDevs = &inCount;
        wave.outGetDevCaps = &outCaps;
        wave.inGetDevCaps = &inCaps;
    }
    std::int32_t describe(std::int32_t direction, std::int32_t index = 0) {
        return describeAudioDevice(wave, index, direction, device);
    }

    WaveApi wave;
    AudioDevice device;
};

TEST_F(AudioDevices, inputs_are_counted_for_1_and_outputs_for_anything_else) {
    EXPECT_EQ(countAudioDevices(wave, AudioDirection::input), 1);
    for (const std::int32_t direction : {2, 0, 3, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(countAudioDevices(wave, direction), 3) << direction;
}

TEST_F(AudioDevices, outputs_are_described_for_2_and_inputs_for_anything_else) {
    EXPECT_EQ(describe(AudioDirection::output), 0);
    EXPECT_TRUE(query.output);
    for (const std::int32_t direction : {1, 0, 3, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(describe(direction), 0);
        EXPECT_FALSE(query.output) << direction;
    }
}

TEST_F(AudioDevices, the_records_are_passed_with_the_sizes_52_and_46) {
    describe(AudioDirection::output);
    EXPECT_EQ(query.bytes, 52u);
    describe(AudioDirection::input);
    EXPECT_EQ(query.bytes, 46u);
}

TEST_F(AudioDevices, any_index_is_passed_on) {
    for (const std::int32_t index : {0, 5, -1, INT32_MAX, INT32_MIN}) {
        describe(AudioDirection::output, index);
        EXPECT_EQ(query.id, static_cast<UINT_PTR>(index));
    }
}

TEST_F(AudioDevices, the_description_names_driver_channels_and_formats) {
    std::strcpy(deviceName + 12, "behind the end");
    describe(AudioDirection::output);
    EXPECT_EQ(device.name, L"Loudspeaker");
    EXPECT_EQ(device.driverVersion, L"1296");
    EXPECT_EQ(device.channels, 2);
    EXPECT_EQ(device.formats, 0xFFFFF);
}

TEST_F(AudioDevices, a_failed_query_fills_empty_values_over_what_was_there) {
    for (const std::int32_t direction : {AudioDirection::output, AudioDirection::input}) {
        queryResult = 0;
        describe(direction);
        queryResult = MMSYSERR_BADDEVICEID;
        EXPECT_EQ(describe(direction), MMSYSERR_BADDEVICEID);
        EXPECT_EQ(device.name, L"");
        EXPECT_EQ(device.driverVersion, L"0");
        EXPECT_EQ(device.channels, 0);
        EXPECT_EQ(device.formats, 0);
    }
}

TEST_F(AudioDevices, a_name_that_fills_its_field_raises_5) {
    std::memset(deviceName, 'x', sizeof deviceName);
    EXPECT_EQ(errorNumberOf([&] { describe(AudioDirection::output); }), 5);
    EXPECT_EQ(errorNumberOf([&] { describe(AudioDirection::input); }), 5);
    deviceName[31] = '\0';
    EXPECT_EQ(describe(AudioDirection::output), 0);
    EXPECT_EQ(device.name.size(), 31u);
}

TEST(RealAudioDevices, an_index_beyond_the_last_is_refused) {
    AudioDevice device;
    const std::int32_t outputs = countAudioDevices(systemWaveApi, AudioDirection::output);
    EXPECT_EQ(describeAudioDevice(systemWaveApi, outputs, AudioDirection::output, device),
              MMSYSERR_BADDEVICEID);
    EXPECT_EQ(device.name, L"");
    EXPECT_EQ(device.driverVersion, L"0");
}

TEST(RealAudioDevices, each_one_has_a_name_and_channels) {
    for (const std::int32_t direction : {AudioDirection::input, AudioDirection::output}) {
        const std::int32_t count = countAudioDevices(systemWaveApi, direction);
        for (std::int32_t i = 0; i < count; ++i) {
            AudioDevice device;
            EXPECT_EQ(describeAudioDevice(systemWaveApi, i, direction, device), 0);
            EXPECT_NE(device.name, L"");
            EXPECT_GT(device.channels, 0);
        }
    }
}

} // namespace
} // namespace corvina::test
