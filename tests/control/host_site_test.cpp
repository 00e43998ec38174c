// A control and its container: what refuses or interrupts an activation, what the container is
// asked and told, and sizes.

#include "HostSite.h"
#include "ViewSink.h"

#include <limits>

using namespace corvina;
using namespace corvina::test;

namespace {

class Hosted : public HostedControl {
protected:
    RECT regionBox() {
        RECT box{};
        ::GetWindowRgnBox(window(), &box);
        return box;
    }
    ComPtr<IOleInPlaceObject> inPlace() { return as<IOleInPlaceObject>(); }
};

TEST_F(Hosted, an_activation_returns_what_the_container_refused_it_with) {
    as<IOleObject>()->SetClientSite(nullptr);
    EXPECT_EQ(OLE_E_NOT_INPLACEACTIVE, verb(OLEIVERB_INPLACEACTIVATE));
    as<IOleObject>()->SetClientSite(site.get());
    for (const auto& [member, result, expected] :
         {std::tuple{"CanInPlaceActivate", S_FALSE, E_FAIL},
          {"OnInPlaceActivate", E_ACCESSDENIED, E_ACCESSDENIED},
          {"GetWindow", E_ACCESSDENIED, E_FAIL},
          {"GetWindowContext", E_ACCESSDENIED, E_ACCESSDENIED}}) {
        site->results = {{member, result}};
        site->calls.clear();
        EXPECT_EQ(expected, verb(OLEIVERB_INPLACEACTIVATE)) << member;
        EXPECT_FALSE(control->base().active()) << member;
        const bool announced = std::string(member).starts_with("Get");
        EXPECT_EQ(announced ? 1 : 0, site->calls["OnInPlaceDeactivate"]) << member;
    }
    site->results.clear();
    EXPECT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_EQ(sizeof(OLEINPLACEFRAMEINFO), site->frameInfoBytes);
}

TEST_F(Hosted, an_activation_ends_wherever_the_container_takes_it_back) {
    for (const char* member :
         {"CanInPlaceActivate", "OnInPlaceActivate", "GetWindow", "GetWindowContext"}) {
        site->actions = {{member, [this] { inPlace()->InPlaceDeactivate(); }}};
        EXPECT_EQ(OLE_E_NOT_INPLACEACTIVE, verb(OLEIVERB_INPLACEACTIVATE)) << member;
        EXPECT_FALSE(control->base().active()) << member;
    }
    site->actions.clear();
    EXPECT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_TRUE(control->base().active());
}

TEST_F(Hosted, an_activation_during_another_decides_alone_whether_the_ui_follows) {
    for (const LONG first : {OLEIVERB_INPLACEACTIVATE, OLEIVERB_UIACTIVATE})
        for (const LONG second : {OLEIVERB_INPLACEACTIVATE, OLEIVERB_UIACTIVATE}) {
            site->calls.clear();
            site->actions = {{"OnInPlaceActivate", [&] { EXPECT_EQ(S_OK, verb(second)); }}};
            EXPECT_EQ(S_OK, verb(first));
            const bool ui = first == OLEIVERB_UIACTIVATE || second == OLEIVERB_UIACTIVATE;
            EXPECT_EQ(ui ? 1 : 0, site->calls["OnUIActivate"]) << first << ' ' << second;
            EXPECT_EQ(1, site->calls["OnInPlaceActivate"]);
            inPlace()->InPlaceDeactivate();
        }
}

TEST_F(Hosted, the_document_window_is_told_of_the_active_object_and_of_none) {
    HostFrame frame, document;
    site->frame = &frame;
    site->document = &document;
    ASSERT_EQ(S_OK, verb(OLEIVERB_UIACTIVATE));
    const auto active = as<IOleInPlaceActiveObject>();
    using Objects = std::vector<IOleInPlaceActiveObject*>;
    EXPECT_EQ((Objects{active.get()}), document.active);
    EXPECT_EQ(S_OK, active->OnDocWindowActivate(TRUE));
    EXPECT_EQ(0, site->calls["OnUIDeactivate"]);
    EXPECT_EQ(S_OK, active->OnDocWindowActivate(FALSE));
    EXPECT_EQ(1, site->calls["OnUIDeactivate"]);
    EXPECT_EQ((Objects{active.get(), nullptr}), document.active);
    EXPECT_EQ((Objects{active.get(), nullptr}), frame.active);
    inPlace()->InPlaceDeactivate();
    EXPECT_EQ(1u, frame.references);
    EXPECT_EQ(1u, document.references);
}

TEST_F(Hosted, hiding_ends_the_ui_activation) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_UIACTIVATE));
    EXPECT_EQ(S_OK, verb(OLEIVERB_HIDE));
    EXPECT_EQ(1, site->calls["OnUIDeactivate"]);
    EXPECT_TRUE(control->base().active());
}

