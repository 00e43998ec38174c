// How a container is called while a control becomes its active object, and what it may do
// meanwhile.

#include "TestControl.h"
#include "support/HiddenWindow.h"

#include <gmock/gmock.h>

using namespace corvina;
using namespace corvina::test;
using testing::ElementsAre;

namespace {

// How the container was called, in order.
using Log = std::vector<std::string>;

class Frame final : public Implements<IOleInPlaceFrame> {
public:
    explicit Frame(Log& log) : log_(log) {}

    std::function<void()> onActiveObject;

    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
        log_.emplace_back(object ? "SetActiveObject" : "SetActiveObject none");
        if (object && onActiveObject)
            onActiveObject();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override {
        log_.emplace_back("SetBorderSpace");
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetWindow(HWND*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBorder(LPRECT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG, WORD) override { return E_NOTIMPL; }

private:
    Log& log_;
};

class Site final : public Implements<IOleClientSite, IOleInPlaceSite, IDispatch> {
public:
    explicit Site(Log& log) : frame(makeCom<Frame>(log)), log_(log) {}

    bool designing = false;
    std::function<void()> onUserMode;
    HRESULT uiActivation = S_OK;
    HWND containerWindow = nullptr; // in place of its own
    std::function<void()> onUiActivate;
    std::function<void()> onPosRectChange;
    std::vector<RECT> rectangles; // that the control has asked for
    const ComPtr<Frame> frame;

    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return noted("CanInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return noted("OnInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return noted("ShowObject"); }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override {
        if (onUiActivate)
            onUiActivate();
        noted("OnUIActivate");
        return uiActivation;
    }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return noted("OnUIDeactivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override {
        return noted("OnInPlaceDeactivate");
    }
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = containerWindow ? containerWindow : window_.handle();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frameResult,
                                               IOleInPlaceUIWindow** document, LPRECT position,
                                               LPRECT clip, LPOLEINPLACEFRAMEINFO) override {
        *frameResult = ComPtr<IOleInPlaceFrame>(frame.get()).detach();
        *document = nullptr;
        *position = *clip = {0, 0, 50, 50};
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id != DISPID_AMBIENT_USERMODE)
            return DISP_E_MEMBERNOTFOUND;
        if (onUserMode)
            onUserMode();
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = designing ? VARIANT_FALSE : VARIANT_TRUE;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT rectangle) override {
        rectangles.push_back(*rectangle);
        if (onPosRectChange)
            onPosRectChange();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SaveObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

private:
    HRESULT noted(const char* call) {
        log_.emplace_back(call);
        return S_OK;
    }

    Log& log_;
    HiddenWindow window_;
};

class UiActivation : public ControlBaseTest {
protected:
    UiActivation() { as<IOleObject>()->SetClientSite(site.get()); }
    ~UiActivation() override {
        site->frame->onActiveObject = site->onUiActivate = site->onPosRectChange = nullptr;
    }

    // The container holds the control only while it is in place.
    void TearDown() override {
        if (control) {
            as<IOleInPlaceObject>()->InPlaceDeactivate();
            as<IOleObject>()->SetClientSite(nullptr);
        }
        ControlBaseTest::TearDown();
    }

    HRESULT activate() {
        return as<IOleObject>()->DoVerb(OLEIVERB_UIACTIVATE, nullptr, site.get(), 0, nullptr,
                                        nullptr);
    }

