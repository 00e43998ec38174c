// Every member of both controls from inside every event, with good and bad values, through the
// vtable and by name; then before Init and during a pause. The members are those of the type
// library.

#include "../corpus/InstantDevice.h"
#include "MemberCalls.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <thread>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr DISPID ended = 3, positionChanged = 5, firstNewMember = 32;
constexpr DISPID levelChanged = 1; // of the graph

// Closes the about box whenever it opens.
class AboutCloser {
public:
    AboutCloser()
        : thread_([this] {
              for (; !over_; ::Sleep(5))
                  if (const HWND box = ::FindWindowW(nullptr, L"About Corvina"))
                      ::PostMessageW(box, WM_COMMAND, IDOK, 0);
          }) {}
    ~AboutCloser() {
        over_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> over_ = false;
    std::thread thread_;
};

bool same(const Variant& a, const Variant& b) {
    if (V_VT(&a) != V_VT(&b))
        return false;
    return V_VT(&a) == VT_BSTR ? textOf(V_BSTR(&a)) == textOf(V_BSTR(&b)) : V_I8(&a) == V_I8(&b);
}

class AllMembers : public TypeLibrary {
protected:
    void SetUp() override {
        TypeLibrary::SetUp();
        ofPlayer = membersOf(vtable(L"_cPlayer").get());
        ofGraph = membersOf(vtable(L"_cAudioGraph").get());
        ASSERT_GT(ofPlayer.size(), 60u);
        ASSERT_GT(ofGraph.size(), 30u);
        file = folder.write(L"a.wav", plainWav(pcm(44100, 2, 16), noise(3 * 8000)));
        good.text = file;
        bad.text = L"?:\\nothing.xyz";
        wrong = bad;
        wrong.wrongTypes = true;
        device.emplace();
        reset();
    }
    void TearDown() override {
        graphSink.disconnect();
        sink.disconnect();
        graph.reset();
        player.reset();
        device.reset();
        TypeLibrary::TearDown();
    }

    // Both controls anew.
    void reset() {
        sink.disconnect();
        graphSink.disconnect();
        sink.handler = nullptr;
        graphSink.handler = nullptr;
        sink.received.clear();
        graph = create<_cAudioGraph>(CLSID_cAudioGraph);
        player = create<_cPlayer>(CLSID_cPlayer);
        ASSERT_EQ(S_OK, sink.connect(player.get(), DIID___cPlayer));
        ASSERT_EQ(S_OK, graphSink.connect(graph.get(), DIID___cAudioGraph));
        good.object = player.get();
    }

    [[nodiscard]] long start() {
        long result = -1;
        EXPECT_EQ(S_OK, player->PlayStart(Bstr(file).get(), -1, 0, &result));
        return result;
    }
    [[nodiscard]] long ends() const {
        return static_cast<long>(
            std::count_if(sink.received.begin(), sink.received.end(),
                          [](const EventSink::Event& event) { return event.id == ended; }));
    }
    [[nodiscard]] bool stopped() const {
        PlayState state = PLAY_PLAYING;
        EXPECT_EQ(S_OK, player->get_State(&state));
        return state == PLAY_STOPPED;
    }

    // Good values last: they may end or release things. What is refused has changed nothing.
    void callInEveryWay(IDispatch* control, IUnknown* table, const std::vector<Member>& all,
                        const Member& member) {
        const bool put = member.kind == INVOKE_PROPERTYPUT;
        const auto reader = std::find_if(all.begin(), all.end(), [&](const Member& other) {
            return other.id == member.id && other.kind == INVOKE_PROPERTYGET;
        });
        const bool readable = put && reader != all.end() && reader->parameters.size() == 1;
        const std::vector<MemberValues> refused{bad, wrong};
        for (const MemberValues& values : refused) {
            if (member.parameters.empty())
                break;
            Variant before, after;
            if (readable)
                callLate(control, *reader, good, &before);
            const HRESULT late = callLate(control, member, values);
            if (readable && FAILED(late)) {
                callLate(control, *reader, good, &after);
                // A position goes on meanwhile.
                EXPECT_TRUE(member.name == L"PositionMs" || same(before, after));
            }
        }
        if (member.parameters.empty())
            return static_cast<void>(callEarly(table, member, good));
        MemberValues nowhere = bad;
        nowhere.takesResults = false;
        callEarly(table, member, bad);
        callEarly(table, member, nowhere);
        callEarly(table, member, good);
        callLate(control, member, good);
    }