TEST_F(Hosted, the_visible_part_is_counted_from_the_controls_own_corner) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    const RECT position{10, 20, 110, 120}, part{40, 0, 1000, 80}, all{0, 0, 1000, 1000};
    EXPECT_EQ(S_OK, inPlace()->SetObjectRects(&position, &part));
    const RECT box = regionBox();
    EXPECT_EQ(30, box.left);
    EXPECT_EQ(0, box.top);
    EXPECT_EQ(100, box.right);
    EXPECT_EQ(60, box.bottom);
    EXPECT_EQ(S_OK, inPlace()->SetObjectRects(&position, &all));
    RECT none{};
    EXPECT_EQ(ERROR, ::GetWindowRgnBox(window(), &none));
}

TEST_F(Hosted, a_move_changes_nothing_about_what_lies_above_the_window) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    const HWND above = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5,
                                         site->window.handle(), nullptr, nullptr, nullptr);
    ::SetWindowPos(above, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    ASSERT_EQ(above, ::GetWindow(site->window.handle(), GW_CHILD));
    const RECT position{10, 20, 40, 50};
    EXPECT_EQ(S_OK, inPlace()->SetObjectRects(&position, nullptr));
    EXPECT_EQ(above, ::GetWindow(site->window.handle(), GW_CHILD));
    ::DestroyWindow(above);
}

TEST_F(Hosted, a_window_outside_of_containers_is_not_marked_visible) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_NE(0, ::GetWindowLongW(window(), GWL_STYLE) & WS_VISIBLE);
    inPlace()->InPlaceDeactivate();
    EXPECT_EQ(0, ::GetWindowLongW(window(), GWL_STYLE) & WS_VISIBLE);
}

TEST_F(Hosted, closing_deactivates_and_has_what_was_changed_saved) {
    const auto object = as<IOleObject>();
    EXPECT_EQ(S_OK, object->Close(OLECLOSE_SAVEIFDIRTY));
    EXPECT_EQ(0, site->calls["SaveObject"]); // nothing was changed
    control->base().setProperty(TestControl::level, 77);
    EXPECT_EQ(S_OK, object->Close(OLECLOSE_NOSAVE));
    EXPECT_EQ(0, site->calls["SaveObject"]);
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    EXPECT_EQ(S_OK, object->Close(OLECLOSE_SAVEIFDIRTY));
    EXPECT_EQ(1, site->calls["SaveObject"]);
    EXPECT_EQ(1, site->calls["OnInPlaceDeactivate"]);
    EXPECT_FALSE(control->base().active());
}

TEST_F(Hosted, an_extent_is_a_change_if_either_side_is_another) {
    ViewSink sink;
    as<IViewObject>()->SetAdvise(DVASPECT_CONTENT, 0, &sink);
    const auto persist = as<IPersistStreamInit>();
    const SIZEL first = extent();
    for (const auto& [size, changed] : {std::pair<SIZEL, bool>{first, false},
                                        {{first.cx + 100, first.cy}, true},
                                        {{first.cx + 100, first.cy}, false},
                                        {{first.cx + 100, first.cy + 100}, true}}) {
        persist->InitNew();
        SIZEL former{size};
        sink.views = 0;
        // What InitNew has set back is set again first.
        if (!changed && size.cx != first.cx) {
            as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &former);
            sink.views = 0;
        }
        SIZEL wanted{size};
        EXPECT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &wanted));
        EXPECT_EQ(changed ? 1 : 0, sink.views);
    }
    persist->InitNew();
    EXPECT_EQ(S_FALSE, persist->IsDirty());
    SIZEL taller{first.cx, first.cy + 100};
    sink.views = 0;
    EXPECT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &taller));
    EXPECT_EQ(1, sink.views);
    EXPECT_EQ(S_OK, persist->IsDirty());
    as<IViewObject>()->SetAdvise(0, 0, nullptr);
}

