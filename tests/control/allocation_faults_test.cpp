// Every published member of both controls, and what containers call most, when any one of its
// allocations fails: it returns that there is no memory or does without, and works the next time.

#include "Support.h"
#include "graph/cAudioGraph.h"
#include "player/cPlayer.h"
#include "support/ExhaustedMemory.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <string>

using namespace corvina;
using namespace corvina::test;

namespace {

class AllocationFaults : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        player_ = makeCom<corvina::cPlayer>();
        graph_ = makeCom<corvina::cAudioGraph>();
        ASSERT_EQ(S_OK, player()->Init(&number_));
        ASSERT_EQ(S_OK, graph()->Init(&number_));
    }
    void TearDown() override {
        player_.reset();
        graph_.reset();
        ApartmentTest::TearDown();
    }

    _cPlayer* player() { return player_.get(); }
    _cAudioGraph* graph() { return graph_.get(); }

    // The member fails with each allocation that it makes, one at a time, and then works.
    template <typename Call>
    void eachFails(const char* member, Call call) {
        SCOPED_TRACE(member);
        constexpr int most = 2000;
        int nth = 1;
        for (bool struck = true; struck && nth < most; ++nth) {
            HRESULT result = E_UNEXPECTED;
            {
                const FailingAllocation failing(nth);
                result = call();
                struck = failing.struck();
            }
            // Text and variants fail in their own heap, which does not.
            EXPECT_TRUE(result == E_OUTOFMEMORY || SUCCEEDED(result) || !struck)
                << "allocation " << nth << ": " << std::hex << result;
            ::SetErrorInfo(0, nullptr);
        }
        EXPECT_LT(nth, most);
        EXPECT_TRUE(SUCCEEDED(call())) << "works again";
        failures_ += nth - 1;
    }

    template <typename Value>
    void eachGetFails(const char* member, HRESULT (STDMETHODCALLTYPE _cPlayer::*get)(Value*)) {
        eachFails(member, [&] {
            Value value{};
            return (player()->*get)(&value);
        });
    }
    void eachTextFails(const char* member, HRESULT (STDMETHODCALLTYPE _cPlayer::*get)(BSTR*),
                       HRESULT (STDMETHODCALLTYPE _cPlayer::*put)(BSTR)) {
        eachFails(member, [&] { return (player()->*put)(text_.get()); });
        eachFails(member, [&] {
            Bstr value;
            return (player()->*get)(value.put());
        });
    }

    TempFolder folder_;
    const Bstr file_{
        folder_.write(L"a file with a name.wav", plainWav(pcm(44100, 2, 16), noise(2 * 8000)))};
    const Bstr text_{std::wstring(100, L't')};
    ComPtr<corvina::cPlayer> player_;
    ComPtr<corvina::cAudioGraph> graph_;
    long number_ = 0;
    int failures_ = 0;
};

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
    eachFails("hWnd", [&] { return graph()->get_hWnd(&number_); });
    eachFails("ClearGraph", [&] { return graph()->ClearGraph(&number_); });
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
}

} // namespace
