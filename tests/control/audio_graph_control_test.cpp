// The graph control as its hosts use it: through COM, in a container, kept and loaded again.

#include "Keeping.h"
#include "Support.h"
#include "graph/BandLevels.h"
#include "graph/Surface.h"
#include "support/MessagePump.h"
#include "support/SampleBlocks.h"

#include <limits>
#include <memory>

using namespace corvina;
using namespace corvina::test;

namespace {

constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF green = RGB(0, 255, 0);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 255);
constexpr COLORREF white = RGB(255, 255, 255);
constexpr HRESULT invalidCall = static_cast<HRESULT>(0x800A0005);
constexpr HRESULT invalidProperty = static_cast<HRESULT>(0x800A017C);
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

// A picture of what somebody drew.
class Picture {
public:
    explicit Picture(SIZE size) : size_(size) {
        surface_->resize(size);
        surface_->BackColor(white);
        surface_->Cls();
    }
    [[nodiscard]] HDC dc() const { return surface_->dc(); }
    [[nodiscard]] COLORREF at(int x, int y) const { return ::GetPixel(dc(), x, y); }
    [[nodiscard]] int count(COLORREF color) const {
        int found = 0;
        for (int y = 0; y < size_.cy; ++y)
            for (int x = 0; x < size_.cx; ++x)
                found += at(x, y) == color;
        return found;
    }
    [[nodiscard]] int differences(const Picture& other) const {
        int found = 0;
        for (int y = 0; y < size_.cy; ++y)
            for (int x = 0; x < size_.cx; ++x)
                found += at(x, y) != other.at(x, y);
        return found;
    }

private:
    std::unique_ptr<Surface> surface_ = std::make_unique<Surface>();
    SIZE size_;
};

class GraphControl : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        graph = create<_cAudioGraph>(CLSID_cAudioGraph);
        ASSERT_TRUE(graph);
    }
    void TearDown() override {
        graph.reset();
        ApartmentTest::TearDown();
    }

    template <typename Interface>
    ComPtr<Interface> as() {
        return graph.query<Interface>();
    }
    void take(std::vector<std::int16_t> samples) {
        samples.resize(512);
        EXPECT_EQ(S_OK, setAudioData(samples.data()));
    }
    HRESULT setAudioData(const void* address) {
        long result = 7;
        const HRESULT returned =
            graph->SetAudioData(static_cast<long>(reinterpret_cast<LONG_PTR>(address)), &result);
        EXPECT_EQ(0, result);
        return returned;
    }
    // A tone that fills band 10: bars at 40 ... 42 with the initial widths.
    void takeTone() { take(sineBlock(53, 32767)); }
    void display() { EXPECT_EQ(S_OK, graph->Display()); }
    HWND window() {
        long handle = 0;
        EXPECT_EQ(S_OK, graph->get_hWnd(&handle));
        return reinterpret_cast<HWND>(static_cast<LONG_PTR>(handle));
    }
    // The control drawn by itself, whatever covers its window.
    Picture drawn(SIZE size) {
        Picture picture(size);
        const RECTL bounds{0, 0, size.cx, size.cy};
        EXPECT_EQ(S_OK, as<IViewObject>()->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr,
                                                picture.dc(), &bounds, nullptr, nullptr, 0));
        return picture;
    }
    // What can be seen in the window.
    Picture seen() {
        RECT client{};
        ::GetClientRect(window(), &client);
        Picture picture({client.right, client.bottom});
        const HDC dc = ::GetDC(window());
        ::BitBlt(picture.dc(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
        ::ReleaseDC(window(), dc);
        return picture;
    }

    ComPtr<_cAudioGraph> graph;
};

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

// ---- pictures

TEST_F(GraphControl, displays_without_a_container) {
    takeTone();
    display();
    const Picture picture = drawn({200, 100});
    EXPECT_EQ(green, picture.at(41, 0));
    EXPECT_EQ(green, picture.at(41, 99));
    EXPECT_EQ(black, picture.at(43, 50));
}

TEST_F(GraphControl, shows_its_picture_in_a_container_at_once) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    takeTone();
    display();
    const Picture picture = seen();
    EXPECT_EQ(green, picture.at(41, 0));
    EXPECT_EQ(green, picture.at(41, 199));
    EXPECT_EQ(black, picture.at(43, 100));
}

