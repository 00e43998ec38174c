// The graph control kept and loaded again: property bag, stream, storage.

#include "GraphControlFixture.h"
#include "PersistenceDoubles.h"
#include "PropertySink.h"

#include <vector>

using namespace corvina;
using namespace corvina::test;

namespace {

void changeEverything(_cAudioGraph& graph) {
    EXPECT_EQ(S_OK, graph.put_GraphStyle(AMPLITUDE_STYLE));
    EXPECT_EQ(S_OK, graph.put_Bands(20));
    EXPECT_EQ(S_OK, graph.put_BandsSpace(4));
    EXPECT_EQ(S_OK, graph.put_BandsWidth(7));
    EXPECT_EQ(S_OK, graph.put_BackgroundColor(0x80000005));
    EXPECT_EQ(S_OK, graph.put_AmplitudeColor(red));
    EXPECT_EQ(S_OK, graph.put_FreqColor(blue));
    EXPECT_EQ(S_OK, graph.put_BorderStyle(StyleFixed));
    EXPECT_EQ(S_OK, graph.put_FramesPerSecond(12));
    EXPECT_EQ(S_OK, graph.put_LevelScale(DECIBEL_SCALE));
    EXPECT_EQ(S_OK, graph.put_FrequencyAxis(OCTAVE_AXIS));
    EXPECT_EQ(S_OK, graph.put_PeakHold(VARIANT_TRUE));
    EXPECT_EQ(S_OK, graph.put_ChannelWaveforms(VARIANT_TRUE));
}

// The same as a property bag holds it.
const std::pair<const wchar_t*, long> everythingChanged[] = {
    {L"GraphStyle", AMPLITUDE_STYLE},
    {L"Bands", 20},
    {L"BandsSpace", 4},
    {L"BandsWidth", 7},
    {L"BackgroundColor", static_cast<long>(0x80000005)},
    {L"AmplitudeColor", static_cast<long>(red)},
    {L"FreqColor", static_cast<long>(blue)},
    {L"BorderStyle", StyleFixed},
    {L"FramesPerSecond", 12},
    {L"LevelScale", DECIBEL_SCALE},
    {L"FrequencyAxis", OCTAVE_AXIS},
    {L"PeakHold", VARIANT_TRUE},
    {L"ChannelWaveforms", VARIANT_TRUE}};

void expectEverythingChanged(_cAudioGraph& graph) {
    AudioGraphStyle style{};
    BorderStyle border{};
    long bands = 0, space = 0, width = 0;
    OLE_COLOR background = 0, amplitude = 0, frequency = 0;
    EXPECT_EQ(S_OK, graph.get_GraphStyle(&style));
    EXPECT_EQ(S_OK, graph.get_Bands(&bands));
    EXPECT_EQ(S_OK, graph.get_BandsSpace(&space));
    EXPECT_EQ(S_OK, graph.get_BandsWidth(&width));
    EXPECT_EQ(S_OK, graph.get_BackgroundColor(&background));
    EXPECT_EQ(S_OK, graph.get_AmplitudeColor(&amplitude));
    EXPECT_EQ(S_OK, graph.get_FreqColor(&frequency));
    EXPECT_EQ(S_OK, graph.get_BorderStyle(&border));
    EXPECT_EQ(AMPLITUDE_STYLE, style);
    EXPECT_EQ(20, bands);
    EXPECT_EQ(4, space);
    EXPECT_EQ(7, width);
    EXPECT_EQ(0x80000005U, background);
    EXPECT_EQ(red, amplitude);
    EXPECT_EQ(blue, frequency);
    EXPECT_EQ(StyleFixed, border);
    long frames = 0;
    AudioGraphLevelScale scale{};
    AudioGraphFrequencyAxis axis{};
    VARIANT_BOOL peaks = VARIANT_FALSE, channels = VARIANT_FALSE;
    EXPECT_EQ(S_OK, graph.get_FramesPerSecond(&frames));
    EXPECT_EQ(S_OK, graph.get_LevelScale(&scale));
    EXPECT_EQ(S_OK, graph.get_FrequencyAxis(&axis));
    EXPECT_EQ(S_OK, graph.get_PeakHold(&peaks));
    EXPECT_EQ(S_OK, graph.get_ChannelWaveforms(&channels));
    EXPECT_EQ(12, frames);
    EXPECT_EQ(DECIBEL_SCALE, scale);
    EXPECT_EQ(OCTAVE_AXIS, axis);
    EXPECT_EQ(VARIANT_TRUE, peaks);
    EXPECT_EQ(VARIANT_TRUE, channels);
}

TEST_F(GraphControl, a_property_bag_gets_every_value_under_its_name) {
    changeEverything(*graph.get());
    for (const BOOL everything : {FALSE, TRUE}) {
        MemoryPropertyBag bag;
        ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Save(&bag, TRUE, everything));
        for (const auto& [name, value] : everythingChanged) {
            ASSERT_TRUE(bag.has(name)) << name;
            EXPECT_EQ(value, V_I4(&bag.values.at(name))) << name;
        }
    }
}

