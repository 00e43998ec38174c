// The control's window: its messages, its silence, and containers that refuse to take it.

#include "HostSite.h"
#include "support/FaultyWindows.h"
#include "support/FreeGdiObjects.h"

#include <commctrl.h>

using namespace corvina;
using namespace corvina::test;

namespace {

// Counts faults of the processor, which the system keeps to itself if a window procedure has them.
class FaultWatch {
public:
    FaultWatch() : handler_(::AddVectoredExceptionHandler(1, &noted)) { faults = 0; }
    FaultWatch(const FaultWatch&) = delete;
    FaultWatch& operator=(const FaultWatch&) = delete;
    ~FaultWatch() { ::RemoveVectoredExceptionHandler(handler_); }

    static inline int faults = 0;

private:
    static LONG CALLBACK noted(EXCEPTION_POINTERS* raised) {
        faults += raised->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION;
        return EXCEPTION_CONTINUE_SEARCH;
    }
    void* handler_;
};

class WindowOfControl : public HostedControl {
protected:
    void TearDown() override {
        allowToMove();
        HostedControl::TearDown();
    }
    static void refuseToMove() {
        windowFaults.arm("SetParent", 1, Faults::Lasting::forever);
        ControlWindow::useWindowApi(&faultyWindowApi);
    }
    static void allowToMove() {
        windowFaults.disarm();
        ControlWindow::useWindowApi(nullptr);
    }
    static bool isChild(HWND window) {
        const LONG style = ::GetWindowLongW(window, GWL_STYLE);
        EXPECT_NE((style & WS_CHILD) != 0, (style & static_cast<LONG>(WS_POPUP)) != 0);
        return (style & WS_CHILD) != 0;
    }
};

TEST_F(WindowOfControl, returns_nothing_for_what_the_control_has_handled) {
    static_cast<void>(window());
    control->sizes.clear(); // those of the window's creation
    EXPECT_EQ(0, ::SendMessageW(window(), WM_SIZE, SIZE_RESTORED, MAKELPARAM(30, 40)));
    ASSERT_EQ(1u, control->sizes.size());
    EXPECT_EQ(30, control->sizes[0].cx);
    EXPECT_EQ(40, control->sizes[0].cy);
    EXPECT_EQ(0, ::SendMessageW(window(), WM_PAINT, 0, 0));
    const ScreenContext screen(::GetDC(nullptr));
    EXPECT_EQ(TRUE,
              ::SendMessageW(window(), WM_ERASEBKGND, reinterpret_cast<WPARAM>(screen.get()), 0));
}

TEST_F(WindowOfControl, has_the_arrow_as_its_cursor) {
    EXPECT_EQ(reinterpret_cast<ULONG_PTR>(
                  ::LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW))),
              ::GetClassLongPtrW(window(), GCLP_HCURSOR));
}

TEST_F(WindowOfControl, calls_nobody_once_the_control_is_disconnected) {
    const HWND own = window();
    control->base().disconnect();
    control->sizes.clear();
    ::SendMessageW(own, WM_SIZE, SIZE_RESTORED, MAKELPARAM(30, 40));
    EXPECT_TRUE(control->sizes.empty());
    EXPECT_TRUE(::IsWindow(own));
}

TEST_F(WindowOfControl, gives_its_drawing_context_back_after_each_painting) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    const auto paint = [this] {
        for (int i = 0; i < 20; ++i)
            ::SendMessageW(window(), WM_PAINT, 0, 0);
    };
    paint();
    const std::size_t free = freeGdiObjects();
    paint();
    EXPECT_EQ(free, freeGdiObjects());
}

TEST_F(WindowOfControl, is_the_first_one_again_after_a_container_that_refused_it) {
    const HWND before = window();
    refuseToMove();
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_NE(before, window());
    EXPECT_TRUE(isChild(window()));
    EXPECT_FALSE(isChild(before));
    const FaultWatch watch;
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    EXPECT_EQ(before, window());
    EXPECT_EQ(0, watch.faults);
    EXPECT_EQ(2, control->replacedWindows);
}

TEST_F(WindowOfControl, in_a_container_may_be_destroyed_by_somebody_else) {
    const HWND before = window();
    refuseToMove();
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    const FaultWatch watch;
    ::DestroyWindow(window());
    EXPECT_EQ(0, watch.faults);
    EXPECT_EQ(before, window());
    EXPECT_FALSE(control->base().active());
}

TEST_F(WindowOfControl, goes_with_the_control_and_so_does_the_first_one) {
    const HWND first = window();
    refuseToMove();
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    const HWND second = window();
    ASSERT_NE(first, second);
    allowToMove(); // the second one can be taken out, and stays
    as<IOleInPlaceObject>()->InPlaceDeactivate();
    EXPECT_EQ(second, window());
    EXPECT_TRUE(::IsWindow(first));
    as<IOleObject>()->SetClientSite(nullptr);
    control.reset();
    EXPECT_FALSE(::IsWindow(second));
    EXPECT_FALSE(::IsWindow(first));
}

// Deactivates the control when its window stops being a child.
LRESULT CALLBACK deactivateAsPopup(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                   UINT_PTR, DWORD_PTR active) {
    const auto* styles = reinterpret_cast<const STYLESTRUCT*>(lParam);
    if (message == WM_STYLECHANGED && (styles->styleOld & WS_CHILD) != 0)
        reinterpret_cast<IOleInPlaceObject*>(active)->InPlaceDeactivate();
    return ::DefSubclassProc(window, message, wParam, lParam);
}

TEST_F(WindowOfControl, deactivated_while_it_is_refused_is_not_replaced) {
    const HWND own = window();
    const auto active = as<IOleInPlaceObject>();
    ::SetWindowSubclass(own, &deactivateAsPopup, 1, reinterpret_cast<DWORD_PTR>(active.get()));
    refuseToMove();
    verb(OLEIVERB_INPLACEACTIVATE);
    ::RemoveWindowSubclass(own, &deactivateAsPopup, 1);
    EXPECT_EQ(own, window());
    EXPECT_FALSE(isChild(own));
    EXPECT_FALSE(control->base().active());
    EXPECT_EQ(0, control->replacedWindows);
}

// Nobody's own child.
TEST_F(WindowOfControl, refused_as_its_own_container_stays_outside_with_the_error_of_the_call) {
    const HWND own = window();
    site->container = own;
    EXPECT_EQ(static_cast<HRESULT>(0x800A0005), verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_EQ(own, window());
    EXPECT_FALSE(isChild(own));
}

} // namespace
