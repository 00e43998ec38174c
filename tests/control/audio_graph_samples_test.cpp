// How the graph control takes samples: the address that a host passes, and the event that follows.

#include "GraphControlFixture.h"
#include "graph/BandLevels.h"
#include "support/Limits.h"

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr HRESULT invalidCall = static_cast<HRESULT>(0x800A0005);

// Two pages of which the second cannot be read.
class Pages {
public:
    explicit Pages(DWORD secondPage = PAGE_NOACCESS) {
        first = static_cast<char*>(
            ::VirtualAlloc(nullptr, 2 * page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before = 0;
        ::VirtualProtect(first + page, page, secondPage, &before);
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages() { ::VirtualFree(first, 0, MEM_RELEASE); }
    static constexpr std::size_t page = 4096;
    char* first;
};

TEST_F(GraphControl, an_address_without_samples_is_a_clear_error_and_the_host_lives) {
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    const Pages pages;
    const std::vector<std::int16_t> samples(1024);
    char* unmapped = nullptr;
    {
        const Pages released;
        unmapped = released.first;
    }
    const auto number = [](std::uintptr_t address) {
        return reinterpret_cast<const void*>(address);
    };
    for (const void* address :
         {number(0), number(1), number(2), static_cast<const void*>(unmapped),
          reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(samples.data()) + 1),
          static_cast<const void*>(pages.first + Pages::page),
          static_cast<const void*>(pages.first + Pages::page - 1022), number(0x80000000),
          number(0xC0000000), number(0xFFFFFFFE), number(0xFFFFFC02), number(0x7FFFFFFE)}) {
        EXPECT_EQ(invalidCall, setAudioData(address)) << address;
        ComPtr<IErrorInfo> information;
        ASSERT_EQ(S_OK, ::GetErrorInfo(0, information.put())) << address;
        BSTR text = nullptr;
        information->GetDescription(&text);
        EXPECT_NE(nullptr, std::wcsstr(text, L"SetAudioData"));
        ::SysFreeString(text);
    }
    EXPECT_TRUE(sink.received.empty());
}

TEST_F(GraphControl, a_guard_page_is_refused_and_stays_armed) {
    const Pages pages(PAGE_READWRITE | PAGE_GUARD);
    EXPECT_EQ(invalidCall, setAudioData(pages.first + Pages::page));
    EXPECT_EQ(invalidCall, setAudioData(pages.first + Pages::page - 512));
    MEMORY_BASIC_INFORMATION region{};
    ::VirtualQuery(pages.first + Pages::page, &region, sizeof region);
    EXPECT_NE(0U, region.Protect & PAGE_GUARD);
}

TEST_F(GraphControl, samples_that_end_just_before_unreadable_memory_are_taken) {
    const Pages pages;
    EXPECT_EQ(S_OK, setAudioData(pages.first + Pages::page - 1024));
}

TEST_F(GraphControl, samples_may_lie_across_two_readable_pages) {
    const Pages pages(PAGE_READONLY);
    EXPECT_EQ(S_OK, setAudioData(pages.first + Pages::page - 512));
}

TEST_F(GraphControl, taking_samples_raises_the_level_of_the_last_display) {
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    const auto tone = sineBlock(18, 32767);
    take(tone);
    display();
    take(tone);
    ASSERT_EQ(2U, sink.received.size());
    EXPECT_EQ(1, sink.received[0].id);
    EXPECT_EQ(0, sink.received[0].arguments.at(0).lVal);
    BandLevels bands;
    bands.update(bufferOf(tone), 50);
    EXPECT_EQ(bands.loudness(), sink.received[1].arguments.at(0).lVal);
    EXPECT_GT(sink.received[1].arguments.at(0).lVal, 0);
}

TEST_F(GraphControl, the_level_is_kept_up_while_the_waveform_is_shown) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    take(sineBlock(18, 32767));
    display();
    take({});
    EXPECT_GT(sink.received.at(1).arguments.at(0).lVal, 0);
}

TEST_F(GraphControl, a_listener_may_display_and_release_the_graph) {
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    _cAudioGraph* raw = graph.get();
    sink.handler = [&](const EventSink::Event&) {
        EXPECT_EQ(S_OK, raw->Display());
        sink.disconnect();
        graph.reset();
    };
    std::vector<std::int16_t> samples(512);
    long result = 7;
    EXPECT_EQ(S_OK, raw->SetAudioData(static_cast<long>(reinterpret_cast<LONG_PTR>(samples.data())),
                                      &result));
    EXPECT_EQ(0, result);
    EXPECT_FALSE(graph);
}

} // namespace
