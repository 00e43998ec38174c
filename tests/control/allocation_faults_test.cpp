// Every published member of both controls, and what containers call most, when any one of its
// allocations fails: it returns that there is no memory or does without, and works the next time.

#include "AllocationFaults.h"
#include "support/PictureBytes.h"

#include <string>

using namespace corvina;
using namespace corvina::test;

namespace {

TEST_F(AllocationFaults, of_the_players_members_are_survived) {
    eachFails("OpenAudioFile", [&] { return player()->OpenAudioFile(file_.get(), &number_); });
    ASSERT_EQ(0, number_);
    eachTextFails("Tag_Title", &_cPlayer::get_Tag_Title, &_cPlayer::put_Tag_Title);
    eachTextFails("Tag_Album", &_cPlayer::get_Tag_Album, &_cPlayer::put_Tag_Album);
    eachTextFails("Tag_Artist", &_cPlayer::get_Tag_Artist, &_cPlayer::put_Tag_Artist);
    eachTextFails("Tag_SongYear", &_cPlayer::get_Tag_SongYear, &_cPlayer::put_Tag_SongYear);
    eachTextFails("Tag_Genre", &_cPlayer::get_Tag_Genre, &_cPlayer::put_Tag_Genre);
    eachTextFails("Tag_Comment", &_cPlayer::get_Tag_Comment, &_cPlayer::put_Tag_Comment);
    eachTextFails("Tag_TrackNumber", &_cPlayer::get_Tag_TrackNumber,
                  &_cPlayer::put_Tag_TrackNumber);
    eachGetFails("Info_Bitrate", &_cPlayer::get_Info_Bitrate);
    eachGetFails("Info_BitsPerSample", &_cPlayer::get_Info_BitsPerSample);
    eachGetFails("Info_Channels", &_cPlayer::get_Info_Channels);
    eachGetFails("Info_Duration", &_cPlayer::get_Info_Duration);
    eachGetFails("Info_Samplerate", &_cPlayer::get_Info_Samplerate);
    eachGetFails("AudioDataOut", &_cPlayer::get_AudioDataOut);
    eachGetFails("IsPausedOut", &_cPlayer::IsPausedOut);
    eachGetFails("DonePlay", &_cPlayer::DonePlay);
    eachGetFails("IsPlaying", &_cPlayer::IsPlaying);
    eachGetFails("PositionGet", &_cPlayer::PositionGet);
    eachGetFails("PlayPause", &_cPlayer::PlayPause);
    eachGetFails("PlayUnPause", &_cPlayer::PlayUnPause);
    eachFails("GetID3Tags", [&] { return player()->GetID3Tags(file_.get(), &number_); });
    eachFails("PositionSet", [&] { return player()->PositionSet(0, &number_); });
    eachFails("ErrorTextOut", [&] {
        Bstr value;
        return player()->ErrorTextOut(-201, value.put());
    });
    eachFails("GetSecondsAsTimeString", [&] {
        Bstr value;
        return player()->GetSecondsAsTimeString(100000, value.put());
    });
    eachFails("NumOfAudioDevices", [&] { return player()->NumOfAudioDevices(2, &number_); });
    eachFails("GetDetailsDevice", [&] {
        AudioDeviceDetails details{};
        const HRESULT result = player()->GetDetailsDevice(0, 2, &details, &number_);
        ::SysFreeString(details.DeviceName);
        ::SysFreeString(details.DeviceDriver);
        return result;
    });
    EXPECT_GT(failures_, 40);
}

TEST_F(AllocationFaults, of_the_players_settings_are_survived) {
    eachFails("OpenAudioFile", [&] { return player()->OpenAudioFile(file_.get(), &number_); });
    eachFails("Volume", [&] { return player()->put_Volume(50); });
    eachFails("Mute", [&] { return player()->put_Mute(VARIANT_TRUE); });
    eachFails("Balance", [&] { return player()->put_Balance(-5); });
    eachFails("EqualizerGain", [&] { return player()->put_EqualizerGain(1, 3); });
    eachFails("Looping", [&] { return player()->put_Looping(VARIANT_FALSE); });
    eachFails("PositionMs", [&] { return player()->put_PositionMs(0); });
    eachFails("PositionInterval", [&] { return player()->put_PositionInterval(50); });
    eachFails("Recover", [&] { return player()->put_Recover(VARIANT_TRUE); });
    eachFails("CleanEnd", [&] { return player()->put_CleanEnd(VARIANT_TRUE); });
    eachTextFails("NextFile", &_cPlayer::get_NextFile, &_cPlayer::put_NextFile);
    eachTextFails("Device", &_cPlayer::get_Device, &_cPlayer::put_Device);
    eachGetFails("Volume", &_cPlayer::get_Volume);
    eachGetFails("Mute", &_cPlayer::get_Mute);
    eachGetFails("Balance", &_cPlayer::get_Balance);
    eachGetFails("Looping", &_cPlayer::get_Looping);
    eachGetFails("PositionMs", &_cPlayer::get_PositionMs);
    eachGetFails("DurationMs", &_cPlayer::get_DurationMs);
    eachGetFails("State", &_cPlayer::get_State);
    eachGetFails("PositionInterval", &_cPlayer::get_PositionInterval);
    eachGetFails("Recover", &_cPlayer::get_Recover);
    eachGetFails("CleanEnd", &_cPlayer::get_CleanEnd);
    eachFails("EqualizerGain", [&] {
        float gain = 0;
        return player()->get_EqualizerGain(1, &gain);
    });
    eachFails("Level", [&] { return player()->get_Level(1, &number_); });
    eachFails("Extensions", [&] {
        Bstr value;
        return player()->get_Extensions(value.put());
    });
    EXPECT_GT(failures_, 40);
}

// A value out of range has words, which need memory too.
TEST_F(AllocationFaults, of_what_refuses_a_value_are_survived) {
    eachFails("Volume", [&] {
        const HRESULT result = player()->put_Volume(101);
        return result == static_cast<HRESULT>(0x800A0000 + 380) ? S_FALSE : result;
    });
    eachFails("FramesPerSecond", [&] {
        const HRESULT result = graph()->put_FramesPerSecond(-1);
        return result == static_cast<HRESULT>(0x800A0000 + 380) ? S_FALSE : result;
    });
}

TEST_F(AllocationFaults, of_a_start_with_every_setting_are_survived) {
    ASSERT_EQ(S_OK, player()->put_EqualizerGain(1, 3));
    ASSERT_EQ(S_OK, player()->put_Volume(0));
    ASSERT_EQ(S_OK, player()->put_PositionInterval(10));
    ASSERT_EQ(S_OK, player()->put_CleanEnd(VARIANT_TRUE));
    eachFails("PlayStart with a NextFile", [&] {
        (void)player()->put_NextFile(file_.get());
        const HRESULT started = player()->PlayStart(file_.get(), -1, 0, &number_);
        dispatchWaitingMessages();
        (void)player()->PlayStop(&number_);
        return started;
    });
    VARIANT_BOOL playing = VARIANT_TRUE;
    EXPECT_TRUE(pumpUntil([&] { return player()->IsPlaying(&playing) == S_OK && !playing; }));
}

// Each is read anew from a file that was opened anew.
TEST_F(AllocationFaults, of_the_tags_are_survived) {
    const Bytes tag = id3Tag(joined({id3Text("TIT2", L"A title of more letters than fit in place"),
                                     id3Picture(3, bmp(8, 8, 0xFF))}));
    const Bstr file(folder_.write(L"tagged.wav", WavBytes()
                                                     .format(pcm(44100, 2, 16))
                                                     .chunk("data", Bytes(8000))
                                                     .chunk("id3 ", tag)
                                                     .bytes()));
    const auto eachReadFails = [&](const char* member, auto get) {
        eachFails(member, [&] {
            const HRESULT opened = player()->OpenAudioFile(file.get(), &number_);
            return FAILED(opened) ? opened : get();
        });
    };
    eachReadFails("TagText", [&] {
        Bstr value;
        return player()->get_TagText(Bstr(L"TITLE").get(), value.put());
    });
    eachReadFails("TagCount", [&] { return player()->get_TagCount(&number_); });
    eachReadFails("TagName", [&] {
        Bstr value;
        return player()->get_TagName(1, value.put());
    });
    eachReadFails("FormatName", [&] {
        Bstr value;
        return player()->get_FormatName(value.put());
    });
    eachReadFails("Picture", [&] {
        ComPtr<IPictureDisp> picture;
        return player()->get_Picture(picture.put());
    });
    EXPECT_EQ(S_OK, player()->get_TagCount(&number_));
    EXPECT_EQ(1, number_);
    ComPtr<IPictureDisp> picture;
    EXPECT_EQ(S_OK, player()->get_Picture(picture.put()));
    EXPECT_TRUE(picture);
}

TEST_F(AllocationFaults, of_the_graphs_styles_are_survived) {
    eachFails("Player", [&] { return graph()->putref_Player(player()); });
    eachFails("Player", [&] {
        ComPtr<IDispatch> followed;
        return graph()->get_Player(followed.put());
    });
    eachFails("FramesPerSecond", [&] { return graph()->put_FramesPerSecond(60); });
    for (const LONG on : {1L, 0L}) {
        eachFails("LevelScale",
                  [&] { return graph()->put_LevelScale(static_cast<AudioGraphLevelScale>(on)); });
        eachFails("FrequencyAxis", [&] {
            return graph()->put_FrequencyAxis(static_cast<AudioGraphFrequencyAxis>(on));
        });
        eachFails("PeakHold",
                  [&] { return graph()->put_PeakHold(static_cast<VARIANT_BOOL>(-on)); });
        eachFails("ChannelWaveforms",
                  [&] { return graph()->put_ChannelWaveforms(static_cast<VARIANT_BOOL>(-on)); });
        eachFails("Display", [&] { return graph()->Display(); });
    }
    eachFails("Player", [&] { return graph()->put_Player(nullptr); });
}

TEST_F(AllocationFaults, of_init_and_deinit_are_survived) {
    eachFails("DeInit and Init", [&] {
        const HRESULT left = player()->DeInit(&number_);
        const HRESULT result = player()->Init(&number_);
        return FAILED(left) ? left : result;
    });
    eachFails("the graph's DeInit and Init", [&] {
        const HRESULT left = graph()->DeInit(&number_);
        const HRESULT result = graph()->Init(&number_);
        return FAILED(left) ? left : result;
    });
}

TEST_F(AllocationFaults, of_a_start_leave_no_playback_that_hangs) {
    eachFails("PlayStart and PlayStop", [&] {
        const HRESULT started = player()->PlayStart(file_.get(), -1, 0, &number_);
        (void)player()->PlayStop(&number_);
        return started;
    });
    VARIANT_BOOL playing = VARIANT_TRUE;
    EXPECT_TRUE(pumpUntil([&] { return player()->IsPlaying(&playing) == S_OK && !playing; }));
    ASSERT_EQ(S_OK, player()->PlayStart(file_.get(), -1, 0, &number_));
    EXPECT_EQ(0, number_);
    EXPECT_TRUE(pumpUntil([&] { return player()->IsPlaying(&playing) == S_OK && !playing; }));
}

TEST_F(AllocationFaults, of_the_graphs_members_are_survived) {
    const std::vector<short> samples(4000, 1000);
    const auto address = static_cast<LONG>(reinterpret_cast<INT_PTR>(samples.data()));
    for (const LONG style : {0L, 1L}) {
        eachFails("GraphStyle",
                  [&] { return graph()->put_GraphStyle(static_cast<AudioGraphStyle>(style)); });
        eachFails("SetAudioData", [&] { return graph()->SetAudioData(address, &number_); });
        eachFails("Display", [&] { return graph()->Display(); });
    }
    for (const LONG bands : {10L, 50L})
        eachFails("Bands", [&] { return graph()->put_Bands(bands); });
    eachFails("BandsSpace", [&] { return graph()->put_BandsSpace(2); });
    eachFails("BandsWidth", [&] { return graph()->put_BandsWidth(3); });
    eachFails("BackgroundColor", [&] { return graph()->put_BackgroundColor(1); });
    eachFails("AmplitudeColor", [&] { return graph()->put_AmplitudeColor(2); });
    eachFails("FreqColor", [&] { return graph()->put_FreqColor(3); });
    eachFails("BorderStyle", [&] { return graph()->put_BorderStyle(static_cast<BorderStyle>(1)); });
    eachFails("hWnd", [&] { return graph()->get_hWnd(&number_); });
    eachFails("ClearGraph", [&] { return graph()->ClearGraph(&number_); });
}

TEST_F(AllocationFaults, of_what_the_graph_returns_are_survived) {
    eachGraphGetFails("GraphStyle", &_cAudioGraph::get_GraphStyle);
    eachGraphGetFails("Bands", &_cAudioGraph::get_Bands);
    eachGraphGetFails("BandsSpace", &_cAudioGraph::get_BandsSpace);
    eachGraphGetFails("BandsWidth", &_cAudioGraph::get_BandsWidth);
    eachGraphGetFails("BackgroundColor", &_cAudioGraph::get_BackgroundColor);
    eachGraphGetFails("AmplitudeColor", &_cAudioGraph::get_AmplitudeColor);
    eachGraphGetFails("FreqColor", &_cAudioGraph::get_FreqColor);
    eachGraphGetFails("BorderStyle", &_cAudioGraph::get_BorderStyle);
    eachGraphGetFails("FramesPerSecond", &_cAudioGraph::get_FramesPerSecond);
    eachGraphGetFails("LevelScale", &_cAudioGraph::get_LevelScale);
    eachGraphGetFails("FrequencyAxis", &_cAudioGraph::get_FrequencyAxis);
    eachGraphGetFails("PeakHold", &_cAudioGraph::get_PeakHold);
    eachGraphGetFails("ChannelWaveforms", &_cAudioGraph::get_ChannelWaveforms);
}

TEST_F(AllocationFaults, of_creating_a_control_are_survived) {
    const auto created = [](auto make) {
        try {
            (void)make();
        } catch (const std::bad_alloc&) { // the class factory's guard turns it into a result
            return E_OUTOFMEMORY;
        }
        return S_OK;
    };
    eachFails("the player", [&] { return created([] { return makeCom<corvina::cPlayer>(); }); });
    eachFails("the graph", [&] { return created([] { return makeCom<corvina::cAudioGraph>(); }); });
}

TEST_F(AllocationFaults, of_what_a_container_calls_are_survived) {
    const auto stream = [] {
        ComPtr<IStream> made;
        (void)::CreateStreamOnHGlobal(nullptr, TRUE, made.put());
        return made;
    }();
    const auto persistent = ComPtr<_cAudioGraph>(graph()).query<IPersistStreamInit>();
    const auto rewind = [&] { (void)stream->Seek({}, STREAM_SEEK_SET, nullptr); };
    eachFails("Save", [&] {
        rewind();
        return persistent->Save(stream.get(), TRUE);
    });
    eachFails("Load", [&] {
        rewind();
        return persistent->Load(stream.get());
    });
    eachFails("InitNew", [&] { return persistent->InitNew(); });
    EventSink sink(DIID___cPlayer);
    const auto points = ComPtr<_cPlayer>(player()).query<IConnectionPointContainer>();
    eachFails("Advise", [&] {
        ComPtr<IConnectionPoint> point;
        DWORD cookie = 0;
        HRESULT result = points->FindConnectionPoint(DIID___cPlayer, point.put());
        if (SUCCEEDED(result))
            result = point->Advise(&sink, &cookie);
        if (SUCCEEDED(result))
            (void)point->Unadvise(cookie);
        return result;
    });
    eachFails("EnumConnectionPoints", [&] {
        ComPtr<IEnumConnectionPoints> all;
        return points->EnumConnectionPoints(all.put());
    });
    ComPtr<IEnumConnectionPoints> all;
    ASSERT_EQ(S_OK, points->EnumConnectionPoints(all.put()));
    eachFails("Clone", [&] {
        auto* copy = reinterpret_cast<IEnumConnectionPoints*>(0x1234); // left over in the variable
        const HRESULT result = all->Clone(&copy);
        if (SUCCEEDED(result))
            copy->Release();
        else
            EXPECT_EQ(nullptr, copy);
        return result;
    });
}

} // namespace