TEST_F(GraphControl, a_tone_shows_its_bar_where_the_arithmetic_says) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    std::vector<std::int16_t> tone(512); // 1 kHz at 44100 Hz: bin 23.2, band 4
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = static_cast<std::int16_t>(
            20000 * std::sin(2 * 3.14159265358979 * 1000 * static_cast<double>(i) / 44100));
    take(tone);
    display();
    const Picture picture = seen();
    EXPECT_EQ(green, picture.at(4 * 4 + 1, 0));
    BandLevels bands;
    bands.update(bufferOf(tone), 50);
    for (int band = 0; band < 50; ++band) {
        const auto top = static_cast<int>(
            std::nearbyint(200 - 200 * bands.levels()[static_cast<std::size_t>(band)]));
        if (top < 200) {
            EXPECT_EQ(green, picture.at(4 * band + 1, top)) << band;
        }
        if (top > 0) {
            EXPECT_EQ(black, picture.at(4 * band + 1, top - 1)) << band;
        }
    }
}

TEST_F(GraphControl, is_painted_again_after_it_was_covered) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    takeTone();
    display();
    const Picture before = seen();
    const HWND cover = ::CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP, 0, 0, 300, 300,
                                         nullptr, nullptr, nullptr, nullptr);
    ::ShowWindow(cover, SW_SHOWNOACTIVATE);
    ::UpdateWindow(cover);
    dispatchWaitingMessages();
    ::DestroyWindow(cover);
    EXPECT_TRUE(pumpUntil([&] { return seen().differences(before) == 0; }, 10s));
}

TEST_F(GraphControl, has_its_picture_at_a_new_size) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    takeTone();
    display();
    ::SetWindowPos(container.window(), nullptr, 10, 10, 150, 90, SWP_NOZORDER);
    const auto complete = [&] {
        const Picture picture = seen();
        return picture.at(41, 0) == green && picture.at(41, 89) == green &&
               picture.at(43, 45) == black && picture.at(149, 0) == black;
    };
    EXPECT_TRUE(pumpUntil(complete, 10s));
}

TEST_F(GraphControl, a_new_colour_or_style_is_seen_at_the_next_display) {
    takeTone();
    display();
    graph->put_FreqColor(red);
    graph->put_BackgroundColor(blue);
    EXPECT_EQ(green, drawn({200, 100}).at(41, 50));
    EXPECT_EQ(black, drawn({200, 100}).at(199, 0));
    display();
    EXPECT_EQ(red, drawn({200, 100}).at(41, 50));
    EXPECT_EQ(blue, drawn({200, 100}).at(199, 0));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    EXPECT_EQ(0, drawn({200, 100}).count(green));
    display();
    EXPECT_GT(drawn({200, 100}).count(green), 100);
    EXPECT_EQ(0, drawn({200, 100}).count(red));
}

TEST_F(GraphControl, a_border_appears_at_the_next_display) {
    graph->put_BorderStyle(StyleFixed);
    EXPECT_EQ(black, drawn({200, 100}).at(0, 0));
    display();
    EXPECT_EQ(::GetSysColor(COLOR_3DSHADOW), drawn({200, 100}).at(0, 0));
    EXPECT_EQ(::GetSysColor(COLOR_3DSHADOW), drawn({200, 100}).at(199, 99));
    EXPECT_EQ(black, drawn({200, 100}).at(1, 1));
}

TEST_F(GraphControl, system_colours_stand_for_what_the_system_shows) {
    graph->put_BackgroundColor(0x80000000U | COLOR_HIGHLIGHT);
    display();
    EXPECT_EQ(::GetSysColor(COLOR_HIGHLIGHT), drawn({200, 100}).at(199, 0));
}

TEST_F(GraphControl, clearing_leaves_the_background) {
    takeTone();
    display();
    long result = 7;
    EXPECT_EQ(S_OK, graph->ClearGraph(&result));
    EXPECT_EQ(200 * 100, drawn({200, 100}).count(black));
}

TEST_F(GraphControl, gives_a_metafile_of_its_picture) {
    takeTone();
    display();
    for (const bool enhanced : {true, false}) {
        FORMATETC format{static_cast<CLIPFORMAT>(enhanced ? CF_ENHMETAFILE : CF_METAFILEPICT),
                         nullptr, DVASPECT_CONTENT, -1,
                         static_cast<DWORD>(enhanced ? TYMED_ENHMF : TYMED_MFPICT)};
        STGMEDIUM medium{};
        ASSERT_EQ(S_OK, as<IDataObject>()->GetData(&format, &medium));
        const Picture picture({400, 200});
        const RECT whole{0, 0, 400, 200};
        if (enhanced) {
            ::PlayEnhMetaFile(picture.dc(), medium.hEnhMetaFile, &whole);
        } else {
            const auto* described =
                static_cast<const METAFILEPICT*>(::GlobalLock(medium.hMetaFilePict));
            ::SetMapMode(picture.dc(), MM_ANISOTROPIC);
            ::SetViewportExtEx(picture.dc(), 400, 200, nullptr);
            ::PlayMetaFile(picture.dc(), described->hMF);
            ::SetMapMode(picture.dc(), MM_TEXT);
            ::GlobalUnlock(medium.hMetaFilePict);
        }
        // Twice the size: the bar of band 10 lies at 80 ... 85.
        EXPECT_EQ(green, picture.at(82, 10)) << enhanced;
        EXPECT_EQ(green, picture.at(82, 190)) << enhanced;
        EXPECT_EQ(black, picture.at(380, 10)) << enhanced;
        ::ReleaseStgMedium(&medium);
    }
}