    Log log;
    ComPtr<Site> site = makeCom<Site>(log);
};

TEST_F(UiActivation, calls_the_container_step_by_step_and_back_in_turn) {
    EXPECT_EQ(S_OK, activate());
    EXPECT_THAT(log, ElementsAre("CanInPlaceActivate", "OnInPlaceActivate", "ShowObject",
                                 "OnUIActivate", "SetActiveObject", "SetBorderSpace"));
    log.clear();
    EXPECT_EQ(S_OK, activate());
    EXPECT_THAT(log, ElementsAre());
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
    EXPECT_THAT(log, ElementsAre("SetActiveObject none", "OnUIDeactivate", "OnInPlaceDeactivate"));
}

TEST_F(UiActivation, of_a_container_that_refuses_it_leaves_its_frame_alone) {
    site->uiActivation = E_FAIL;
    EXPECT_EQ(E_FAIL, activate());
    EXPECT_EQ("OnUIActivate", log.back());
    log.clear();
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->UIDeactivate());
    EXPECT_THAT(log, ElementsAre());
}

TEST_F(UiActivation, ends_if_the_container_deactivates_the_control_at_once) {
    site->onUiActivate = [this] { as<IOleInPlaceObject>()->InPlaceDeactivate(); };
    EXPECT_EQ(S_OK, activate());
    EXPECT_EQ("OnUIActivate", log.back());
    EXPECT_EQ(0, std::count(log.begin(), log.end(), "SetActiveObject"));
}

TEST_F(UiActivation, ends_if_the_frame_deactivates_the_control_at_once) {
    site->frame->onActiveObject = [this] { as<IOleInPlaceObject>()->UIDeactivate(); };
    EXPECT_EQ(S_OK, activate());
    EXPECT_EQ("OnUIDeactivate", log.back());
    EXPECT_EQ(0, std::count(log.begin(), log.end(), "SetBorderSpace"));
}

TEST_F(UiActivation, of_a_container_whose_window_takes_no_child_fails_and_is_taken_back) {
    site->containerWindow = control->base().window(); // nobody's own child
    EXPECT_TRUE(FAILED(activate()));
    EXPECT_EQ("OnInPlaceDeactivate", log.back());
    EXPECT_FALSE(::IsWindowVisible(control->base().window()));
    site->containerWindow = nullptr;
    EXPECT_EQ(S_OK, activate());
    EXPECT_TRUE(::GetParent(control->base().window()));
}

TEST_F(UiActivation, survives_a_container_that_lets_the_control_go_meanwhile) {
    site->onUiActivate = [this] {
        const auto object = as<IOleObject>();
        as<IOleInPlaceObject>()->InPlaceDeactivate();
        object->SetClientSite(nullptr);
        control.reset();
    };
    activate();
    EXPECT_EQ("OnUIActivate", log.back());
}

TEST_F(UiActivation, a_second_click_takes_the_focus_again) {
    EXPECT_EQ(S_OK, activate());
    const HWND window = control->base().window();
    ASSERT_EQ(window, ::GetFocus());
    const HiddenWindow elsewhere;
    ::SetFocus(elsewhere.handle());
    ASSERT_NE(window, ::GetFocus());
    log.clear();
    ::SendMessageW(window, WM_LBUTTONDOWN, 0, 0);
    EXPECT_EQ(window, ::GetFocus());
    EXPECT_THAT(log, ElementsAre());
}

class FixedSize : public UiActivation {
protected:
    FixedSize() {
        as<IOleObject>()->SetClientSite(nullptr);
        control = makeCom<TestControl>(fixedSizeClass);
        as<IOleObject>()->SetClientSite(site.get());
    }
    SIZEL extent() {
        SIZEL size{};
        EXPECT_EQ(S_OK, as<IOleObject>()->GetExtent(DVASPECT_CONTENT, &size));
        return size;
    }
};

TEST_F(FixedSize, another_extent_is_refused_and_its_own_one_taken) {
    SIZEL own = extent(), other{9000, 9000};
    EXPECT_EQ(E_FAIL, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &other));
    EXPECT_EQ(S_OK, as<IOleObject>()->SetExtent(DVASPECT_CONTENT, &own));
    EXPECT_EQ(own.cx, extent().cx);
    EXPECT_EQ(own.cy, extent().cy);
}

