#include "LibraryControls.h"

#include <ole2.h>
#include <string>

namespace corvina::bench {
namespace {

template <typename Function>
Function* function(HMODULE library, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

HMODULE loadCorvina() {
    wchar_t program[MAX_PATH]{};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring folder(program, std::wstring_view(program).rfind(L'\\'));
    const HMODULE library = ::LoadLibraryW((folder + L"\\..\\Corvina.ocx").c_str());
    if (!library)
        giveUp("Corvina.ocx cannot be loaded");
    return library;
}

} // namespace

ComPtr<IUnknown> createUnknown(REFCLSID clsid) {
    static const HMODULE library = loadCorvina();
    const auto getClass = function<decltype(::DllGetClassObject)>(library, "DllGetClassObject");
    ComPtr<IClassFactory> factory;
    ComPtr<IUnknown> object;
    if (SUCCEEDED(getClass(clsid, IID_IClassFactory, factory.putVoid())))
        factory->CreateInstance(nullptr, IID_IUnknown, object.putVoid());
    return object;
}

Form::Form(IUnknown* control, SIZE size) {
    static const HMODULE atl = ::LoadLibraryW(L"atl.dll");
    if (!atl)
        giveUp("there is no container (atl.dll)");
    function<BOOL WINAPI()>(atl, "AtlAxWinInit")();
    window_ = ::CreateWindowExW(0, L"STATIC", L"form", WS_POPUP | WS_CLIPCHILDREN, 0, 0, size.cx,
                                size.cy, nullptr, nullptr, nullptr, nullptr);
    const HWND container = ::CreateWindowExW(0, L"AtlAxWin", nullptr, WS_CHILD | WS_VISIBLE, 0, 0,
                                             size.cx, size.cy, window_, nullptr, nullptr, nullptr);
    // Without activation, for which the system waits seconds if no window manager runs.
    ::ShowWindow(window_, SW_SHOWNOACTIVATE);
    if (FAILED((function<HRESULT WINAPI(IUnknown*, HWND, IUnknown**)>(atl, "AtlAxAttachControl")(
            control, container, host_.put()))))
        giveUp("the control cannot be placed on a form");
}

Form::~Form() {
    ::DestroyWindow(window_);
}

} // namespace corvina::bench
