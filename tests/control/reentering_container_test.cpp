// Containers that call the control back from within every callback, in every way: no crash, and
// nothing of the container is kept.

#include "ReenteringContainer.h"
#include "Support.h"

#include <algorithm>
#include <memory>
#include <set>

using namespace corvina;
using namespace corvina::test;

namespace {

// One life of a control in a container that reacts to one callback.
class Life {
public:
    using Reaction = void (Life::*)();

    // The container reacts when the callback comes for the given time, counted from 1.
    Life(REFCLSID clsid, std::string callback, int occurrence, Reaction reaction)
        : awaited_(std::move(callback)), occurrence_(occurrence), reaction_(reaction),
          site_(makeCom<ReenteringSite>(window_.handle(), [this](auto& name) { note(name); })),
          other_(makeCom<ReenteringSite>(window_.handle(), [this](auto& name) { note(name); })),
          listener_(makeCom<ReenteringListener>([this](auto& name) { note(name); })),
          messages_(std::make_unique<WindowMessages>([this](auto& name) { note(name); })),
          control_(create<IOleObject>(clsid)) {}

    // What every container does sooner or later, in this order; a control that was let go of in
    // between is left alone.
    void run() {
        const RECT rectangle{20, 20, 90, 70};
        SIZEL extent{4000, 3000};
        step([&](IOleObject& object) { listener_->listenTo(object); });
        step([&](IOleObject& object) { object.SetClientSite(site_.get()); });
        step([&](IOleObject&) { load(); });
        step([&](IOleObject&) { makeWindow(); });
        step([&](IOleObject& object) { verb(object, OLEIVERB_SHOW); });
        step([&](IOleObject& object) { object.SetExtent(DVASPECT_CONTENT, &extent); });
        step([&](IOleObject&) {
            inPlace([&](auto& part) { part.SetObjectRects(&rectangle, &rectangle); });
        });
        step([&](IOleObject& object) { verb(object, OLEIVERB_UIACTIVATE); });
        step([&](IOleObject&) { ambient(DISPID_UNKNOWN); });
        step([&](IOleObject&) { changeProperty(); });
        step([&](IOleObject&) { paint(); });
        step([&](IOleObject&) { inPlace([](auto& part) { part.UIDeactivate(); }); });
        step([&](IOleObject& object) { verb(object, OLEIVERB_HIDE); });
        step([&](IOleObject& object) { verb(object, OLEIVERB_PROPERTIES); });
        step([&](IOleObject& object) { verb(object, OLEIVERB_UIACTIVATE); });
        step([&](IOleObject&) { inPlace([](auto& part) { part.InPlaceDeactivate(); }); });
        step([&](IOleObject& object) { verb(object, OLEIVERB_INPLACEACTIVATE); });
        step([&](IOleObject& object) { object.Close(OLECLOSE_SAVEIFDIRTY); });
        step([&](IOleObject& object) { verb(object, OLEIVERB_INPLACEACTIVATE); });
        step([&](IOleObject& object) { object.SetClientSite(nullptr); });
    }

    // What is left behind when everybody has let go of the control; empty if nothing is.
    std::string leftBehind() {
        control_.reset();
        messages_.reset();
        std::string left;
        if (site_->references() != 1 || other_->references() != 1)
            left += "a reference to the site ";
        if (listener_->references() != 1)
            left += "a reference to the listener ";
        if (::IsWindow(window_.handle()) && ::GetWindow(window_.handle(), GW_CHILD))
            left += "a window in the container";
        return left;
    }

    // How often each callback came.
    const std::map<std::string, int>& seen() const { return seen_; }

