#pragma once

// A container that calls the control back from within one chosen callback, in one chosen way.
//
// Callbacks are what the control calls (the members of its site, frame and ambient properties) and
// the messages that its window gets. The first time that the chosen one comes, the chosen action is
// performed; everything else is an ordinary container's behaviour.

#include "ReenteringListener.h"
#include "com/Implements.h"
#include "support/HiddenWindow.h"

#include <functional>
#include <map>
#include <ocidl.h>
#include <olectl.h>
#include <optional>
#include <string>

namespace corvina::test {

class ReenteringFrame final : public Implements<IOleInPlaceFrame> {
public:
    explicit ReenteringFrame(Callback callback) : callback_(std::move(callback)) {}

    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
        return noted(object ? "SetActiveObject" : "SetActiveObject none");
    }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override {
        return noted("SetBorderSpace");
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
    HRESULT noted(const char* name) {
        callback_(name);
        return S_OK;
    }
    Callback callback_;
};

class ReenteringSite final
    : public Implements<IOleClientSite, IOleInPlaceSite, IOleControlSite, IDispatch> {
public:
    ReenteringSite(HWND window, Callback callback) : window_(window), callback_(callback) {
        frame_ = makeCom<ReenteringFrame>(std::move(callback));
    }

    ULONG references() { return AddRef(), Release(); }

    HRESULT STDMETHODCALLTYPE SaveObject() override { return noted("SaveObject"); }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return noted("ShowObject"); }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return noted("OnShowWindow"); }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = window_;
        return noted("GetWindow");
    }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return noted("CanInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return noted("OnInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return noted("OnUIActivate"); }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return noted("OnUIDeactivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override {
        return noted("OnInPlaceDeactivate");
    }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT) override { return noted("OnPosRectChange"); }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame,
                                               IOleInPlaceUIWindow** document, LPRECT position,
                                               LPRECT clip, LPOLEINPLACEFRAMEINFO) override {
        *frame = ComPtr<IOleInPlaceFrame>(frame_.get()).detach();
        *document = ComPtr<IOleInPlaceUIWindow>(frame_.get()).detach();
        *position = *clip = {10, 10, 60, 60};
        return noted("GetWindowContext");
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL* himetric, POINTF*, DWORD) override {
        *himetric = {900, 900};
        return noted("TransformCoords");
    }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL focused) override {
        return noted(focused ? "OnFocus" : "OnFocus lost");
    }
    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return noted("ShowPropertyFrame"); }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id == DISPID_AMBIENT_USERMODE) {
            V_VT(result) = VT_BOOL;
            V_BOOL(result) = VARIANT_TRUE;
            return noted("ambient UserMode");
        }
        noted("ambient property");
        return DISP_E_MEMBERNOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }

private:
    HRESULT noted(const char* name) {
        callback_(name);
        return S_OK;
    }

    HWND window_;
    Callback callback_;
    ComPtr<ReenteringFrame> frame_;
};

// Notes the messages that the control's windows get, before they are handled, while it lives.
class WindowMessages {
public:
    explicit WindowMessages(Callback callback) {
        current_ = std::move(callback);
        hook_ = ::SetWindowsHookExW(WH_CALLWNDPROC, &WindowMessages::hook, nullptr,
                                    ::GetCurrentThreadId());
    }
    WindowMessages(const WindowMessages&) = delete;
    WindowMessages& operator=(const WindowMessages&) = delete;
    ~WindowMessages() {
        ::UnhookWindowsHookEx(hook_);
        current_ = nullptr;
    }

    // The control's window that got a message last.
    static inline HWND latest = nullptr;

private:
    static LRESULT CALLBACK hook(int code, WPARAM wParam, LPARAM lParam) noexcept {
        static const std::map<UINT, const char*> names{
            {WM_SHOWWINDOW, "WM_SHOWWINDOW"},
            {WM_WINDOWPOSCHANGING, "WM_WINDOWPOSCHANGING"},
            {WM_SIZE, "WM_SIZE"},
            {WM_WINDOWPOSCHANGED, "WM_WINDOWPOSCHANGED"},
            {WM_MOVE, "WM_MOVE"},
            {WM_STYLECHANGING, "WM_STYLECHANGING"},
            {WM_PAINT, "WM_PAINT"},
            {WM_STYLECHANGED, "WM_STYLECHANGED"},
            {WM_SETFOCUS, "WM_SETFOCUS"},
            {WM_KILLFOCUS, "WM_KILLFOCUS"},
            {WM_DESTROY, "WM_DESTROY"},
            {WM_NCDESTROY, "WM_NCDESTROY"}};
        const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
        wchar_t name[32]{};
        ::GetClassNameW(message.hwnd, name, 32);
        if (code == HC_ACTION && current_ && std::wstring(name) == L"CorvinaControl") {
            latest = message.hwnd;
            if (const auto found = names.find(message.message); found != names.end())
                current_(found->second);
        }
        return ::CallNextHookEx(nullptr, code, wParam, lParam);
    }

    static inline Callback current_;
    HHOOK hook_;
};

} // namespace corvina::test
