#pragma once

// A window whose old procedure notes what it sees, and two clients to attach to it.

#include "com/Module.h"
#include "runtime/RuntimeError.h"
#include "subclass/MSubclass.h"
#include "support/FaultyWindows.h"
#include "support/HiddenWindow.h"
#include "support/SubclassClient.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace corvina::test {

inline constexpr std::int32_t hello = WM_USER + 7;
inline constexpr std::int32_t other = WM_USER + 8;
inline constexpr LRESULT fromWindow = 1000;

inline std::vector<std::string> calls; // in order: names of clients, "old", "destroyed"
// wParam and lParam of each hello that the old procedure got.
inline std::vector<std::pair<WPARAM, LPARAM>> greetings;
inline std::function<void(HWND)> atDestruction; // what the old procedure does with WM_DESTROY
inline std::function<void(HWND)> atTheEnd;      // and with WM_NCDESTROY

// The old procedure of the windows here.
inline LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == hello)
        greetings.emplace_back(wParam, lParam);
    if (message == hello || message == other) {
        calls.emplace_back("old");
        return fromWindow;
    }
    if (message == WM_DESTROY)
        calls.emplace_back("destroyed");
    if (message == WM_DESTROY && atDestruction)
        atDestruction(window);
    if (message == WM_NCDESTROY && atTheEnd)
        atTheEnd(window);
    return ::DefWindowProcA(window, message, wParam, lParam);
}

inline const char* windowClass() {
    static const ATOM registered = [] {
        WNDCLASSA description{};
        description.lpfnWndProc = &windowProcedure;
        description.hInstance = ::GetModuleHandleA(nullptr);
        description.lpszClassName = "CorvinaSubclassTest";
        return ::RegisterClassA(&description);
    }();
    return registered ? "CorvinaSubclassTest" : "";
}

inline std::string numberOf(HWND window) {
    return std::to_string(static_cast<int>(reinterpret_cast<LONG_PTR>(window)));
}

struct PropertyCount {
    std::string number;
    int count = 0;
};

inline BOOL CALLBACK countOne(HWND, LPSTR name, HANDLE, ULONG_PTR data) {
    auto& properties = *reinterpret_cast<PropertyCount*>(data);
    const bool isText = reinterpret_cast<ULONG_PTR>(name) > 0xFFFF;
    if (isText && std::string(name).find(properties.number) <= 1)
        ++properties.count;
    return TRUE;
}

// Those that are named after the window's own handle: the system keeps others.
inline int countProperties(HWND window) {
    PropertyCount properties{.number = numberOf(window)};
    ::EnumPropsExA(window, &countOne, reinterpret_cast<LPARAM>(&properties));
    return properties.count;
}

inline std::int32_t property(HWND window, const std::string& name) {
    return static_cast<std::int32_t>(
        reinterpret_cast<std::intptr_t>(::GetPropA(window, name.c_str())));
}

class Subclass : public ::testing::Test {
protected:
    void SetUp() override {
        calls.clear();
        greetings.clear();
        windowLog.clear();
        windowFaults.disarm();
        MSubclass::useWindowApi(&faultyWindowApi);
    }
    void TearDown() override {
        atDestruction = nullptr;
        atTheEnd = nullptr;
        MSubclass::useWindowApi(nullptr);
        MSubclass::useTrace(nullptr);
    }

    static SubclassClient::Handler noting(const char* name, long result) {
        return [=](HWND, UINT, WPARAM, LPARAM) {
            calls.emplace_back(name);
            return result;
        };
    }
    void attach(SubclassClient& client, std::int32_t message = hello) {
        MSubclass::AttachMessage(&client, window.handle(), message);
    }
    void detach(SubclassClient& client, std::int32_t message = hello) {
        MSubclass::DetachMessage(&client, window.handle(), message);
    }
    // The error that attaching raises, 0 if none.
    static std::int32_t attachError(ISubclass* client, HWND window, std::int32_t message = hello) {
        try {
            MSubclass::AttachMessage(client, window, message);
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0;
    }
    LRESULT send(std::int32_t message = hello) const {
        return ::SendMessageA(window.handle(), static_cast<UINT>(message), 0, 0);
    }
    [[nodiscard]] bool subclassed() const {
        return ::GetWindowLongA(window.handle(), GWL_WNDPROC) !=
               static_cast<LONG>(reinterpret_cast<LONG_PTR>(&windowProcedure));
    }
    [[nodiscard]] std::string number() const { return numberOf(window.handle()); }

    HiddenWindow window{windowClass()};
    SubclassClient first{noting("first", 1)};
    SubclassClient second{noting("second", 2)};
};

inline constexpr std::int32_t cannotSubclass = MSubclass::errorBase + 13081;
inline constexpr std::int32_t alreadyHandled = MSubclass::errorBase + 13082;
inline constexpr std::int32_t invalidWindow = MSubclass::errorBase + 13083;
inline constexpr std::int32_t externalWindow = MSubclass::errorBase + 13084;

} // namespace corvina::test
