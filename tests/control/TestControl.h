#pragma once

// A small control made for tests of the control base: persisted numbers, a picture, one event, no
// fixed size.

#include "Support.h"
#include "control/Control.h"

#include "Corvina.h"

namespace corvina::test {

inline bool isPercentage(std::int32_t value) {
    return value >= 0 && value <= 100;
}

inline constexpr Property testControlProperties[] = {
    {.name = L"Level", .id = 1, .initial = 25, .accepts = &isPercentage},
    {.name = L"Colour", .id = 2, .initial = 0x00FF00},
    {.name = L"Ticks", .id = 3, .initial = 10}};

// Its identifiers are those of a published class, so that the type library describes them.
inline const ControlClass testControlClass{.clsid = CLSID_cAudioGraph,
                                           .primary = IID_cCallback,
                                           .events = DIID___cAudioGraph,
                                           .progId = L"Corvina.TestControl",
                                           .description = L"Test control",
                                           .naturalPixels = {200, 100},
                                           .properties = testControlProperties};

// The same as a component, which nobody sees at run time.
inline const ControlClass invisibleClass = [] {
    ControlClass result = testControlClass;
    result.visibleAtRunTime = false;
    return result;
}();

// The same with a fixed size.
inline const ControlClass fixedSizeClass = [] {
    ControlClass result = testControlClass;
    result.fixedUnits = {100, 50};
    return result;
}();

class TestControl final : public Control<cCallback> {
public:
    enum { level, colour, ticks };

    explicit TestControl(const ControlClass& controlClass = testControlClass)
        : Control(controlClass) {
        ++alive;
    }
    ~TestControl() override {
        ole().disconnect();
        --alive;
    }

    static inline int alive = 0;
    int drawn = 0;
    int lostWindows = 0;
    int replacedWindows = 0;
    int reloaded = 0;
    std::vector<SIZE> sizes;
    bool throwWhenDrawn = false;

    OleControl& base() { return ole(); }

    HRESULT STDMETHODCALLTYPE Samples(SAFEARRAY**, long, short) override { return S_OK; }

private:
    void draw(HDC dc, const RECT& bounds) override {
        ++drawn;
        if (throwWhenDrawn)
            throw std::bad_alloc();
        ::FillRect(dc, &bounds, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
        ::Rectangle(dc, bounds.left + 5, bounds.top + 5, bounds.right - 5, bounds.bottom - 5);
    }
    void windowResized(SIZE size) override { sizes.push_back(size); }
    void windowLost() override { ++lostWindows; }
    void windowReplaced() override { ++replacedWindows; }
    void propertiesChanged(std::optional<int> index) override { reloaded += !index; }
};

// A test of the control base; nobody may hold the control beyond its end.
class ControlBaseTest : public ApartmentTest {
protected:
    void TearDown() override {
        control.reset();
        EXPECT_EQ(0, TestControl::alive);
        ApartmentTest::TearDown();
    }

    IUnknown* unknown() { return static_cast<cCallback*>(control.get()); }
    template <typename Interface>
    static ComPtr<Interface> as(const ComPtr<TestControl>& of) {
        return ComPtr<IUnknown>(static_cast<cCallback*>(of.get())).template query<Interface>();
    }
    template <typename Interface>
    ComPtr<Interface> as() {
        return as<Interface>(control);
    }

    ComPtr<TestControl> control = makeCom<TestControl>();
};

} // namespace corvina::test
