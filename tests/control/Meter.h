#pragma once

// A small control made for tests of the control base: persisted numbers, a picture, one event, no
// fixed size.

#include "Support.h"
#include "com/Control.h"

#include "Corvina.h"

namespace corvina::test {

inline bool isPercentage(std::int32_t value) {
    return value >= 0 && value <= 100;
}

inline constexpr Property meterProperties[] = {
    {L"Level", 1, 25, &isPercentage}, {L"Colour", 2, 0x00FF00}, {L"Ticks", 3, 10}};

inline const ControlClass meterClass{CLSID_cAudioGraph,
                                     IID_cCallback,
                                     DIID___cAudioGraph,
                                     L"Corvina.Meter",
                                     L"Meter",
                                     {200, 100},
                                     {},
                                     true,
                                     meterProperties};

// The same without a picture, as the player is.
inline const ControlClass blankMeterClass = [] {
    ControlClass result = meterClass;
    result.hasPicture = false;
    return result;
}();

class Meter final : public Control<cCallback> {
public:
    enum { level, colour, ticks };

    explicit Meter(const ControlClass& controlClass = meterClass) : Control(controlClass) {
        ++alive;
    }
    ~Meter() override {
        ole().disconnect();
        --alive;
    }

    static inline int alive = 0;
    int drawn = 0;
    int lostWindows = 0;
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
    void propertiesChanged(int index) override { reloaded += index < 0; }
};

// A test of a meter, which nobody may keep beyond it.
class MeterTest : public ApartmentTest {
protected:
    void TearDown() override {
        meter.reset();
        EXPECT_EQ(0, Meter::alive);
        ApartmentTest::TearDown();
    }

    IUnknown* unknown() { return static_cast<cCallback*>(meter.get()); }
    template <typename Interface>
    static ComPtr<Interface> as(const ComPtr<Meter>& of) {
        return ComPtr<IUnknown>(static_cast<cCallback*>(of.get())).template query<Interface>();
    }
    template <typename Interface>
    ComPtr<Interface> as() {
        return as<Interface>(meter);
    }

    ComPtr<Meter> meter = makeCom<Meter>();
};

} // namespace corvina::test