    // The reactions.
    void nothing() {}
    void leaveSite() {
        step([](IOleObject& object) { object.SetClientSite(nullptr); });
    }
    void changeSite() {
        step([&](IOleObject& object) { object.SetClientSite(other_.get()); });
    }
    void sameSite() {
        step([&](IOleObject& object) { object.SetClientSite(site_.get()); });
    }
    void deactivate() {
        inPlace([](auto& part) { part.InPlaceDeactivate(); });
    }
    void deactivateUi() {
        inPlace([](auto& part) { part.UIDeactivate(); });
    }
    void close() {
        step([](IOleObject& object) { object.Close(OLECLOSE_NOSAVE); });
    }
    void destroyWindow() { ::DestroyWindow(WindowMessages::latest); }
    void destroyContainer() { window_.destroy(); }
    void activate() {
        step([&](IOleObject& object) { verb(object, OLEIVERB_INPLACEACTIVATE); });
    }
    void activateUi() {
        step([&](IOleObject& object) { verb(object, OLEIVERB_UIACTIVATE); });
    }
    void hide() {
        step([&](IOleObject& object) { verb(object, OLEIVERB_HIDE); });
    }
    void release() { control_.reset(); }
    void leaveAndRelease() {
        leaveSite();
        release();
    }
    void deactivateAndActivate() {
        deactivate();
        activateUi();
    }
    void changeRectangle() {
        const RECT rectangle{0, 0, 30, 30};
        inPlace([&](auto& part) { part.SetObjectRects(&rectangle, nullptr); });
    }
    void changeExtent() {
        SIZEL extent{1000, 2000};
        step([&](IOleObject& object) { object.SetExtent(DVASPECT_CONTENT, &extent); });
    }
    void changeAmbients() { ambient(DISPID_AMBIENT_USERMODE); }

private:
    void note(const std::string& name) {
        if (++seen_[name] == occurrence_ && name == awaited_)
            (this->*reaction_)();
    }
    template <typename Action>
    void step(Action action) {
        if (const ComPtr<IOleObject> object = control_)
            action(*object.get());
    }
    template <typename Action>
    void inPlace(Action action) {
        if (const auto part = control_.query<IOleInPlaceObject>())
            action(*part.get());
    }
    void verb(IOleObject& object, LONG number) {
        object.DoVerb(number, nullptr, site_.get(), 0, window_.handle(), nullptr);
    }
    void ambient(DISPID property) {
        if (const auto part = control_.query<IOleControl>())
            part->OnAmbientPropertyChange(property);
    }
    void makeWindow() {
        long number = 0;
        if (const auto graph = control_.query<_cAudioGraph>())
            graph->get_hWnd(&number);
    }
    void load() {
        if (const auto state = control_.query<IPersistStreamInit>())
            state->InitNew();
    }
    void changeProperty() {
        if (const auto graph = control_.query<_cAudioGraph>()) {
            graph->put_FreqColor(RGB(1, 2, 3));
            graph->Display();
        }
    }
    void paint() {
        if (::IsWindow(WindowMessages::latest)) {
            ::InvalidateRect(WindowMessages::latest, nullptr, TRUE);
            ::SendMessageW(WindowMessages::latest, WM_PAINT, 0, 0);
        }
    }

    HiddenWindow window_;
    std::string awaited_;
    int occurrence_;
    Reaction reaction_;
    std::map<std::string, int> seen_;
    ComPtr<ReenteringSite> site_;
    ComPtr<ReenteringSite> other_;
    ComPtr<ReenteringListener> listener_;
    std::unique_ptr<WindowMessages> messages_;
    ComPtr<IOleObject> control_;
};

const std::map<std::string, Life::Reaction> reactions{
    {"leaves the site", &Life::leaveSite},
    {"changes the site", &Life::changeSite},
    {"sets the same site", &Life::sameSite},
    {"deactivates", &Life::deactivate},
    {"deactivates the UI", &Life::deactivateUi},
    {"closes", &Life::close},
    {"destroys the control's window", &Life::destroyWindow},
    {"destroys its own window", &Life::destroyContainer},
    {"activates", &Life::activate},
    {"activates the UI", &Life::activateUi},
    {"hides", &Life::hide},
    {"releases", &Life::release},
    {"leaves the site and releases", &Life::leaveAndRelease},
    {"deactivates and activates", &Life::deactivateAndActivate},
    {"changes the rectangle", &Life::changeRectangle},
    {"changes the extent", &Life::changeExtent},
    {"changes ambient properties", &Life::changeAmbients},
};

class ReenteringContainer : public ApartmentTest, public ::testing::WithParamInterface<CLSID> {};

TEST_P(ReenteringContainer, may_do_everything_from_within_every_callback) {
    std::map<std::string, int> callbacks;
    {
        Life ordinary(GetParam(), "", 0, &Life::nothing);
        ordinary.run();
        callbacks = ordinary.seen();
        EXPECT_EQ("", ordinary.leftBehind());
    }
    // The player is invisible at run time, so it never asks to be active in the user interface.
    EXPECT_GT(callbacks.size(), GetParam() == CLSID_cPlayer ? 21u : 25u);
    for (const char* report : {"OnViewChange", "OnChanged", "OnClose"})
        EXPECT_TRUE(callbacks.contains(report)) << report;
    for (const auto& [callback, count] : callbacks)
        for (const int occurrence : std::set<int>{1, std::min(2, count), std::min(3, count), count})
            for (const auto& [name, reaction] : reactions) {
                SCOPED_TRACE("a container that " + name + " in call " + std::to_string(occurrence) +
                             " of " + callback);
                Life life(GetParam(), callback, occurrence, reaction);
                life.run();
                EXPECT_EQ("", life.leftBehind());
            }
}

INSTANTIATE_TEST_SUITE_P(OfBothControls, ReenteringContainer,
                         ::testing::Values(CLSID_cPlayer, CLSID_cAudioGraph));

} // namespace
