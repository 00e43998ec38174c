// The type library as hosts read it out of the registered file: names, order, ids, types, values.

#include "TypeLibraryFixture.h"

using namespace corvina;
using namespace corvina::test;

namespace {

TEST_F(TypeLibrary, bears_the_librarys_name_and_version) {
    Bstr name;
    library->GetDocumentation(-1, name.put(), nullptr, nullptr, nullptr);
    EXPECT_EQ(L"Corvina", textOf(name.get()));
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, library->GetLibAttr(&attributes));
    EXPECT_EQ(1, attributes->wMajorVerNum);
    EXPECT_EQ(0, attributes->wMinorVerNum);
    EXPECT_EQ(LIBID_Corvina, attributes->guid);
    library->ReleaseTLibAttr(attributes);
}

TEST_F(TypeLibrary, the_player_has_its_members_in_their_published_order) {
    const Lines expected{
        L"1 get Tag_Title(-> BSTR)",
        L"1 put Tag_Title(BSTR)",
        L"2 get Tag_Album(-> BSTR)",
        L"2 put Tag_Album(BSTR)",
        L"3 get Tag_Artist(-> BSTR)",
        L"3 put Tag_Artist(BSTR)",
        L"4 get Tag_SongYear(-> BSTR)",
        L"4 put Tag_SongYear(BSTR)",
        L"5 get Tag_Genre(-> BSTR)",
        L"5 put Tag_Genre(BSTR)",
        L"6 get Tag_Comment(-> BSTR)",
        L"6 put Tag_Comment(BSTR)",
        L"7 get Tag_TrackNumber(-> BSTR)",
        L"7 put Tag_TrackNumber(BSTR)",
        L"8 get Info_Bitrate(-> long)",
        L"9 get Info_BitsPerSample(-> long)",
        L"10 get Info_Channels(-> short)",
        L"11 get Info_Duration(-> double)",
        L"12 get Info_Samplerate(-> long)",
        L"13 ErrorTextOut(long lErrNum, -> BSTR)",
        L"14 PlayPause(-> long)",
        L"15 PlayUnPause(-> long)",
        L"16 IsPausedOut(-> bool)",
        L"17 DonePlay(-> bool)",
        L"-552 About()",
        L"19 Init(-> long)",
        L"20 DeInit(-> long)",
        L"21 get AudioDataOut(-> long)",
        L"22 PlayStop(-> long)",
        L"23 PlayStart(BSTR sAudioFile, long DeviceIndex, long lBufferSize, -> long)",
        L"24 GetID3Tags(BSTR strFile, -> long)",
        L"25 OpenAudioFile(BSTR strFile, -> long)",
        L"26 PositionGet(-> long)",
        L"27 PositionSet(long lPosition, -> long)",
        L"28 GetSecondsAsTimeString(long Seconds, -> BSTR)",
        L"29 IsPlaying(-> bool)",
        L"30 GetDetailsDevice(long DeviceIndex, long iInOut, inout AudioDeviceDetails* "
        L"DeviceDetails, "
        L"-> long)",
        L"31 NumOfAudioDevices(long iInOut, -> long)",
        L"32 get Volume(-> long)",
        L"32 put Volume(long)",
        L"33 get Mute(-> bool)",
        L"33 put Mute(bool)",
        L"34 get Balance(-> long)",
        L"34 put Balance(long)",
        L"35 get EqualizerGain(long Band, -> float)",
        L"35 put EqualizerGain(long, float)",
        L"36 get Looping(-> bool)",
        L"36 put Looping(bool)",
        L"37 get NextFile(-> BSTR)",
        L"37 put NextFile(BSTR)",
        L"38 get PositionMs(-> long)",
        L"38 put PositionMs(long)",
        L"39 get DurationMs(-> long)",
        L"40 get State(-> PlayState)",
        L"41 get PositionInterval(-> long)",
        L"41 put PositionInterval(long)",
        L"42 get Device(-> BSTR)",
        L"42 put Device(BSTR)",
        L"43 get Recover(-> bool)",
        L"43 put Recover(bool)",
        L"44 get CleanEnd(-> bool)",
        L"44 put CleanEnd(bool)",
        L"45 get Level(long Channel, -> long)",
        L"46 get FormatName(-> BSTR)",
        L"47 get Extensions(-> BSTR)",
        L"48 get TagText(BSTR Name, -> BSTR)",
        L"49 get TagCount(-> long)",
        L"50 get TagName(long Index, -> BSTR)",
        L"51 get Picture(-> IPictureDisp*)",
    };
    EXPECT_EQ(expected, functions(vtable(L"_cPlayer").get()));
}

