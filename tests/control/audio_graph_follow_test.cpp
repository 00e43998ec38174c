// The graph that follows a player by itself, without a device: what it takes and refuses, and whom
// it keeps alive.

#include "GraphControlFixture.h"

#include <atomic>
#include <thread>

using namespace corvina;
using namespace corvina::test;

namespace {

// Dispatches messages for that long.
void pumpFor(std::chrono::milliseconds time) {
    (void)pumpUntil([] { return false; }, time);
}

ULONG referencesOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

TEST_F(GraphControl, follows_no_player_at_first) {
    ComPtr<IDispatch> player(graph.get());
    EXPECT_EQ(S_OK, graph->get_Player(player.put()));
    EXPECT_FALSE(player);
}

TEST_F(GraphControl, returns_the_player_that_it_follows_and_does_not_keep_it_alive) {
    const auto player = create<_cPlayer>(CLSID_cPlayer);
    const ULONG before = referencesOf(player.get());
    ASSERT_EQ(S_OK, graph->putref_Player(player.get()));
    EXPECT_EQ(before, referencesOf(player.get()));
    ComPtr<IDispatch> followed;
    ASSERT_EQ(S_OK, graph->get_Player(followed.put()));
    EXPECT_EQ(player.query<IUnknown>().get(), followed.query<IUnknown>().get());
    ASSERT_EQ(S_OK, graph->put_Player(nullptr));
    ASSERT_EQ(S_OK, graph->get_Player(followed.put()));
    EXPECT_FALSE(followed);
}

TEST_F(GraphControl, refuses_arguments_behind_the_player_property) {
    Variant index;
    V_VT(&index) = VT_I4;
    V_I4(&index) = 1;
    DISPPARAMS arguments{&index, nullptr, 1, 0};
    Variant result;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT,
              graph->Invoke(15, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &arguments,
                            &result, nullptr, nullptr));
}

TEST_F(GraphControl, follows_nobody_once_the_player_has_gone) {
    {
        const auto player = create<_cPlayer>(CLSID_cPlayer);
        ASSERT_EQ(S_OK, graph->put_Player(player.get()));
    }
    ComPtr<IDispatch> followed;
    EXPECT_EQ(S_OK, graph->get_Player(followed.put()));
    EXPECT_FALSE(followed);
    pumpFor(100ms); // the next tick finds it out
    EXPECT_EQ(S_OK, graph->get_Player(followed.put()));
    EXPECT_FALSE(followed);
}

TEST_F(GraphControl, a_player_may_outlive_the_graphs_that_follow_it) {
    const auto player = create<_cPlayer>(CLSID_cPlayer);
    for (int count = 0; count < 3; ++count) {
        const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
        ASSERT_EQ(S_OK, other->put_Player(player.get()));
        pumpFor(50ms);
    }
    pumpFor(50ms);
    long result = 1;
    EXPECT_EQ(S_OK, player->Init(&result));
    EXPECT_EQ(0, result);
}

TEST_F(GraphControl, refuses_a_player_that_is_none_in_words_and_keeps_the_one_before) {
    const auto player = create<_cPlayer>(CLSID_cPlayer);
    ASSERT_EQ(S_OK, graph->put_Player(player.get()));
    EXPECT_EQ(invalidPropertyValue, graph->put_Player(graph.get()));
    EXPECT_NE(std::wstring::npos, errorText().find(L"cPlayer"));
    ComPtr<IDispatch> followed;
    ASSERT_EQ(S_OK, graph->get_Player(followed.put()));
    EXPECT_EQ(player.query<IUnknown>().get(), followed.query<IUnknown>().get());
    EXPECT_EQ(E_POINTER, graph->get_Player(nullptr));
}

TEST_F(GraphControl, scripts_set_the_player_with_and_without_Set) {
    const auto player = create<_cPlayer>(CLSID_cPlayer);
    Variant object;
    object.vt = VT_DISPATCH;
    object.pdispVal = player.query<IDispatch>().detach();
    for (const WORD flags : {WORD{DISPATCH_PROPERTYPUT}, WORD{DISPATCH_PROPERTYPUTREF}}) {
        ASSERT_EQ(S_OK, graph->put_Player(nullptr));
        ASSERT_EQ(S_OK, callByName(graph.get(), L"Player", flags, {object}));
        Variant followed;
        ASSERT_EQ(S_OK, callByName(graph.get(), L"Player", DISPATCH_PROPERTYGET, {}, &followed));
        EXPECT_EQ(VT_DISPATCH, followed.vt);
        EXPECT_EQ(object.pdispVal, followed.pdispVal);
    }
}

TEST_F(GraphControl, values_out_of_range_are_refused_with_the_range_in_words) {
    for (const long value : {0L, 101L, -1L, 0x7FFFFFFFL}) {
        EXPECT_EQ(invalidPropertyValue, graph->put_FramesPerSecond(value));
        EXPECT_NE(std::wstring::npos, errorText().find(L"1 to 100")) << value;
    }
    for (const int value : {-1, 2, 0x7FFFFFFF}) {
        EXPECT_EQ(invalidPropertyValue,
                  graph->put_LevelScale(static_cast<AudioGraphLevelScale>(value)));
        EXPECT_NE(std::wstring::npos, errorText().find(L"DECIBEL_SCALE"));
        EXPECT_EQ(invalidPropertyValue,
                  graph->put_FrequencyAxis(static_cast<AudioGraphFrequencyAxis>(value)));
        EXPECT_NE(std::wstring::npos, errorText().find(L"OCTAVE_AXIS"));
    }
    long frames = 0;
    AudioGraphLevelScale scale = DECIBEL_SCALE;
    graph->get_FramesPerSecond(&frames);
    graph->get_LevelScale(&scale);
    EXPECT_EQ(30, frames);
    EXPECT_EQ(LINEAR_SCALE, scale);
    for (const long value : {1L, 100L})
        EXPECT_EQ(S_OK, graph->put_FramesPerSecond(value));
}

TEST_F(GraphControl, any_number_but_0_is_true) {
    EXPECT_EQ(S_OK, graph->put_PeakHold(1));
    VARIANT_BOOL value = VARIANT_FALSE;
    graph->get_PeakHold(&value);
    EXPECT_EQ(VARIANT_TRUE, value);
}

// A host's other thread frees the samples while they are taken.
TEST_F(GraphControl, samples_that_another_thread_frees_are_taken_or_refused) {
    constexpr std::size_t page = 4096;
    auto* const pages = static_cast<char*>(
        ::VirtualAlloc(nullptr, 2 * page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    std::atomic<bool> ending = false;
    std::thread freer([&] {
        while (!ending) {
            ::VirtualFree(pages + page, page, MEM_DECOMMIT);
            ::VirtualAlloc(pages + page, page, MEM_COMMIT, PAGE_READWRITE);
        }
    });
    int taken = 0;
    int refused = 0;
    const DWORD start = ::GetTickCount();
    while (::GetTickCount() - start < 1000 || taken == 0 || refused == 0) {
        const HRESULT result = setAudioData(pages + page - 16);
        ASSERT_TRUE(result == S_OK || result == static_cast<HRESULT>(0x800A0005));
        ++(result == S_OK ? taken : refused);
    }
    ending = true;
    freer.join();
    ::VirtualFree(pages, 0, MEM_RELEASE);
}

} // namespace