    // What the members have left behind ends.
    void settle() {
        sink.handler = nullptr;
        graphSink.handler = nullptr;
        long result = 0;
        player->put_Looping(VARIANT_FALSE);
        player->put_NextFile(nullptr);
        player->put_Device(nullptr);
        player->PlayStop(&result);
        device->release();
        ASSERT_TRUE(pumpUntil([this] { return stopped(); }, 10s));
        dispatchWaitingMessages();
    }
    // A file plays, also if the player has to be initialised for it.
    void play() {
        long result = start();
        if (result != 0) {
            ASSERT_EQ(S_OK, player->Init(&result));
            result = start();
        }
        ASSERT_EQ(0, result);
    }
    void expectPlaybackWorks() {
        settle();
        const long before = ends();
        play();
        ASSERT_TRUE(pumpUntil([&] { return ends() > before; }, 10s));
        EXPECT_EQ(before + 1, ends());
        EXPECT_EQ(PLAYEND_FINISHED, V_I4(&sink.received.back().arguments.at(0)));
    }

    // Those that do not touch the playback are called together, the others in one of their own.
    // The about box has a test of its own: it takes two seconds to close without a window manager.
    [[nodiscard]] std::vector<std::vector<Member>> groups() const {
        std::vector<std::vector<Member>> result(2);
        for (const Member& member : ofPlayer)
            if (member.kind == INVOKE_PROPERTYGET)
                result[0].push_back(member);
            else if (member.kind == INVOKE_PROPERTYPUT && member.name != L"PositionMs")
                result[1].push_back(member);
            else if (member.name != L"About")
                result.push_back({member});
        return result;
    }
    // The members with which a player is what people expect, with good values.
    void expectNewOnesWork(const std::vector<Member>& members) {
        for (const Member& member : members) {
            if (member.id < firstNewMember)
                continue;
            SCOPED_TRACE(member.text());
            for (const HRESULT result :
                 {callEarly(player.get(), member, good), callLate(player.get(), member, good)})
                // A value that is good elsewhere may be out of range now: a tag's number.
                EXPECT_TRUE(result == S_OK || result == invalidPropertyValue) << std::hex << result;
        }
    }
    void call(const std::vector<Member>& members, bool graphs = false) {
        IDispatch* control = player.get();
        if (graphs)
            control = graph.get();
        for (const Member& member : members) {
            SCOPED_TRACE(member.text());
            callInEveryWay(control, control, graphs ? ofGraph : ofPlayer, member);
        }
    }

    // Plays until the event has come for the first time, and calls members from inside it.
    void callInside(DISPID event, bool graphsEvent, const std::function<void()>& calls) {
        bool called = false;
        (graphsEvent ? graphSink : sink).handler = [&](const EventSink::Event& happened) {
            if (happened.id != event || std::exchange(called, true))
                return;
            calls();
            // What loops would otherwise never let go of the thread.
            device->hold();
        };
        ASSERT_EQ(S_OK, graph->put_Player(player.get()));
        ASSERT_EQ(S_OK, player->put_PositionInterval(10));
        ASSERT_EQ(S_OK, player->put_NextFile(Bstr(file).get()));
        if (event == positionChanged && !graphsEvent)
            device->hold();
        play();
        if (graphsEvent) {
            long address = 0;
            long result = 0;
            ASSERT_EQ(S_OK, player->get_AudioDataOut(&address));
            ASSERT_EQ(S_OK, graph->SetAudioData(address, &result));
        }
        ASSERT_TRUE(pumpUntil([&] { return called; }, 10s)) << "the event did not come";
        settle();
    }