TEST_F(TypeLibrary, the_players_vtable_is_in_the_published_order) {
    const auto table = vtable(L"_cPlayer");
    // Seven slots of IDispatch come first, each four bytes.
    int slot = 7;
    each(table.get(), [&](const FUNCDESC& function) { EXPECT_EQ(4 * slot++, function.oVft); });
    EXPECT_EQ(7 + 38 + 31, slot);
}

TEST_F(TypeLibrary, the_players_events_have_the_ids_1_to_6) {
    const Lines expected{L"1 DonePlay()",
                         L"2 Err(BSTR FunctionName, inout long* ErrorNumber, BSTR ErrorDecription)",
                         L"3 Ended(PlayEndReason Reason)",
                         L"4 StateChanged(PlayState State)",
                         L"5 PositionChanged(long PositionMs)",
                         L"6 NextStarted(BSTR File)"};
    EXPECT_EQ(expected, functions(find(L"__cPlayer").get()));
}

TEST_F(TypeLibrary, the_graph_has_its_members_in_their_published_order) {
    const Lines expected{
        L"1 get GraphStyle(-> AudioGraphStyle)",
        L"1 put GraphStyle(AudioGraphStyle)",
        L"2 get Bands(-> long)",
        L"2 put Bands(long)",
        L"3 get BandsSpace(-> long)",
        L"3 put BandsSpace(long)",
        L"4 get BandsWidth(-> long)",
        L"4 put BandsWidth(long)",
        L"5 get BackgroundColor(-> OLE_COLOR)",
        L"5 put BackgroundColor(OLE_COLOR)",
        L"6 get AmplitudeColor(-> OLE_COLOR)",
        L"6 put AmplitudeColor(OLE_COLOR)",
        L"7 get FreqColor(-> OLE_COLOR)",
        L"7 put FreqColor(OLE_COLOR)",
        L"8 get BorderStyle(-> BorderStyle)",
        L"8 put BorderStyle(BorderStyle)",
        L"-515 get hWnd(-> long)",
        L"10 SetAudioData(long pAudioData, -> long)",
        L"11 Display()",
        L"12 ClearGraph(-> long)",
        L"13 Init(-> long)",
        L"14 DeInit(-> long)",
        L"15 get Player(-> object)",
        L"15 put Player(object)",
        L"15 putref Player(object)",
        L"16 get FramesPerSecond(-> long)",
        L"16 put FramesPerSecond(long)",
        L"17 get LevelScale(-> AudioGraphLevelScale)",
        L"17 put LevelScale(AudioGraphLevelScale)",
        L"18 get FrequencyAxis(-> AudioGraphFrequencyAxis)",
        L"18 put FrequencyAxis(AudioGraphFrequencyAxis)",
        L"19 get PeakHold(-> bool)",
        L"19 put PeakHold(bool)",
        L"20 get ChannelWaveforms(-> bool)",
        L"20 put ChannelWaveforms(bool)",
    };
    EXPECT_EQ(expected, functions(vtable(L"_cAudioGraph").get()));
}

TEST_F(TypeLibrary, the_graphs_event_carries_the_level) {
    EXPECT_EQ(Lines{L"1 LevelChanged(long Level)"}, functions(find(L"__cAudioGraph").get()));
}

TEST_F(TypeLibrary, the_callback_has_one_method) {
    EXPECT_EQ(
        Lines{L"1 Samples(inout array of short* intSamples, long datalength, short channels)"},
        functions(vtable(L"cCallback").get()));
}

