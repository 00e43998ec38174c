#pragma once

// What the tests of the registered library share: the library's path and registration, created
// objects, a listener for events, a container, and waiting.

#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "com/Variant.h"
#include "support/MessagePump.h"

#include <functional>
#include <gtest/gtest.h>
#include <oaidl.h>
#include <ocidl.h>
#include <olectl.h>
#include <string>
#include <vector>

#include "Corvina.h"

namespace corvina::test {

// Corvina.ocx as this build delivers it.
[[nodiscard]] std::wstring libraryPath();

// Runs a program to its end and returns its exit code; -1 if it does not start or end.
[[nodiscard]] int run(const std::wstring& commandLine, std::string* output = nullptr);
[[nodiscard]] int regsvr32(const std::wstring& options);

// Registers the library before the first test of a program.
class RegisteredLibrary : public ::testing::Environment {
public:
    void SetUp() override { ASSERT_EQ(0, regsvr32(L"/s")); }
};

// A test on an apartment thread of its own.
class ApartmentTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(::CoInitialize(nullptr))); }
    void TearDown() override { ::CoUninitialize(); }
};

// An object of the registered class, through COM.
template <typename Interface>
[[nodiscard]] ComPtr<Interface> create(REFCLSID clsid) {
    ComPtr<Interface> object;
    EXPECT_EQ(S_OK, ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                       object.putVoid()));
    return object;
}

// Calls a member by its name, as a script does; arguments in the order they are written.
HRESULT callByName(IDispatch* object, const wchar_t* name, WORD flags,
                   std::vector<Variant> arguments, VARIANT* result = nullptr,
                   EXCEPINFO* exception = nullptr);

inline constexpr HRESULT invalidPropertyValue = static_cast<HRESULT>(0x800A0000 + 380);

// The description of the last error that a member raised.
[[nodiscard]] inline std::wstring errorText() {
    ComPtr<IErrorInfo> error;
    Bstr text;
    if (::GetErrorInfo(0, error.put()) == S_OK)
        error->GetDescription(text.put());
    return text.get() ? text.get() : L"";
}

// Listens to events. It lives on the stack of its test: counting does nothing.
class EventSink final : public IDispatch {
public:
    struct Event {
        DISPID id;
        // In the order of the declaration: how they were passed, and the values without references.
        std::vector<VARTYPE> types;
        std::vector<Variant> arguments;
    };

    // events: the event interface that it has; IID_NULL for IDispatch alone.
    explicit EventSink(REFIID events) noexcept : events_(events) {}
    ~EventSink() { disconnect(); }

    HRESULT connect(IUnknown* source, REFIID events);
    void disconnect();

    std::vector<Event> received;
    std::function<void(const Event&)> handler;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters,
                                     VARIANT*, EXCEPINFO*, UINT*) override;

private:
    IID events_;
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

// A top window with an ActiveX container (AtlAxWin) as its child.
class Container {
public:
    Container();
    ~Container() { destroy(); }
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    // Puts a control into the container.
    HRESULT attach(IUnknown* control);
    void destroy() noexcept;
    [[nodiscard]] HWND form() const noexcept { return form_; }
    [[nodiscard]] HWND window() const noexcept { return window_; }
    // The site that the container gave to the control.
    [[nodiscard]] static ComPtr<IOleInPlaceSite> siteOf(IUnknown* control);

private:
    HWND form_ = nullptr;
    HWND window_ = nullptr;
    ComPtr<IUnknown> host_; // not every platform's container holds itself
};

} // namespace corvina::test