TEST_F(GraphControl, each_property_is_loaded_by_its_name) {
    MemoryPropertyBag bag;
    for (const auto& [name, value] : everythingChanged)
        bag.put(name, Variant(value));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    expectEverythingChanged(*graph.get());
}

TEST_F(GraphControl, listeners_are_notified_of_each_property_change_by_its_number) {
    PropertySink sink;
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(S_OK, as<IConnectionPointContainer>()->FindConnectionPoint(IID_IPropertyNotifySink,
                                                                         point.put()));
    ASSERT_EQ(S_OK, sink.connect(point));
    changeEverything(*graph.get());
    std::vector<DISPID> numbers;
    for (const auto& [name, value] : everythingChanged) {
        auto* text = const_cast<wchar_t*>(name);
        ASSERT_EQ(S_OK, graph->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT,
                                             &numbers.emplace_back()));
    }
    EXPECT_EQ((std::vector<DISPID>{1, 2, 3, 4, 5, 6, 7, 8, 16, 17, 18, 19, 20}), numbers);
    EXPECT_EQ(numbers, sink.received);
}

TEST_F(GraphControl, a_bag_without_a_name_brings_the_default) {
    MemoryPropertyBag bag;
    bag.put(L"Bands", Variant(12L));
    changeEverything(*graph.get());
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    long bands = 0, width = 0;
    graph->get_Bands(&bands);
    graph->get_BandsWidth(&width);
    EXPECT_EQ(12, bands);
    EXPECT_EQ(3, width);
}

TEST_F(GraphControl, foreign_values_in_a_bag_are_replaced_by_the_defaults) {
    MemoryPropertyBag bag;
    bag.put(L"GraphStyle", Variant(9L));
    bag.put(L"BorderStyle", Variant(-2L));
    bag.put(L"Bands", Variant(L"many"));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    AudioGraphStyle style{};
    BorderStyle border = StyleFixed;
    long bands = 0;
    graph->get_GraphStyle(&style);
    graph->get_BorderStyle(&border);
    graph->get_Bands(&bands);
    EXPECT_EQ(FREQUENCY_STYLE, style);
    EXPECT_EQ(StyleNone, border);
    EXPECT_EQ(50, bands);
}

TEST_F(GraphControl, a_system_colour_in_a_bag_may_be_an_unsigned_number_or_its_text) {
    Variant number;
    V_VT(&number) = VT_UI4;
    V_UI4(&number) = 0x80000005;
    MemoryPropertyBag bag;
    bag.put(L"BackgroundColor", number);
    bag.put(L"FreqColor", Variant(L"2147483653"));
    bag.put(L"AmplitudeColor", Variant(L"-2147483643"));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    OLE_COLOR background = 0, frequency = 0, amplitude = 0;
    graph->get_BackgroundColor(&background);
    graph->get_FreqColor(&frequency);
    graph->get_AmplitudeColor(&amplitude);
    EXPECT_EQ(0x80000005U, background);
    EXPECT_EQ(0x80000005U, frequency);
    EXPECT_EQ(0x80000005U, amplitude);
}

TEST_F(GraphControl, a_number_of_more_than_32_bits_in_a_bag_is_replaced_by_the_default) {
    MemoryPropertyBag bag;
    bag.put(L"Bands", Variant(L"4294967296"));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    long bands = 0;
    graph->get_Bands(&bands);
    EXPECT_EQ(50, bands);
}

TEST_F(GraphControl, a_stream_keeps_everything) {
    const auto stream = memoryStream();
    changeEverything(*graph.get());
    ASSERT_EQ(S_OK, as<IPersistStreamInit>()->Save(stream.get(), TRUE));
    rewind(stream);
    const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
    ASSERT_EQ(S_OK, other.query<IPersistStreamInit>()->Load(stream.get()));
    expectEverythingChanged(*other.get());
}