TEST_F(TypeLibrary, the_subclassing_client_has_its_members) {
    const Lines expected{L"1 get MsgResponse(-> EMsgResponse)", L"1 put MsgResponse(EMsgResponse)",
                         L"2 WindowProc(long hWnd, long iMsg, long wParam, long lParam, -> long)"};
    EXPECT_EQ(expected, functions(vtable(L"ISubclass").get()));
}

TEST_F(TypeLibrary, the_subclassing_front_has_its_members) {
    const Lines expected{
        L"1 AttachMessage(inout ISubclass** iwp, long hWnd, long iMsg)",
        L"2 DetachMessage(inout ISubclass** iwp, long hWnd, long iMsg)",
        L"3 get CurrentMessage(-> long)",
        L"4 CallOldWindowProc(long hWnd, long iMsg, long wParam, long lParam, -> long)"};
    EXPECT_EQ(expected, functions(vtable(L"_GSubclass").get()));
}

TEST_F(TypeLibrary, the_encoder_has_its_members_in_their_published_order) {
    Lines expected;
    int id = 0;
    for (const wchar_t* tag :
         {L"Title", L"Album", L"Artist", L"SongYear", L"Genre", L"Comment", L"TrackNr",
          L"EncodedBy", L"LinkTo", L"Copyright", L"Composer", L"OrigArtist"}) {
        const std::wstring number = std::to_wstring(++id);
        expected.push_back(number + L" put " + tag + L"(BSTR)");
        expected.push_back(number + L" get " + tag + L"(-> BSTR)");
    }
    expected.insert(expected.end(),
                    {L"13 get BytesProcessed(-> double)", L"14 get Extension(-> BSTR)",
                     L"15 DeInit(-> long)",
                     L"16 Init(BSTR dstFilename, long srcSampleRate, short srcChannels, short "
                     L"srcBitsPerSample, inout long* cbPCMData, -> long)",
                     L"17 Encode(long ptr, long bytes, -> long)"});
    EXPECT_EQ(expected, functions(vtable(L"IEncoder").get()));
}

TEST_F(TypeLibrary, the_enumerations_have_their_published_values) {
    EXPECT_EQ((Lines{L"AUDIOIN = 1", L"AUDIOOUT = 2"}), members(L"InOut"));
    EXPECT_EQ((Lines{L"PLAY_STOPPED = 0", L"PLAY_PLAYING = 1", L"PLAY_PAUSED = 2"}),
              members(L"PlayState"));
    EXPECT_EQ((Lines{L"PLAYEND_FINISHED = 0", L"PLAYEND_STOPPED = 1", L"PLAYEND_DEVICE_LOST = 2",
                     L"PLAYEND_ERROR = 3"}),
              members(L"PlayEndReason"));
    EXPECT_EQ((Lines{L"STEREO_MODE = 0", L"JOINT_STEREO_MODE = 1", L"DUAL_CHANNEL_MODE = 2",
                     L"MONO_MODE = 3", L"NOT_SET_MODE = 4", L"FORCE_JOINT_STEREO_MODE = 5"}),
              members(L"MPEGMode"));
    EXPECT_EQ((Lines{L"OFF_VBR = 0", L"MT_VBR = 1", L"RH_VBR = 2", L"ABR_VBR = 3", L"MTRH_VBR = 4",
                     L"MAX_INDICATOR_VBR = 5", L"DEFAULT_VBR = 6"}),
              members(L"VBRMode"));
    EXPECT_EQ((Lines{L"Quality_Mode = 1", L"Bitrate_Mode = 2"}), members(L"OGG_MODE"));
    EXPECT_EQ((Lines{L"RECORD_TO_WAV = 1", L"RECORD_TO_MP3 = 2", L"RECORD_TO_WMA = 3",
                     L"RECORD_TO_OGG = 4", L"RECORD_TO_APE = 5"}),
              members(L"eRecordTo"));
    EXPECT_EQ((Lines{L"ACM_ALL = 0", L"ACM_WFORMATTAG = 65536", L"ACM_NCHANNELS = 131072",
                     L"ACM_NSAMPLESPERSEC = 262144", L"ACM_WBITSPERSAMPLE = 524288",
                     L"ACM_CONVERT = 1048576", L"ACM_SUGGEST = 2097152", L"ACM_HARDWARE = 4194304",
                     L"ACM_INPUT = 8388608", L"ACM_OUTPUT = 16777216"}),
              members(L"eTagsMode"));
    EXPECT_EQ((Lines{L"emrConsume = 0", L"emrPostProcess = 1", L"emrPreprocess = 2"}),
              members(L"EMsgResponse"));
    EXPECT_EQ((Lines{L"AMPLITUDE_STYLE = 0", L"FREQUENCY_STYLE = 1"}), members(L"AudioGraphStyle"));
    EXPECT_EQ((Lines{L"LINEAR_SCALE = 0", L"DECIBEL_SCALE = 1"}), members(L"AudioGraphLevelScale"));
    EXPECT_EQ((Lines{L"BAND_AXIS = 0", L"OCTAVE_AXIS = 1"}), members(L"AudioGraphFrequencyAxis"));
    EXPECT_EQ((Lines{L"StyleNone = 0", L"StyleFixed = 1"}), members(L"BorderStyle"));
}