// Sets which keys are down for the calling thread, and sets them back.
class HeldKeys {
public:
    explicit HeldKeys(std::initializer_list<int> keys) {
        ::GetKeyboardState(before_);
        BYTE state[256]{};
        for (const int key : keys)
            state[key] = 0x80;
        state[VK_MENU] |= 1; // toggled, which is not held
        ::SetKeyboardState(state);
    }
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;
    ~HeldKeys() { ::SetKeyboardState(before_); }

private:
    BYTE before_[256]{};
};

TEST_F(Hosted, a_key_is_left_to_the_container_with_the_keys_that_are_held) {
    const auto active = as<IOleInPlaceActiveObject>();
    MSG key{nullptr, WM_KEYDOWN, VK_F1, 0, 0, {}};
    {
        const HeldKeys none{};
        EXPECT_EQ(S_OK, active->TranslateAccelerator(&key));
    }
    {
        const HeldKeys one{VK_CONTROL};
        EXPECT_EQ(S_OK, active->TranslateAccelerator(&key));
    }
    {
        const HeldKeys two{VK_SHIFT, VK_MENU};
        EXPECT_EQ(S_OK, active->TranslateAccelerator(&key));
    }
    EXPECT_EQ((std::vector<DWORD>{0, 2, 1 | 4}), site->modifiers);
}

TEST_F(Hosted, the_container_is_notified_of_the_focus) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    ::SendMessageW(window(), WM_SETFOCUS, 0, 0);
    ::SendMessageW(window(), WM_KILLFOCUS, 0, 0);
    EXPECT_EQ((std::vector<BOOL>{TRUE, FALSE}), site->focus);
}

TEST_F(Hosted, a_rectangle_of_any_numbers_is_as_large_as_a_window_can_be) {
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    constexpr LONG least = std::numeric_limits<LONG>::min();
    constexpr LONG most = std::numeric_limits<LONG>::max();
    const RECT everything{least, least, most, most};
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->SetObjectRects(&everything, &everything));
    RECT client{};
    ::GetClientRect(window(), &client);
    EXPECT_GE(client.right, 32767);
    EXPECT_GE(client.bottom, 32767);
}

TEST_F(Hosted, an_ambient_property_repaints_if_it_is_the_background_or_may_be) {
    ViewSink sink;
    as<IViewObject>()->SetAdvise(DVASPECT_CONTENT, 0, &sink);
    for (const auto& [property, repaints] : {std::pair<DISPID, bool>{DISPID_UNKNOWN, true},
                                             {DISPID_AMBIENT_BACKCOLOR, true},
                                             {DISPID_AMBIENT_USERMODE, true},
                                             {DISPID_AMBIENT_FONT, false}}) {
        sink.views = 0;
        EXPECT_EQ(S_OK, as<IOleControl>()->OnAmbientPropertyChange(property));
        EXPECT_EQ(repaints ? 1 : 0, sink.views) << property;
    }
    as<IViewObject>()->SetAdvise(0, 0, nullptr);
}

TEST_F(Hosted, a_fixed_size_is_asked_for_when_the_control_is_activated) {
    use(fixedSizeClass);
    // A container without units of its own.
    site->results["TransformCoords"] = E_NOTIMPL;
    ASSERT_EQ(S_OK, verb(OLEIVERB_INPLACEACTIVATE));
    ASSERT_EQ(1u, site->rectangles.size());
    EXPECT_EQ(100, site->rectangles[0].right);
    EXPECT_EQ(50, site->rectangles[0].bottom);
    const RECT other{0, 0, 70, 70};
    for (const std::size_t asked : {2u, 3u}) {
        EXPECT_EQ(S_OK, inPlace()->SetObjectRects(&other, nullptr));
        EXPECT_EQ(asked, site->rectangles.size());
    }
}