// The eight values of the first version: signature, extent, number of values, the values.
TEST_F(GraphControl, a_stream_without_the_newer_values_brings_their_defaults) {
    const std::int32_t saved[] = {1000, 500,      8,        AMPLITUDE_STYLE, 20,        4,
                                  7,    0x112233, 0x445566, 0x778899,        StyleFixed};
    const auto stream = memoryStream();
    stream->Write("Crv1", 4, nullptr);
    stream->Write(saved, sizeof saved, nullptr);
    rewind(stream);
    changeEverything(*graph.get());
    ASSERT_EQ(S_OK, as<IPersistStreamInit>()->Load(stream.get()));
    BorderStyle border{};
    long frames = 0;
    AudioGraphLevelScale scale = DECIBEL_SCALE;
    AudioGraphFrequencyAxis axis = OCTAVE_AXIS;
    VARIANT_BOOL peaks = VARIANT_TRUE, channels = VARIANT_TRUE;
    graph->get_BorderStyle(&border);
    graph->get_FramesPerSecond(&frames);
    graph->get_LevelScale(&scale);
    graph->get_FrequencyAxis(&axis);
    graph->get_PeakHold(&peaks);
    graph->get_ChannelWaveforms(&channels);
    EXPECT_EQ(StyleFixed, border);
    EXPECT_EQ(30, frames);
    EXPECT_EQ(LINEAR_SCALE, scale);
    EXPECT_EQ(BAND_AXIS, axis);
    EXPECT_EQ(VARIANT_FALSE, peaks);
    EXPECT_EQ(VARIANT_FALSE, channels);
}

TEST_F(GraphControl, newer_values_out_of_range_are_replaced_by_the_defaults) {
    for (const long frames : {0L, 101L, -1L}) {
        MemoryPropertyBag bag;
        bag.put(L"FramesPerSecond", Variant(frames));
        bag.put(L"LevelScale", Variant(2L));
        bag.put(L"FrequencyAxis", Variant(-1L));
        bag.put(L"PeakHold", Variant(2L));
        bag.put(L"ChannelWaveforms", Variant(1L)); // as people write it
        ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
        long loaded = 0;
        AudioGraphLevelScale scale = DECIBEL_SCALE;
        VARIANT_BOOL peaks = VARIANT_TRUE, channels = VARIANT_FALSE;
        graph->get_FramesPerSecond(&loaded);
        graph->get_LevelScale(&scale);
        graph->get_PeakHold(&peaks);
        graph->get_ChannelWaveforms(&channels);
        EXPECT_EQ(30, loaded);
        EXPECT_EQ(LINEAR_SCALE, scale);
        EXPECT_EQ(VARIANT_FALSE, peaks);
        EXPECT_EQ(VARIANT_TRUE, channels);
    }
}

TEST_F(GraphControl, a_storage_keeps_everything) {
    const auto storage = memoryStorage();
    changeEverything(*graph.get());
    ASSERT_EQ(S_OK, as<IPersistStorage>()->Save(storage.get(), FALSE));
    const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
    ASSERT_EQ(S_OK, other.query<IPersistStorage>()->Load(storage.get()));
    expectEverythingChanged(*other.get());
}

TEST_F(GraphControl, every_shortened_stream_is_refused_or_leaves_the_rest_at_the_defaults) {
    const auto stream = memoryStream();
    changeEverything(*graph.get());
    as<IPersistStreamInit>()->Save(stream.get(), TRUE);
    std::vector<char> bytes(200);
    rewind(stream);
    ULONG length = 0;
    stream->Read(bytes.data(), 200, &length);
    for (ULONG kept = 0; kept < length; ++kept) {
        const auto shortened = memoryStream();
        shortened->Write(bytes.data(), kept, nullptr);
        rewind(shortened);
        const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
        EXPECT_TRUE(FAILED(other.query<IPersistStreamInit>()->Load(shortened.get()))) << kept;
        long bands = 0;
        other->get_Bands(&bands);
        EXPECT_EQ(50, bands) << kept;
        EXPECT_EQ(S_OK, other->Display());
    }
}

TEST_F(GraphControl, a_loaded_graph_shows_its_own_background) {
    MemoryPropertyBag bag;
    bag.put(L"BackgroundColor", Variant(static_cast<long>(blue)));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    EXPECT_EQ(200 * 100, drawn({200, 100}).count(blue));
}

} // namespace
