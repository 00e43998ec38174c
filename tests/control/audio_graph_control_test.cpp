// The graph control as its hosts use it through COM: properties, the address of the samples, the
// event.

#include "GraphControlFixture.h"
#include "graph/BandLevels.h"
#include "support/Limits.h"

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr HRESULT invalidCall = static_cast<HRESULT>(0x800A0005);
constexpr HRESULT invalidProperty = static_cast<HRESULT>(0x800A017C);

// ---- properties

TEST_F(GraphControl, a_new_graph_has_the_documented_properties) {
    AudioGraphStyle style{};
    BorderStyle border = StyleFixed;
    long bands = 0, space = 0, width = 0;
    OLE_COLOR background = 1, amplitude = 0, frequency = 0;
    EXPECT_EQ(S_OK, graph->get_GraphStyle(&style));
    EXPECT_EQ(S_OK, graph->get_Bands(&bands));
    EXPECT_EQ(S_OK, graph->get_BandsSpace(&space));
    EXPECT_EQ(S_OK, graph->get_BandsWidth(&width));
    EXPECT_EQ(S_OK, graph->get_BackgroundColor(&background));
    EXPECT_EQ(S_OK, graph->get_AmplitudeColor(&amplitude));
    EXPECT_EQ(S_OK, graph->get_FreqColor(&frequency));
    EXPECT_EQ(S_OK, graph->get_BorderStyle(&border));
    EXPECT_EQ(FREQUENCY_STYLE, style);
    EXPECT_EQ(50, bands);
    EXPECT_EQ(1, space);
    EXPECT_EQ(3, width);
    EXPECT_EQ(0U, background);
    EXPECT_EQ(65280U, amplitude);
    EXPECT_EQ(65280U, frequency);
    EXPECT_EQ(StyleNone, border);
}

TEST_F(GraphControl, every_number_and_colour_can_be_written_and_read) {
    for (const std::int32_t value : {0, 1, -1, 1025, highest, lowest}) {
        long number = 0;
        OLE_COLOR color = 0;
        const auto asColor = static_cast<OLE_COLOR>(value);
        EXPECT_EQ(S_OK, graph->put_Bands(value));
        EXPECT_EQ(S_OK, graph->put_BandsSpace(value));
        EXPECT_EQ(S_OK, graph->put_BandsWidth(value));
        EXPECT_EQ(S_OK, graph->put_BackgroundColor(asColor));
        EXPECT_EQ(S_OK, graph->put_AmplitudeColor(asColor));
        EXPECT_EQ(S_OK, graph->put_FreqColor(asColor));
        EXPECT_TRUE(graph->get_Bands(&number) == S_OK && number == value);
        EXPECT_TRUE(graph->get_BandsSpace(&number) == S_OK && number == value);
        EXPECT_TRUE(graph->get_BandsWidth(&number) == S_OK && number == value);
        EXPECT_TRUE(graph->get_BackgroundColor(&color) == S_OK && color == asColor);
        EXPECT_TRUE(graph->get_AmplitudeColor(&color) == S_OK && color == asColor);
        EXPECT_TRUE(graph->get_FreqColor(&color) == S_OK && color == asColor);
    }
}

TEST_F(GraphControl, a_style_that_does_not_exist_is_an_invalid_property_value) {
    for (const int value : {2, -1, 100}) {
        EXPECT_EQ(invalidProperty, graph->put_GraphStyle(static_cast<AudioGraphStyle>(value)));
        EXPECT_EQ(invalidProperty, graph->put_BorderStyle(static_cast<BorderStyle>(value)));
    }
    AudioGraphStyle style{};
    BorderStyle border = StyleFixed;
    graph->get_GraphStyle(&style);
    graph->get_BorderStyle(&border);
    EXPECT_EQ(FREQUENCY_STYLE, style);
    EXPECT_EQ(StyleNone, border);
}

TEST_F(GraphControl, properties_work_by_name) {
    const auto dispatch = as<IDispatch>();
    EXPECT_EQ(S_OK, callByName(dispatch.get(), L"Bands", DISPATCH_PROPERTYPUT, {Variant(20L)}));
    Variant bands;
    EXPECT_EQ(S_OK, callByName(dispatch.get(), L"Bands", DISPATCH_PROPERTYGET, {}, &bands));
    EXPECT_EQ(20, bands.lVal);
}

TEST_F(GraphControl, the_methods_of_the_calling_order_return_zero) {
    long result = 7;
    EXPECT_EQ(S_OK, graph->Init(&result));
    EXPECT_EQ(0, result);
    result = 7;
    EXPECT_EQ(S_OK, graph->ClearGraph(&result));
    EXPECT_EQ(0, result);
    result = 7;
    EXPECT_EQ(S_OK, graph->DeInit(&result));
    EXPECT_EQ(0, result);
}

TEST_F(GraphControl, a_missing_place_for_the_result_is_refused) {
    EXPECT_EQ(E_POINTER, graph->Init(nullptr));
    EXPECT_EQ(E_POINTER, graph->SetAudioData(0, nullptr));
    EXPECT_EQ(E_POINTER, graph->get_Bands(nullptr));
    EXPECT_EQ(E_POINTER, graph->get_hWnd(nullptr));
}

// ---- addresses

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
    EXPECT_TRUE(sink.heard.empty());
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

// ---- the event

TEST_F(GraphControl, taking_samples_raises_the_level_of_the_last_display) {
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    const auto tone = sineBlock(18, 32767);
    take(tone);
    display();
    take(tone);
    ASSERT_EQ(2U, sink.heard.size());
    EXPECT_EQ(1, sink.heard[0].id);
    EXPECT_EQ(0, sink.heard[0].arguments.at(0).lVal);
    BandLevels bands;
    bands.update(bufferOf(tone), 50);
    EXPECT_EQ(bands.loudness(), sink.heard[1].arguments.at(0).lVal);
    EXPECT_GT(sink.heard[1].arguments.at(0).lVal, 0);
}

TEST_F(GraphControl, the_level_is_kept_up_while_the_waveform_is_shown) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    EventSink sink(DIID___cAudioGraph);
    ASSERT_EQ(S_OK, sink.connect(graph.get(), DIID___cAudioGraph));
    take(sineBlock(18, 32767));
    display();
    take({});
    EXPECT_GT(sink.heard.at(1).arguments.at(0).lVal, 0);
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
