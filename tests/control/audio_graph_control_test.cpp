// The graph control as its hosts use it through COM: its properties.

#include "GraphControlFixture.h"
#include "graph/BandLevels.h"
#include "support/Limits.h"

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr HRESULT invalidCall = static_cast<HRESULT>(0x800A0005);
constexpr HRESULT invalidProperty = static_cast<HRESULT>(0x800A017C);

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
        EXPECT_NE(std::wstring::npos, errorText().find(L"FREQUENCY_STYLE")) << value;
        EXPECT_EQ(invalidProperty, graph->put_BorderStyle(static_cast<BorderStyle>(value)));
        EXPECT_NE(std::wstring::npos, errorText().find(L"StyleFixed")) << value;
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

} // namespace
