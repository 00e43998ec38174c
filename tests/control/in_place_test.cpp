// The control base in a container: one window, which comes and goes.

#include "TestControl.h"

using namespace corvina;
using namespace corvina::test;

namespace {

class InPlace : public ControlBaseTest {
protected:
    HWND window() { return control->base().window(); }
    HRESULT verb(LONG number) {
        const auto object = as<IOleObject>();
        ComPtr<IOleClientSite> site;
        object->GetClientSite(site.put());
        return object->DoVerb(number, nullptr, site.get(), 0, nullptr, nullptr);
    }
};

TEST_F(InPlace, without_a_container_the_window_is_hidden_and_has_no_parent) {
    const HWND own = window();
    EXPECT_TRUE(::IsWindow(own));
    EXPECT_FALSE(::IsWindowVisible(own));
    EXPECT_EQ(nullptr, ::GetParent(own));
}

// Whether a broadcast goes to the window, and waits for it.
bool isTopLevel(HWND window) {
    for (HWND each = ::GetTopWindow(nullptr); each; each = ::GetWindow(each, GW_HWNDNEXT))
        if (each == window)
            return true;
    return false;
}

TEST_F(InPlace, outside_of_containers_the_window_gets_no_broadcasts) {
    const HWND own = window();
    EXPECT_FALSE(isTopLevel(own));
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(unknown()));
        EXPECT_TRUE(isTopLevel(container.form()));
    }
    EXPECT_FALSE(isTopLevel(own));
}

TEST_F(InPlace, the_window_of_a_control_is_made_once) {
    EXPECT_EQ(window(), window());
}

TEST_F(InPlace, activation_makes_the_window_a_visible_child_of_the_container) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(container.window(), ::GetParent(window()));
    EXPECT_TRUE(::IsWindowVisible(window()));
}

TEST_F(InPlace, the_window_fills_the_container) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    RECT client{};
    ::GetClientRect(window(), &client);
    EXPECT_EQ(300, client.right);
    EXPECT_EQ(200, client.bottom);
}

TEST_F(InPlace, a_window_made_before_activation_keeps_its_handle) {
    const HWND before = window();
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(before, window());
    EXPECT_EQ(container.window(), ::GetParent(before));
}

TEST_F(InPlace, a_resized_container_resizes_the_window) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    control->sizes.clear();
    ::SetWindowPos(container.window(), nullptr, 0, 0, 150, 90, SWP_NOMOVE | SWP_NOZORDER);
    ASSERT_FALSE(control->sizes.empty());
    EXPECT_EQ(150, control->sizes.back().cx);
    EXPECT_EQ(90, control->sizes.back().cy);
}

TEST_F(InPlace, deactivation_hides_the_window_and_takes_it_out_of_the_container) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND before = window();
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    EXPECT_EQ(before, window());
    EXPECT_TRUE(::IsWindow(before));
    EXPECT_FALSE(::IsWindowVisible(before));
    EXPECT_FALSE(::IsChild(container.form(), before));
}

TEST_F(InPlace, reactivation_brings_the_same_window_back) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND before = window();
    as<IOleInPlaceObject>()->InPlaceDeactivate();
    EXPECT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_EQ(before, window());
    EXPECT_EQ(container.window(), ::GetParent(before));
    EXPECT_TRUE(::IsWindowVisible(before));
}

TEST_F(InPlace, the_window_can_be_asked_for_only_while_active) {
    HWND given = nullptr;
    EXPECT_EQ(E_FAIL, as<IOleInPlaceObject>()->GetWindow(&given));
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->GetWindow(&given));
    EXPECT_EQ(window(), given);
    EXPECT_EQ(E_POINTER, as<IOleInPlaceObject>()->GetWindow(nullptr));
}

TEST_F(InPlace, the_hide_verb_hides_and_the_show_verb_shows) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(S_OK, verb(OLEIVERB_HIDE));
    EXPECT_FALSE(::IsWindowVisible(window()));
    EXPECT_EQ(S_OK, verb(OLEIVERB_SHOW));
    EXPECT_TRUE(::IsWindowVisible(window()));
}

TEST_F(InPlace, ui_activation_takes_the_focus) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(S_OK, verb(OLEIVERB_UIACTIVATE));
    EXPECT_EQ(window(), ::GetFocus());
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->UIDeactivate());
}

TEST_F(InPlace, activation_without_a_site_fails) {
    EXPECT_TRUE(FAILED(verb(OLEIVERB_INPLACEACTIVATE)));
    EXPECT_TRUE(FAILED(verb(OLEIVERB_PRIMARY)));
}

TEST_F(InPlace, unknown_verbs_are_taken_by_their_sign) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(OLEOBJ_S_INVALIDVERB, verb(77));
    EXPECT_EQ(E_NOTIMPL, verb(-77));
}

