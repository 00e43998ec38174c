// What the graph control shows: in a window, by itself, in a metafile, while a form is designed.

#include "FormSite.h"
#include "GraphControlFixture.h"
#include "graph/BandLevels.h"
#include "support/MessagePump.h"

#include <cmath>

using namespace corvina;
using namespace corvina::test;

namespace {

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

TEST_F(GraphControl, clearing_shows_in_a_container_at_once) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(graph.get()));
    takeTone();
    display();
    long result = 7;
    EXPECT_EQ(S_OK, graph->ClearGraph(&result));
    const Picture picture = seen();
    EXPECT_EQ(black, picture.at(41, 0));
    EXPECT_EQ(black, picture.at(41, 199));
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
        const RECT all{0, 0, 400, 200};
        if (enhanced) {
            ::PlayEnhMetaFile(picture.dc(), medium.hEnhMetaFile, &all);
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

TEST_F(GraphControl, shows_a_sample_picture_while_a_form_is_designed) {
    const auto form = makeCom<FormSite>();
    form->designing = true;
    ASSERT_EQ(S_OK, as<IOleObject>()->SetClientSite(form.get()));
    EXPECT_GT(drawn({200, 100}).count(green), 500);
    graph->put_GraphStyle(AMPLITUDE_STYLE);
    graph->put_AmplitudeColor(red);
    graph->put_BackgroundColor(blue);
    const Picture picture = drawn({200, 100});
    EXPECT_GT(picture.count(red), 200);
    EXPECT_EQ(200 * 100, picture.count(red) + picture.count(blue));
    as<IOleObject>()->SetClientSite(nullptr);
}

// Counts how often a container is to draw the control anew.
class NewPictures final : public IAdviseSink {
public:
    int count = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = iid == IID_IUnknown || iid == IID_IAdviseSink ? this : nullptr;
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    void STDMETHODCALLTYPE OnDataChange(FORMATETC*, STGMEDIUM*) override {}
    void STDMETHODCALLTYPE OnViewChange(DWORD, LONG) override { ++count; }
    void STDMETHODCALLTYPE OnRename(IMoniker*) override {}
    void STDMETHODCALLTYPE OnSave() override {}
    void STDMETHODCALLTYPE OnClose() override {}
};

TEST_F(GraphControl, a_property_shows_at_once_only_while_a_form_is_designed) {
    for (const bool designing : {true, false}) {
        const auto form = makeCom<FormSite>();
        form->designing = designing;
        ASSERT_EQ(S_OK, as<IOleObject>()->SetClientSite(form.get()));
        NewPictures pictures;
        as<IViewObject>()->SetAdvise(DVASPECT_CONTENT, 0, &pictures);
        EXPECT_EQ(S_OK, graph->put_Bands(designing ? 20 : 30));
        EXPECT_EQ(designing ? 1 : 0, pictures.count);
        as<IViewObject>()->SetAdvise(0, 0, nullptr);
        as<IOleObject>()->SetClientSite(nullptr);
    }
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