// A container that lets its user design a form.
class DesigningSite final : public IOleClientSite, public IDispatch {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = nullptr;
        if (iid == IID_IUnknown || iid == IID_IOleClientSite)
            *result = static_cast<IOleClientSite*>(this);
        else if (iid == IID_IDispatch)
            *result = static_cast<IDispatch*>(this);
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id != DISPID_AMBIENT_USERMODE || !result)
            return DISP_E_MEMBERNOTFOUND;
        result->vt = VT_BOOL;
        result->boolVal = VARIANT_FALSE;
        return S_OK;
    }
};

TEST_F(GraphControl, shows_a_sample_picture_while_a_form_is_designed) {
    DesigningSite site;
    ASSERT_EQ(S_OK, as<IOleObject>()->SetClientSite(&site));
    EXPECT_GT(drawn({200, 100}).count(green), 500);
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    graph->put_AmplitudeColor(red);
    graph->put_BackgroundColor(blue);
    const Picture picture = drawn({200, 100});
    EXPECT_GT(picture.count(red), 200);
    EXPECT_EQ(200 * 100, picture.count(red) + picture.count(blue));
    as<IOleObject>()->SetClientSite(nullptr);
}

// ---- keeping

void changeEverything(_cAudioGraph& graph) {
    graph.put_GraphStyle(AMPLITUDE_STYLE);
    graph.put_Bands(20);
    graph.put_BandsSpace(4);
    graph.put_BandsWidth(7);
    graph.put_BackgroundColor(0x80000005);
    graph.put_AmplitudeColor(red);
    graph.put_FreqColor(blue);
    graph.put_BorderStyle(StyleFixed);
}

void expectEverythingChanged(_cAudioGraph& graph) {
    AudioGraphStyle style{};
    BorderStyle border{};
    long bands = 0, space = 0, width = 0;
    OLE_COLOR background = 0, amplitude = 0, frequency = 0;
    graph.get_GraphStyle(&style);
    graph.get_Bands(&bands);
    graph.get_BandsSpace(&space);
    graph.get_BandsWidth(&width);
    graph.get_BackgroundColor(&background);
    graph.get_AmplitudeColor(&amplitude);
    graph.get_FreqColor(&frequency);
    graph.get_BorderStyle(&border);
    EXPECT_EQ(AMPLITUDE_STYLE, style);
    EXPECT_EQ(20, bands);
    EXPECT_EQ(4, space);
    EXPECT_EQ(7, width);
    EXPECT_EQ(0x80000005U, background);
    EXPECT_EQ(red, amplitude);
    EXPECT_EQ(blue, frequency);
    EXPECT_EQ(StyleFixed, border);
}

TEST_F(GraphControl, a_property_bag_keeps_everything_under_its_name) {
    Bag bag;
    changeEverything(*graph.get());
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Save(&bag, TRUE, FALSE));
    for (const wchar_t* name :
         {L"GraphStyle", L"Bands", L"BandsSpace", L"BandsWidth", L"BackgroundColor",
          L"AmplitudeColor", L"FreqColor", L"BorderStyle"})
        EXPECT_TRUE(bag.has(name)) << name;
    const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
    ASSERT_EQ(S_OK, other.query<IPersistPropertyBag>()->Load(&bag, nullptr));
    expectEverythingChanged(*other.get());
}

TEST_F(GraphControl, a_bag_without_a_name_brings_the_default) {
    Bag bag;
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
    Bag bag;
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

TEST_F(GraphControl, a_stream_keeps_everything) {
    const auto stream = memoryStream();
    changeEverything(*graph.get());
    ASSERT_EQ(S_OK, as<IPersistStreamInit>()->Save(stream.get(), TRUE));
    rewind(stream);
    const auto other = create<_cAudioGraph>(CLSID_cAudioGraph);
    ASSERT_EQ(S_OK, other.query<IPersistStreamInit>()->Load(stream.get()));
    expectEverythingChanged(*other.get());
}

TEST_F(GraphControl, a_storage_keeps_everything) {
    ComPtr<ILockBytes> bytes;
    ::CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.put());
    ComPtr<IStorage> storage;
    ASSERT_EQ(S_OK, ::StgCreateDocfileOnILockBytes(
                        bytes.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                        storage.put()));
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
    Bag bag;
    bag.put(L"BackgroundColor", Variant(static_cast<long>(blue)));
    ASSERT_EQ(S_OK, as<IPersistPropertyBag>()->Load(&bag, nullptr));
    EXPECT_EQ(200 * 100, drawn({200, 100}).count(blue));
}

