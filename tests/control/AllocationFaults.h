#pragma once

// Both controls after Init, and a file to play, for tests in which each allocation of a call fails.

#include "Support.h"
#include "graph/cAudioGraph.h"
#include "player/cPlayer.h"
#include "support/ExhaustedMemory.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

namespace corvina::test {

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
        RecordProperty("failures", struck_);
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
        struck_ += nth - 2; // in the last turn none was left to fail
    }

    template <typename Value>
    void eachGetFails(const char* member, HRESULT (STDMETHODCALLTYPE _cPlayer::*get)(Value*)) {
        eachFails(member, [&] {
            Value value{};
            return (player()->*get)(&value);
        });
    }
    template <typename Value>
    void eachGraphGetFails(const char* member,
                           HRESULT (STDMETHODCALLTYPE _cAudioGraph::*get)(Value*)) {
        eachFails(member, [&] {
            Value value{};
            return (graph()->*get)(&value);
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
    int failures_ = 0; // and a turn without one for each call
    int struck_ = 0;
};

} // namespace corvina::test