TEST_F(Hosted, a_fixed_size_is_the_containers_if_both_sides_are_above_nothing) {
    use(fixedSizeClass);
    const SIZE pixels = himetricFromPixels({100, 50});
    site->himetric = {1, 1};
    EXPECT_EQ(1, extent().cx);
    for (const POINTL useless : {POINTL{0, 500}, POINTL{500, 0}, POINTL{-3, 500}}) {
        site->himetric = useless;
        EXPECT_EQ(pixels.cx, extent().cx);
        EXPECT_EQ(pixels.cy, extent().cy);
    }
}

TEST_F(Hosted, a_size_of_one_unit_is_a_fixed_size) {
    ControlClass tiny = testControlClass;
    tiny.fixedUnits = {1, 1};
    use(tiny);
    site->results["TransformCoords"] = E_NOTIMPL;
    SIZEL other{9000, 9000};
    EXPECT_EQ(E_FAIL, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &other));
    EXPECT_EQ(himetricFromPixels({1, 1}).cx, extent().cx);
    as<IOleObject>()->SetClientSite(nullptr);
    control.reset(); // before its class
}

TEST_F(Hosted, a_fixed_size_may_be_given_with_a_pixel_more_or_less) {
    use(fixedSizeClass);
    site->results["TransformCoords"] = E_NOTIMPL;
    for (const auto& [pixels, expected] : {std::pair<SIZE, HRESULT>{{101, 49}, S_OK},
                                           {{99, 51}, S_OK},
                                           {{102, 50}, E_FAIL},
                                           {{100, 48}, E_FAIL}}) {
        const SIZE himetric = himetricFromPixels(pixels);
        SIZEL size{himetric.cx, himetric.cy};
        EXPECT_EQ(expected, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &size)) << pixels.cx;
    }
}

// Ends the box before it is shown: if no window manager runs the platform waits seconds for one.
struct AboutBox {
    static inline HWND box = nullptr;
    static inline HWND owner = nullptr;
    static inline std::wstring text;
    static inline bool hasIcon = false;

    static LRESULT CALLBACK watch(int code, WPARAM wParam, LPARAM lParam) {
        const HWND window = reinterpret_cast<HWND>(wParam);
        wchar_t kind[20]{};
        if (code == HCBT_CREATEWND && ::GetClassNameW(window, kind, 20) != 0 &&
            std::wstring_view(kind) == L"#32770") {
            box = window;
            ::PostMessageW(window, WM_COMMAND, IDOK, 0);
        } else if (code == HCBT_DESTROYWND && window == box) {
            owner = ::GetWindow(box, GW_OWNER);
            ::EnumChildWindows(box, &look, 0);
        }
        return ::CallNextHookEx(nullptr, code, wParam, lParam);
    }
    static BOOL CALLBACK look(HWND child, LPARAM) {
        wchar_t words[200]{}, kind[20]{};
        ::GetClassNameW(child, kind, 20);
        ::GetWindowTextW(child, words, 200);
        text += words;
        const LONG style = ::GetWindowLongW(child, GWL_STYLE);
        hasIcon =
            hasIcon || (::_wcsicmp(kind, L"Static") == 0 && (style & SS_TYPEMASK) == SS_ICON &&
                        ::SendMessageW(child, STM_GETICON, 0, 0) != 0);
        return TRUE;
    }
};

TEST_F(Hosted, the_about_verb_shows_what_the_library_is) {
    const HiddenWindow form;
    const HHOOK hook =
        ::SetWindowsHookExW(WH_CBT, &AboutBox::watch, nullptr, ::GetCurrentThreadId());
    EXPECT_EQ(S_OK, verb(1, form.handle()));
    ::UnhookWindowsHookEx(hook);
    EXPECT_NE(std::wstring::npos, AboutBox::text.find(L"Audio player and graph controls"));
    EXPECT_TRUE(AboutBox::hasIcon);
    EXPECT_EQ(form.handle(), AboutBox::owner);
}

} // namespace