TEST_F(TypeLibrary, the_device_record_has_its_fields_in_order) {
    EXPECT_EQ((Lines{L"BSTR DeviceName", L"BSTR DeviceDriver", L"short DeviceChannels",
                     L"long DeviceFormat"}),
              members(L"AudioDeviceDetails"));
}

TEST_F(TypeLibrary, every_encoder_record_can_be_made_by_a_script_host) {
    for (const wchar_t* name : {L"MP3_Properties", L"APE_Properties", L"WMA_Properties",
                                L"WAV_Properties", L"OGG_Properties"}) {
        const ComPtr<ITypeInfo> info = find(name);
        ComPtr<IRecordInfo> record;
        EXPECT_EQ(S_OK, ::GetRecordInfoFromTypeInfo(info.get(), record.put()));
        EXPECT_FALSE(members(name).empty());
    }
}

TEST_F(TypeLibrary, the_classes_name_their_interfaces) {
    EXPECT_EQ((Lines{L"default _cPlayer", L"default source __cPlayer", L"ISubclass", L"cCallback"}),
              implemented(L"cPlayer"));
    EXPECT_EQ((Lines{L"default _cAudioGraph", L"default source __cAudioGraph"}),
              implemented(L"cAudioGraph"));
    EXPECT_EQ(Lines{L"default _GSubclass"}, implemented(L"GSubclass"));
}

TEST_F(TypeLibrary, the_controls_are_marked_as_controls_and_all_classes_can_be_created) {
    for (const auto& [name, control] :
         {std::pair{L"cPlayer", true}, {L"cAudioGraph", true}, {L"GSubclass", false}}) {
        const ComPtr<ITypeInfo> info = find(name);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
        EXPECT_EQ(control, (attributes->wTypeFlags & TYPEFLAG_FCONTROL) != 0);
        EXPECT_TRUE(attributes->wTypeFlags & TYPEFLAG_FCANCREATE);
        info->ReleaseTypeAttr(attributes);
    }
}

TEST_F(TypeLibrary, every_member_of_every_interface_has_a_help_text) {
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> info;
        ASSERT_EQ(S_OK, library->GetTypeInfo(i, info.put()));
        EXPECT_FALSE(helpOf(info.get()).empty()) << i;
        each(info.get(), [&](const FUNCDESC& function) {
            // What IDispatch itself brings is not ours to describe.
            if (static_cast<unsigned>(function.memid) < 0x60000000u ||
                static_cast<unsigned>(function.memid) > 0x6fffffffu) {
                EXPECT_FALSE(helpOf(info.get(), function.memid).empty())
                    << i << " " << function.memid;
            }
        });
    }
}

TEST_F(TypeLibrary, no_dispatch_id_is_used_by_two_names) {
    for (const wchar_t* name :
         {L"_cPlayer", L"_cAudioGraph", L"_GSubclass", L"ISubclass", L"IEncoder"}) {
        const auto table = vtable(name);
        std::map<MEMBERID, std::wstring> seen;
        each(table.get(), [&](const FUNCDESC& function) {
            const auto member = nameOf(table.get(), function.memid);
            EXPECT_EQ(member, seen.try_emplace(function.memid, member).first->second);
        });
    }
}

} // namespace
