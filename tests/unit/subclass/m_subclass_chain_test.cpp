// The subclassing of a window that another component subclasses on top.

#include "SubclassFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

WNDPROC below = nullptr;

// What another component puts over the shared procedure.
LRESULT CALLBACK foreignProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == hello || message == WM_DESTROY || message == WM_NCDESTROY)
        calls.emplace_back("foreign");
    return ::CallWindowProcA(below, window, message, wParam, lParam);
}

class SubclassedOnTop : public Subclass {
protected:
    void SetUp() override {
        Subclass::SetUp();
        attach(first);
        below = reinterpret_cast<WNDPROC>(
            ::SetWindowLongA(window.handle(), GWL_WNDPROC, numberOfForeign()));
    }
    static LONG numberOfForeign() {
        return static_cast<LONG>(
            reinterpret_cast<LONG_PTR>(reinterpret_cast<void*>(&foreignProcedure)));
    }
    // The other component takes its procedure away, as it found things.
    void removeForeign() const {
        ::SetWindowLongA(
            window.handle(), GWL_WNDPROC,
            static_cast<LONG>(reinterpret_cast<LONG_PTR>(reinterpret_cast<void*>(below))));
    }
    [[nodiscard]] bool foreignIsOnTop() const {
        return ::GetWindowLongA(window.handle(), GWL_WNDPROC) == numberOfForeign();
    }
};

TEST_F(SubclassedOnTop, detaching_the_last_client_leaves_the_other_component_its_messages) {
    detach(first);
    EXPECT_TRUE(foreignIsOnTop());
    EXPECT_EQ(send(), fromWindow);
    EXPECT_THAT(calls, ElementsAre("foreign", "old"));
    EXPECT_EQ(first.references, 0);
}

TEST_F(SubclassedOnTop, the_module_stays_loaded_below_the_other_component) {
    detach(first);
    EXPECT_TRUE(thisModule().inUse()) << "the other component calls into it";
    EXPECT_EQ(send(), fromWindow);
    window.destroy();
    EXPECT_THAT(calls, ElementsAre("foreign", "old", "foreign", "destroyed", "foreign"));
    EXPECT_FALSE(thisModule().inUse());
}

TEST_F(SubclassedOnTop, no_count_is_left_and_the_old_procedure_is_still_known) {
    detach(first);
    EXPECT_EQ(countProperties(window.handle()), 1);
    EXPECT_NE(property(window.handle(), number()), 0);
    EXPECT_EQ(MSubclass::CallOldWindowProc(window.handle(), hello, 0, 0), fromWindow);
    EXPECT_FALSE(MSubclass::isSubclassed(window.handle()));
}

TEST_F(SubclassedOnTop, a_client_that_attaches_again_is_called_below_the_other_component) {
    detach(first);
    windowLog.clear();
    attach(second);
    EXPECT_THAT(windowLog, testing::Not(testing::Contains("SetWindowLong")))
        << "the procedure is in the chain already, and twice would be without end";
    EXPECT_EQ(send(), 2);
    EXPECT_THAT(calls, ElementsAre("foreign", "old", "second"));
    detach(second);
    EXPECT_EQ(send(), fromWindow);
}

TEST_F(SubclassedOnTop, once_the_other_component_has_gone_the_next_last_detach_restores_all) {
    detach(first);
    removeForeign();
    EXPECT_EQ(send(), fromWindow);
    attach(second);
    detach(second);
    EXPECT_FALSE(subclassed());
    EXPECT_EQ(countProperties(window.handle()), 0);
    EXPECT_FALSE(thisModule().inUse());
}

TEST_F(SubclassedOnTop, at_the_windows_end_the_old_procedure_still_gets_the_last_message) {
    bool ended = false;
    atTheEnd = [&](HWND) { ended = true; };
    window.destroy();
    EXPECT_TRUE(ended) << "the cleanup at WM_DESTROY must not end the chain";
    EXPECT_THAT(calls, ElementsAre("foreign", "destroyed", "foreign"));
    EXPECT_FALSE(thisModule().inUse());
}

TEST_F(SubclassedOnTop, a_window_that_has_outlived_its_WM_DESTROY_calls_no_client) {
    ::SendMessageA(window.handle(), WM_DESTROY, 0, 0);
    calls.clear();
    EXPECT_EQ(send(), fromWindow);
    EXPECT_THAT(calls, ElementsAre("foreign", "old"));
    EXPECT_FALSE(MSubclass::isSubclassed(window.handle()));
    detach(first);
    EXPECT_EQ(countProperties(window.handle()), 1) << "the old procedure";
}

TEST_F(Subclass, without_another_component_detaching_makes_the_calls_it_always_made) {
    attach(first);
    windowLog.clear();
    detach(first);
    const std::string message = number() + "#" + std::to_string(hello);
    EXPECT_THAT(windowLog,
                ElementsAre("RemoveProp " + message + "#1", "RemoveProp " + message + "C",
                            "SetWindowLong", std::string("RemoveProp ").append(number()),
                            std::string("RemoveProp C").append(number())));
    EXPECT_THAT(calls, IsEmpty());
}

} // namespace
} // namespace corvina::test
