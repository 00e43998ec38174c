#pragma once

// A graph control made through COM, and pictures of what it draws.

#include "Picture.h"
#include "Support.h"
#include "support/Colors.h"
#include "support/SampleBlocks.h"

namespace corvina::test {

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

} // namespace corvina::test
