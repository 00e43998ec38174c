// The graph that follows a player by itself, with a player of the tests' own: when it looks for
// samples, what it shows of them, and when it stops.

#include "FormSite.h"
#include "GraphControlFixture.h"
#include "PersistenceDoubles.h"
#include "stream/SampleFeed.h"

#include <cmath>

using namespace corvina;
using namespace corvina::test;

namespace {

// Plays when a test says so, always the same samples.
class FakePlayer final : public Implements<IDispatch, IFollowedPlayer>, private SampleProvider {
public:
    FakePlayer()
        : feed_(std::make_shared<SampleFeed>(static_cast<IDispatch&>(*this),
                                             static_cast<SampleProvider&>(*this))) {
        for (int frame = 0; frame < 1000; ++frame) {
            const auto sample = static_cast<std::int16_t>(
                std::lround(30000 * std::sin(2 * 3.14159265358979 * 53 / 1024 * frame)));
            block.samples.push_back(sample);
        }
    }

    bool plays = false;
    int looks = 0; // of graphs for samples
    SampleBlock block{.samples = {}, .channels = 1, .sampleRate = 44100};

    [[nodiscard]] std::shared_ptr<SampleFeed> sampleFeed() noexcept override { return feed_; }
    void goAway() { feed_->disconnect(); }
    [[nodiscard]] long followers() const { return feed_.use_count() - 1; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

private:
    ~FakePlayer() override { feed_->disconnect(); }
    bool latestSamples(SampleBlock& latest) override {
        ++looks;
        if (plays)
            latest = block;
        return plays;
    }

    std::shared_ptr<SampleFeed> feed_;
};

class FollowingGraph : public GraphControl {
protected:
    void SetUp() override {
        GraphControl::SetUp();
        player = makeCom<FakePlayer>();
        ASSERT_EQ(S_OK, graph->put_FramesPerSecond(100));
    }
    void TearDown() override {
        if (graph)
            graph->put_Player(nullptr);
        player.reset();
        GraphControl::TearDown();
    }
    void follow() { ASSERT_EQ(S_OK, graph->putref_Player(asDispatch())); }
    IDispatch* asDispatch() { return static_cast<IDispatch*>(player.get()); }
    [[nodiscard]] IDispatch* followed() {
        ComPtr<IDispatch> found;
        EXPECT_EQ(S_OK, graph->get_Player(found.put()));
        return found.get();
    }
    // Waits for so many more looks of the graph.
    bool looksAgain(int count = 2, std::chrono::milliseconds limit = 3s) {
        const int wanted = player->looks + count;
        return pumpUntil([&] { return player->looks >= wanted; }, limit);
    }
    // Whether a timer message arrives at the graph's window within that time.
    bool ticks(DWORD milliseconds) {
        const HWND at = window();
        const DWORD begun = ::GetTickCount();
        MSG message;
        do {
            if (::PeekMessageW(&message, at, WM_TIMER, WM_TIMER, PM_REMOVE))
                return true;
            ::Sleep(1);
        } while (::GetTickCount() - begun < milliseconds);
        return false;
    }
    bool showsTheTone() { return drawn({200, 100}).at(41, 50) == green; }