    // Each playback shows that the calls before it have done no harm.
    void callFromInside(DISPID event, bool graphsEvent = false) {
        callInside(event, graphsEvent, [this] { call(ofGraph, true); });
        for (const std::vector<Member>& group : groups()) {
            if (HasFatalFailure())
                return;
            SCOPED_TRACE(group.front().text());
            callInside(event, graphsEvent, [&] { call(group); });
        }
        expectPlaybackWorks();
    }

    TempFolder folder;
    std::wstring file;
    MemberValues good;
    MemberValues bad{.number = -2147483647, .fraction = 1e30F, .text = {}};
    MemberValues wrong;
    std::vector<Member> ofPlayer, ofGraph;
    std::optional<InstantDevice> device;
    ComPtr<_cPlayer> player;
    ComPtr<_cAudioGraph> graph;
    EventSink sink{DIID___cPlayer}, graphSink{DIID___cAudioGraph};
};

TEST_F(AllMembers, may_be_called_inside_DonePlay) {
    callFromInside(1);
}
TEST_F(AllMembers, one_that_waits_for_its_user_may_be_called_inside_an_event) {
    const AboutCloser closer;
    const auto about = std::find_if(ofPlayer.begin(), ofPlayer.end(),
                                    [](const Member& member) { return member.name == L"About"; });
    ASSERT_NE(about, ofPlayer.end());
    callInside(ended, false, [&] { EXPECT_EQ(S_OK, callEarly(player.get(), *about, good)); });
    expectPlaybackWorks();
}
TEST_F(AllMembers, may_be_called_inside_Err) {
    callFromInside(2);
}
TEST_F(AllMembers, may_be_called_inside_Ended) {
    callFromInside(ended);
}
TEST_F(AllMembers, may_be_called_inside_StateChanged) {
    callFromInside(4);
}
TEST_F(AllMembers, may_be_called_inside_PositionChanged) {
    callFromInside(positionChanged);
}
TEST_F(AllMembers, may_be_called_inside_NextStarted) {
    callFromInside(6);
}
TEST_F(AllMembers, may_be_called_inside_LevelChanged_of_the_graph) {
    callFromInside(levelChanged, true);
}

TEST_F(AllMembers, are_really_called_in_both_ways) {
    const auto volume = std::find_if(ofPlayer.begin(), ofPlayer.end(), [](const Member& member) {
        return member.text() == "put Volume";
    });
    ASSERT_NE(volume, ofPlayer.end());
    long value = 0;
    MemberValues values;
    for (const bool early : {true, false}) {
        values.number += 10;
        EXPECT_EQ(S_OK, early ? callEarly(player.get(), *volume, values)
                              : callLate(player.get(), *volume, values));
        EXPECT_EQ(S_OK, player->get_Volume(&value));
        EXPECT_EQ(values.number, value);
    }
}

// Whoever adds an event adds a case above.
TEST_F(AllMembers, are_called_inside_all_events_that_there_are) {
    const auto eventsOf = [this](const wchar_t* name) {
        std::vector<MEMBERID> ids;
        for (const Member& event : membersOf(find(name).get()))
            ids.push_back(event.id);
        return ids;
    };
    EXPECT_EQ((std::vector<MEMBERID>{1, 2, 3, 4, 5, 6}), eventsOf(L"__cPlayer"));
    EXPECT_EQ(std::vector<MEMBERID>{levelChanged}, eventsOf(L"__cAudioGraph"));
}

TEST_F(AllMembers, work_before_Init) {
    for (const std::vector<Member>& group : groups()) {
        SCOPED_TRACE(group.front().text());
        reset();
        call(group);
        expectNewOnesWork(group);
        expectPlaybackWorks();
    }
}

TEST_F(AllMembers, work_during_a_pause) {
    for (const std::vector<Member>& group : groups()) {
        SCOPED_TRACE(group.front().text());
        device->hold();
        play();
        dispatchWaitingMessages();
        long result = -1;
        ASSERT_EQ(S_OK, player->PlayPause(&result));
        ASSERT_EQ(0, result);
        expectNewOnesWork(group);
        PlayState state = PLAY_STOPPED;
        EXPECT_EQ(S_OK, player->get_State(&state));
        EXPECT_EQ(PLAY_PAUSED, state);
        call(group);
        settle();
    }
    expectPlaybackWorks();
}

} // namespace