TEST_F(InPlace, the_window_outlives_the_containers_window) {
    const HWND before = window();
    {
        Container container;
        ASSERT_EQ(S_OK, container.attach(unknown()));
    }
    EXPECT_TRUE(::IsWindow(before));
    EXPECT_EQ(before, window());
    EXPECT_EQ(0, control->lostWindows);
}

TEST_F(InPlace, the_control_moves_from_one_container_to_the_next) {
    const HWND before = window();
    for (int i = 0; i < 3; ++i) {
        Container container;
        ASSERT_EQ(S_OK, container.attach(unknown()));
        EXPECT_EQ(container.window(), ::GetParent(before));
    }
    EXPECT_EQ(before, window());
}

TEST_F(InPlace, a_window_destroyed_by_somebody_else_is_noticed_and_replaced) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND before = window();
    ::DestroyWindow(before);
    EXPECT_EQ(1, control->lostWindows);
    EXPECT_TRUE(::IsWindow(window()));
    EXPECT_FALSE(control->base().active());
    EXPECT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_EQ(container.window(), ::GetParent(window()));
}

TEST_F(InPlace, a_hidden_window_destroyed_by_somebody_else_is_noticed) {
    ::DestroyWindow(window());
    EXPECT_EQ(1, control->lostWindows);
}

TEST_F(InPlace, the_window_goes_with_the_control) {
    const HWND own = window();
    control.reset();
    EXPECT_FALSE(::IsWindow(own));
}

TEST_F(InPlace, releasing_the_last_reference_while_active_takes_the_window_away) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const HWND own = window();
    control.reset();
    container.destroy();
    EXPECT_FALSE(::IsWindow(own));
    EXPECT_EQ(0, TestControl::alive);
}

TEST_F(InPlace, a_covered_and_uncovered_window_is_painted_again) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    ASSERT_TRUE(pumpUntil([&] { return control->drawn > 0; }));
    const int before = control->drawn;
    ::InvalidateRect(window(), nullptr, TRUE);
    EXPECT_TRUE(pumpUntil([&] { return control->drawn > before; }));
}

TEST_F(InPlace, a_drawing_that_throws_does_not_keep_the_window_invalid) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    control->throwWhenDrawn = true;
    ::InvalidateRect(window(), nullptr, TRUE);
    ::UpdateWindow(window());
    EXPECT_FALSE(::GetUpdateRect(window(), nullptr, FALSE));
    control->throwWhenDrawn = false;
}

TEST_F(InPlace, a_control_of_free_size_takes_the_extent_it_is_given) {
    SIZEL size{5000, 2500};
    EXPECT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &size));
    SIZEL got{};
    EXPECT_EQ(S_OK, as<IOleObject>()->GetExtent(DVASPECT_CONTENT, &got));
    EXPECT_EQ(5000, got.cx);
    EXPECT_EQ(2500, got.cy);
}

TEST_F(InPlace, a_negative_extent_is_refused) {
    SIZEL size{-1, 10};
    EXPECT_EQ(E_INVALIDARG, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &size));
}

TEST_F(InPlace, extents_of_other_aspects_are_refused) {
    SIZEL size{10, 10};
    EXPECT_EQ(DV_E_DVASPECT, as<IOleObject>()->SetExtent(DVASPECT_ICON, &size));
    EXPECT_EQ(DV_E_DVASPECT, as<IOleObject>()->GetExtent(DVASPECT_ICON, &size));
    EXPECT_EQ(E_POINTER, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, nullptr));
    EXPECT_EQ(E_POINTER, as<IOleObject>()->GetExtent(DVASPECT_CONTENT, nullptr));
}

TEST_F(InPlace, the_natural_extent_comes_from_the_class) {
    SIZEL got{};
    EXPECT_EQ(S_OK, as<IOleObject>()->GetExtent(DVASPECT_CONTENT, &got));
    const SIZE natural = himetricFromPixels({200, 100});
    EXPECT_EQ(natural.cx, got.cx);
    EXPECT_EQ(natural.cy, got.cy);
}

TEST_F(InPlace, hostile_rectangles_are_refused) {
    EXPECT_EQ(E_UNEXPECTED,
              as<IOleInPlaceObject>()->SetObjectRects(std::array<RECT, 1>{}.data(), nullptr));
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    EXPECT_EQ(E_POINTER, as<IOleInPlaceObject>()->SetObjectRects(nullptr, nullptr));
    const RECT inverted{100, 100, 0, 0};
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->SetObjectRects(&inverted, &inverted));
    EXPECT_TRUE(::IsWindow(window()));
}

TEST_F(InPlace, a_partly_clipped_control_shows_only_what_is_inside) {
    Container container;
    ASSERT_EQ(S_OK, container.attach(unknown()));
    const RECT position{0, 0, 100, 100}, clip{0, 0, 40, 100};
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->SetObjectRects(&position, &clip));
    RECT shown{};
    EXPECT_EQ(SIMPLEREGION, ::GetWindowRgnBox(window(), &shown));
    EXPECT_EQ(40, shown.right);
}

} // namespace