// ---- what happens while it draws

// A window whose messages do something, as a host's own does.
class Doing {
public:
    explicit Doing(std::function<void()> action) : action_(std::move(action)) {
        window_ = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    nullptr, nullptr);
        ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure));
    }
    Doing(const Doing&) = delete;
    Doing& operator=(const Doing&) = delete;
    ~Doing() { ::DestroyWindow(window_); }

    void post() const { ::PostMessageW(window_, WM_APP, 0, 0); }
    int done = 0;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != WM_APP)
            return ::DefWindowProcW(window, message, wParam, lParam);
        auto* self = reinterpret_cast<Doing*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
        ++self->done;
        self->action_();
        return 0;
    }

    std::function<void()> action_;
    HWND window_ = nullptr;
};

TEST_F(GraphControl, pending_messages_are_handled_while_the_waveform_is_drawn) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing nothing([] {});
    for (int i = 0; i < 500; ++i)
        nothing.post();
    display();
    EXPECT_EQ(500, nothing.done);
}

TEST_F(GraphControl, a_message_that_posts_itself_again_does_not_hold_up_the_drawing) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    Doing* self = nullptr;
    Doing again([&] { self->post(); });
    self = &again;
    again.post();
    display();
    EXPECT_GT(again.done, 200); // one column after another
    EXPECT_LT(again.done, 100'000);
}

TEST_F(GraphControl, displaying_from_within_a_display_is_harmless) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing nested([&] { EXPECT_EQ(S_OK, graph->Display()); });
    for (int i = 0; i < 10; ++i)
        nested.post();
    display();
    EXPECT_EQ(10, nested.done);
    for (int x = 0; x < 300; ++x)
        EXPECT_EQ(green, seen().at(x, 100)) << x;
}

TEST_F(GraphControl, may_be_released_while_it_draws) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    _cAudioGraph* raw = graph.get();
    const Doing releasing([&] { graph.reset(); });
    releasing.post();
    EXPECT_EQ(S_OK, raw->Display());
    EXPECT_EQ(1, releasing.done);
}

TEST_F(GraphControl, its_form_may_be_closed_while_it_draws) {
    auto container = std::make_unique<Container>();
    ASSERT_EQ(S_OK, container->attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing closing([&] { container.reset(); });
    closing.post();
    display();
    EXPECT_EQ(1, closing.done);
    display();
}

TEST_F(GraphControl, its_form_may_be_closed_and_the_control_released_while_it_draws) {
    auto container = std::make_unique<Container>();
    ASSERT_EQ(S_OK, container->attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    _cAudioGraph* raw = graph.get();
    const Doing closing([&] {
        container.reset();
        graph.reset();
    });
    closing.post();
    EXPECT_EQ(S_OK, raw->Display());
    EXPECT_EQ(1, closing.done);
}

TEST_F(GraphControl, it_may_be_resized_cleared_and_given_new_samples_while_it_draws) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    const Doing everything([&] {
        long result = 0;
        ::SetWindowPos(container.window(), nullptr, 0, 0, 120, 80, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(S_OK, graph->ClearGraph(&result));
        take(std::vector<std::int16_t>(511, 16384));
        graph->put_GraphStyle(FREQUENCY_STYLE);
    });
    everything.post();
    display();
    EXPECT_EQ(1, everything.done);
    display();
    RECT client{};
    ::GetClientRect(window(), &client);
    EXPECT_EQ(120, client.right);
}

TEST_F(GraphControl, a_message_to_quit_is_left_for_the_hosts_own_loop) {
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    ::PostQuitMessage(42);
    display();
    MSG message{};
    bool quit = false;
    while (!quit && ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        quit = message.message == WM_QUIT;
    EXPECT_TRUE(quit);
    EXPECT_EQ(42U, message.wParam);
}

TEST_F(GraphControl, sizes_without_area_and_the_largest_are_displayed) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    takeTone();
    for (const SIZE size : {SIZE{0, 0}, SIZE{1, 1}, SIZE{32767, 1}, SIZE{32767, 32767}})
        for (const auto style : {AMPLITUDE_STYLE, FREQUENCY_STYLE}) {
            ::SetWindowPos(container.window(), nullptr, 0, 0, size.cx, size.cy,
                           SWP_NOMOVE | SWP_NOZORDER);
            graph->put_GraphStyle(style);
            display();
        }
}

} // namespace
