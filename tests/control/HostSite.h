#pragma once

// A container whose every answer can be set: its windows, its units, its results.

#include "TestControl.h"
#include "support/HiddenWindow.h"

#include <map>

namespace corvina::test {

// The container's frame or the document's window inside it. It lives on the stack of its test:
// counting does nothing.
class HostFrame final : public IOleInPlaceFrame {
public:
    std::vector<IOleInPlaceActiveObject*> active; // as they were set

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
        active.push_back(object);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
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

    ULONG references = 1;
};

class HostSite final : public Implements<IOleClientSite, IOleInPlaceSite, IOleControlSite> {
public:
    // By the member's name: what it returns (S_OK unless set) and what else it does.
    std::map<std::string, HRESULT> results;
    std::map<std::string, std::function<void()>> actions;
    std::map<std::string, int> calls;

    RECT position{0, 0, 50, 50};
    RECT clip{0, 0, 1000, 1000};
    IOleInPlaceFrame* frame = nullptr;
    IOleInPlaceUIWindow* document = nullptr;
    UINT frameInfoBytes = 0;
    POINTL himetric{};            // of every size in the container's units
    std::vector<DWORD> modifiers; // of the keys that the control left to it
    std::vector<BOOL> focus;      // as it was notified
    std::vector<RECT> rectangles; // that the control asked for
    const HiddenWindow window;
    HWND container = nullptr; // in place of that window

    HRESULT STDMETHODCALLTYPE SaveObject() override { return called("SaveObject"); }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return called("ShowObject"); }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* result) override {
        *result = container ? container : window.handle();
        return called("GetWindow");
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return called("CanInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return called("OnInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return called("OnUIActivate"); }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frameResult,
                                               IOleInPlaceUIWindow** documentResult,
                                               LPRECT positionResult, LPRECT clipResult,
                                               LPOLEINPLACEFRAMEINFO info) override {
        *frameResult = ComPtr<IOleInPlaceFrame>(frame).detach();
        *documentResult = ComPtr<IOleInPlaceUIWindow>(document).detach();
        *positionResult = position;
        *clipResult = clip;
        frameInfoBytes = info->cb;
        return called("GetWindowContext");
    }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return called("OnUIDeactivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override {
        return called("OnInPlaceDeactivate");
    }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT rectangle) override {
        rectangles.push_back(*rectangle);
        return called("OnPosRectChange");
    }

    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL* result, POINTF*, DWORD) override {
        *result = himetric;
        return called("TransformCoords");
    }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, DWORD held) override {
        modifiers.push_back(held);
        return called("TranslateAccelerator");
    }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL focused) override {
        focus.push_back(focused);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return called("ShowPropertyFrame"); }

private:
    HRESULT called(const std::string& member) {
        ++calls[member];
        if (const auto action = actions.find(member); action != actions.end())
            action->second();
        const auto result = results.find(member);
        return result == results.end() ? S_OK : result->second;
    }
};

// A control in such a container, which is taken out of it at the end.
class HostedControl : public ControlBaseTest {
protected:
    HostedControl() { use(testControlClass); }

    void TearDown() override {
        site->actions.clear();
        if (control) {
            as<IOleInPlaceObject>()->InPlaceDeactivate();
            as<IOleObject>()->SetClientSite(nullptr);
        }
        ControlBaseTest::TearDown();
    }

    void use(const ControlClass& controlClass) {
        as<IOleObject>()->SetClientSite(nullptr);
        control = makeCom<TestControl>(controlClass);
        as<IOleObject>()->SetClientSite(site.get());
    }
    HRESULT verb(LONG number, HWND parent = nullptr) {
        return as<IOleObject>()->DoVerb(number, nullptr, site.get(), 0, parent, nullptr);
    }
    HWND window() { return control->base().window(); }
    SIZEL extent() {
        SIZEL size{};
        EXPECT_EQ(S_OK, as<IOleObject>()->GetExtent(DVASPECT_CONTENT, &size));
        return size;
    }

    ComPtr<HostSite> site = makeCom<HostSite>();
};

} // namespace corvina::test