TEST_F(FixedSize, a_rectangle_of_another_size_makes_the_control_ask_for_its_own_once) {
    ASSERT_EQ(S_OK, activate());
    site->rectangles.clear();
    const RECT given{5, 5, 305, 405};
    site->onPosRectChange = [&] { as<IOleInPlaceObject>()->SetObjectRects(&given, &given); };
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->SetObjectRects(&given, &given));
    ASSERT_EQ(1u, site->rectangles.size());
    EXPECT_EQ(5, site->rectangles[0].left);
    EXPECT_EQ(105, site->rectangles[0].right);
    EXPECT_EQ(55, site->rectangles[0].bottom);
    RECT client{};
    ::GetClientRect(control->base().window(), &client);
    EXPECT_EQ(100, client.right);
    EXPECT_EQ(50, client.bottom);
}

TEST_F(FixedSize, a_rectangle_of_its_own_size_is_taken_silently) {
    ASSERT_EQ(S_OK, activate());
    site->rectangles.clear();
    const RECT given{5, 5, 105, 55};
    EXPECT_EQ(S_OK, as<IOleInPlaceObject>()->SetObjectRects(&given, &given));
    EXPECT_TRUE(site->rectangles.empty());
}

class Invisible : public UiActivation {
protected:
    Invisible() {
        as<IOleObject>()->SetClientSite(nullptr);
        control = makeCom<TestControl>(invisibleClass);
        as<IOleObject>()->SetClientSite(site.get());
    }
    ~Invisible() override { site->onUserMode = nullptr; }

    // The kind of the window's region; ERROR if it has none.
    int regionKind() {
        RECT box{};
        return ::GetWindowRgnBox(control->base().window(), &box);
    }
    void goOver(bool designing, DISPID changed = DISPID_AMBIENT_USERMODE) {
        site->designing = designing;
        as<IOleControl>()->OnAmbientPropertyChange(changed);
    }
};

TEST_F(Invisible, a_control_is_seen_at_design_time_alone) {
    EXPECT_EQ(S_OK, activate());
    EXPECT_EQ(NULLREGION, regionKind());
    goOver(true);
    EXPECT_EQ(ERROR, regionKind());
    goOver(false);
    EXPECT_EQ(NULLREGION, regionKind());
    as<IOleInPlaceObject>()->InPlaceDeactivate();
    EXPECT_EQ(ERROR, regionKind());
}

TEST_F(Invisible, a_control_looks_at_the_mode_if_anything_may_have_changed) {
    EXPECT_EQ(S_OK, activate());
    goOver(true, DISPID_AMBIENT_BACKCOLOR);
    EXPECT_EQ(NULLREGION, regionKind());
    goOver(true, DISPID_UNKNOWN);
    EXPECT_EQ(ERROR, regionKind());
}

TEST_F(Invisible, a_control_is_not_ui_activated_and_takes_no_focus) {
    EXPECT_EQ(S_OK, activate());
    EXPECT_THAT(log, ElementsAre("CanInPlaceActivate", "OnInPlaceActivate", "ShowObject"));
    EXPECT_NE(control->base().window(), ::GetFocus());
    ::SendMessageW(control->base().window(), WM_LBUTTONDOWN, 0, 0);
    EXPECT_NE(control->base().window(), ::GetFocus());
    DWORD status = 0;
    EXPECT_EQ(S_OK, as<IOleObject>()->GetMiscStatus(DVASPECT_CONTENT, &status));
    EXPECT_EQ(DWORD{OLEMISC_INVISIBLEATRUNTIME | OLEMISC_NOUIACTIVATE},
              status & (OLEMISC_INVISIBLEATRUNTIME | OLEMISC_NOUIACTIVATE));
}

TEST_F(Invisible, a_control_may_be_taken_away_while_it_asks_whether_it_is_seen) {
    ASSERT_EQ(S_OK, activate());
    const auto inPlace = as<IOleInPlaceObject>();
    site->onUserMode = [&inPlace] { inPlace->InPlaceDeactivate(); };
    goOver(false);
    EXPECT_EQ(ERROR, regionKind());
}

} // namespace