    ComPtr<FakePlayer> player;
};

TEST_F(FollowingGraph, shows_what_plays_and_raises_its_level_by_itself) {
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    player->plays = true;
    follow();
    EXPECT_TRUE(pumpUntil([&] { return sink.received.size() >= 3; }, 3s));
    EXPECT_TRUE(showsTheTone());
    EXPECT_EQ(1, sink.received.back().id);
    EXPECT_GT(sink.received.back().arguments.at(0).lVal, 0);
}

TEST_F(FollowingGraph, shows_all_samples_of_all_channels_of_what_plays) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    graph->put_ChannelWaveforms(VARIANT_TRUE);
    player->block.channels = 2;
    player->block.samples.assign(2000, 0);
    player->block.samples[1998] = 32767; // the last frame, on the left
    player->plays = true;
    follow();
    ASSERT_TRUE(looksAgain());
    const Picture picture = drawn({200, 100});
    EXPECT_EQ(green, picture.at(199, 0));
    EXPECT_EQ(black, picture.at(198, 0));
    EXPECT_EQ(black, picture.at(199, 51));
}

TEST_F(FollowingGraph, shows_the_background_once_nothing_plays_any_more) {
    player->plays = true;
    follow();
    ASSERT_TRUE(looksAgain());
    player->plays = false;
    ASSERT_TRUE(looksAgain());
    EXPECT_EQ(200 * 100, drawn({200, 100}).count(black));
    EXPECT_EQ(asDispatch(), followed()) << "it may play again";
    player->plays = true;
    ASSERT_TRUE(looksAgain());
    EXPECT_TRUE(showsTheTone());
}

TEST_F(FollowingGraph, leaves_what_the_host_displays_while_nothing_plays) {
    takeTone();
    display();
    follow();
    ASSERT_TRUE(looksAgain());
    EXPECT_TRUE(showsTheTone()) << "before the first playback";
    player->plays = true;
    ASSERT_TRUE(looksAgain());
    player->plays = false;
    ASSERT_TRUE(looksAgain());
    takeTone();
    display();
    ASSERT_TRUE(looksAgain());
    EXPECT_TRUE(showsTheTone()) << "after a playback";
}

TEST_F(FollowingGraph, ends_its_timer_once_the_player_has_gone) {
    follow();
    ASSERT_TRUE(looksAgain());
    EXPECT_TRUE(ticks(1000));
    player->goAway();
    EXPECT_TRUE(pumpUntil([&] { return player->followers() == 0; }, 3s));
    (void)ticks(1); // one that waits already
    EXPECT_FALSE(ticks(100));
    EXPECT_EQ(nullptr, followed());
}

TEST_F(FollowingGraph, ends_its_timer_when_it_is_to_follow_nobody) {
    follow();
    ASSERT_TRUE(looksAgain());
    ASSERT_EQ(S_OK, graph->put_Player(nullptr));
    EXPECT_EQ(0, player->followers());
    const int looks = player->looks;
    (void)ticks(1); // one that waits already
    EXPECT_FALSE(ticks(100));
    EXPECT_EQ(looks, player->looks);
}

TEST_F(FollowingGraph, follows_the_player_that_was_set_last) {
    const auto other = makeCom<FakePlayer>();
    follow();
    ASSERT_EQ(S_OK, graph->put_Player(static_cast<IDispatch*>(other.get())));
    EXPECT_TRUE(pumpUntil([&] { return other->looks > 1; }, 3s));
    EXPECT_EQ(0, player->looks);
}

TEST_F(FollowingGraph, follows_nobody_while_a_form_is_designed) {
    const auto form = makeCom<FormSite>();
    form->designing = true;
    ASSERT_EQ(S_OK, as<IOleObject>()->SetClientSite(form.get()));
    player->plays = true;
    follow();
    EXPECT_FALSE(looksAgain(1, 100ms));
    EXPECT_EQ(asDispatch(), followed());
    as<IOleObject>()->SetClientSite(nullptr);
}

TEST_F(FollowingGraph, takes_a_new_rate_at_once) {
    ASSERT_EQ(S_OK, graph->put_FramesPerSecond(1));
    follow();
    EXPECT_FALSE(looksAgain(1, 100ms));
    ASSERT_EQ(S_OK, graph->put_FramesPerSecond(100));
    EXPECT_TRUE(looksAgain(3, 900ms));
}

TEST_F(FollowingGraph, takes_the_rate_of_loaded_properties_at_once) {
    ASSERT_EQ(S_OK, graph->put_FramesPerSecond(1));
    follow();
    MemoryPropertyBag bag;
    bag.put(L"FramesPerSecond", Variant(100L));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    EXPECT_TRUE(looksAgain(3, 900ms));
}

TEST_F(FollowingGraph, keeps_its_rhythm_when_another_property_changes) {
    ASSERT_EQ(S_OK, graph->put_FramesPerSecond(5));
    follow();
    // A timer that began anew with each change would never tick.
    const ULONGLONG begun = ::GetTickCount64();
    const auto changing = [&] {
        EXPECT_EQ(S_OK, graph->put_Bands(20));
        return player->looks > 0 || ::GetTickCount64() - begun > 800;
    };
    (void)pumpUntil(changing, 900ms);
    EXPECT_GT(player->looks, 0);
}

TEST_F(FollowingGraph, follows_on_in_the_next_container) {
    {
        Container first;
        ASSERT_EQ(S_OK, first.attach(graph.get()));
        follow();
        ASSERT_TRUE(looksAgain());
    }
    Container second;
    ASSERT_EQ(S_OK, second.attach(graph.get()));
    EXPECT_TRUE(looksAgain());
}

TEST_F(FollowingGraph, may_be_released_while_it_follows) {
    player->plays = true;
    follow();
    ASSERT_TRUE(looksAgain());
    EXPECT_EQ(1, player->followers());
    graph.reset();
    EXPECT_EQ(0, player->followers());
    EXPECT_FALSE(looksAgain(1, 50ms));
}

} // namespace
