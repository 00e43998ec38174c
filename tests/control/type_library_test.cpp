// The type library as hosts read it out of the registered file: names, order, ids, types, values.

#include "Support.h"

#include <map>

using namespace corvina;
using namespace corvina::test;

namespace {

using Lines = std::vector<std::wstring>;

std::wstring nameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    Bstr name;
    info->GetDocumentation(member, name.put(), nullptr, nullptr, nullptr);
    return textOf(name.get());
}

std::wstring helpOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    Bstr help;
    info->GetDocumentation(member, nullptr, help.put(), nullptr, nullptr);
    return textOf(help.get());
}

std::wstring typeText(ITypeInfo* info, const TYPEDESC& type) {
    static const std::map<VARTYPE, std::wstring> names{
        {VT_I2, L"short"},        {VT_I4, L"long"},   {VT_R4, L"float"},
        {VT_R8, L"double"},       {VT_BSTR, L"BSTR"}, {VT_BOOL, L"bool"},
        {VT_HRESULT, L"HRESULT"}, {VT_VOID, L"void"}, {VT_UI4, L"ulong"}};
    if (type.vt == VT_PTR)
        return typeText(info, *type.lptdesc) + L"*";
    if (type.vt == VT_SAFEARRAY)
        return L"array of " + typeText(info, *type.lptdesc);
    if (type.vt == VT_USERDEFINED) {
        ComPtr<ITypeInfo> named;
        return SUCCEEDED(info->GetRefTypeInfo(type.hreftype, named.put())) ? nameOf(named.get())
                                                                           : L"?";
    }
    const auto known = names.find(type.vt);
    return known == names.end() ? std::to_wstring(type.vt) : known->second;
}

// "id kind Name(direction type name, ...)" with the result among the parameters.
std::wstring functionLine(ITypeInfo* info, const FUNCDESC& function) {
    BSTR names[16]{};
    UINT count = 0;
    info->GetNames(function.memid, names, 16, &count);
    std::wstring line = std::to_wstring(function.memid);
    line += function.invkind == INVOKE_PROPERTYGET   ? L" get "
            : function.invkind == INVOKE_PROPERTYPUT ? L" put "
                                                     : L" ";
    line += textOf(names[0]) + L"(";
    for (int i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        const USHORT flags = parameter.paramdesc.wParamFlags;
        line += i > 0 ? L", " : L"";
        const auto nameIndex = static_cast<UINT>(i) + 1;
        if (flags & PARAMFLAG_FRETVAL)
            line += L"-> " + typeText(info, *parameter.tdesc.lptdesc);
        else
            line += std::wstring((flags & PARAMFLAG_FOUT) ? L"inout " : L"") +
                    typeText(info, parameter.tdesc) +
                    (nameIndex < count && function.invkind != INVOKE_PROPERTYPUT
                         ? L" " + textOf(names[nameIndex])
                         : L"");
    }
    for (UINT i = 0; i < count; ++i)
        ::SysFreeString(names[i]);
    return line + L")";
}

class TypeLibrary : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        ASSERT_EQ(S_OK, ::LoadTypeLibEx(libraryPath().c_str(), REGKIND_NONE, library.put()));
    }
    void TearDown() override {
        library.reset();
        ApartmentTest::TearDown();
    }

    ComPtr<ITypeInfo> find(const wchar_t* name) {
        for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
            ComPtr<ITypeInfo> info;
            if (SUCCEEDED(library->GetTypeInfo(i, info.put())) && nameOf(info.get()) == name)
                return info;
        }
        ADD_FAILURE() << "nothing of that exact name";
        return {};
    }

    // The interface with its results as parameters: the vtable half of a dual interface.
    ComPtr<ITypeInfo> vtable(const wchar_t* name) {
        ComPtr<ITypeInfo> info = find(name);
        HREFTYPE half = 0;
        ComPtr<ITypeInfo> table;
        if (info && SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &half)))
            info->GetRefTypeInfo(half, table.put());
        return table ? table : info;
    }

    Lines functions(ITypeInfo* info) {
        Lines lines;
        each(info,
             [&](const FUNCDESC& function) { lines.push_back(functionLine(info, function)); });
        return lines;
    }

    template <typename Visit>
    void each(ITypeInfo* info, Visit visit) {
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
        for (UINT i = 0; i < attributes->cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            ASSERT_EQ(S_OK, info->GetFuncDesc(i, &function));
            visit(*function);
            info->ReleaseFuncDesc(function);
        }
        info->ReleaseTypeAttr(attributes);
    }

    // "Name = value" for an enumeration, "type Name" for a record.
    Lines members(const wchar_t* name) {
        Lines lines;
        const ComPtr<ITypeInfo> info = find(name);
        TYPEATTR* attributes = nullptr;
        if (!info || FAILED(info->GetTypeAttr(&attributes)))
            return lines;
        for (UINT i = 0; i < attributes->cVars; ++i) {
            VARDESC* variable = nullptr;
            info->GetVarDesc(i, &variable);
            const std::wstring member = nameOf(info.get(), variable->memid);
            lines.push_back(variable->varkind == VAR_CONST
                                ? member + L" = " + std::to_wstring(V_I4(variable->lpvarValue))
                                : typeText(info.get(), variable->elemdescVar.tdesc) + L" " +
                                      member);
            info->ReleaseVarDesc(variable);
        }
        info->ReleaseTypeAttr(attributes);
        return lines;
    }

    // "flags Interface" of a class.
    Lines implemented(const wchar_t* name) {
        Lines lines;
        const ComPtr<ITypeInfo> info = find(name);
        TYPEATTR* attributes = nullptr;
        if (!info || FAILED(info->GetTypeAttr(&attributes)))
            return lines;
        for (UINT i = 0; i < attributes->cImplTypes; ++i) {
            HREFTYPE reference = 0;
            INT flags = 0;
            ComPtr<ITypeInfo> type;
            info->GetRefTypeOfImplType(i, &reference);
            info->GetRefTypeInfo(reference, type.put());
            info->GetImplTypeFlags(i, &flags);
            lines.push_back(std::wstring(flags & IMPLTYPEFLAG_FDEFAULT ? L"default " : L"") +
                            (flags & IMPLTYPEFLAG_FSOURCE ? L"source " : L"") + nameOf(type.get()));
        }
        info->ReleaseTypeAttr(attributes);
        return lines;
    }

    ComPtr<ITypeLib> library;
};

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
    };
    EXPECT_EQ(expected, functions(vtable(L"_cPlayer").get()));
}

TEST_F(TypeLibrary, the_players_vtable_is_in_the_published_order) {
    const auto table = vtable(L"_cPlayer");
    // Seven slots of IDispatch come first, each four bytes.
    int slot = 7;
    each(table.get(), [&](const FUNCDESC& function) { EXPECT_EQ(4 * slot++, function.oVft); });
    EXPECT_EQ(7 + 38, slot);
}

TEST_F(TypeLibrary, the_players_events_have_ids_1_and_2) {
    const Lines expected{
        L"1 DonePlay()",
        L"2 Err(BSTR FunctionName, inout long* ErrorNumber, BSTR ErrorDecription)"};
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
