// Window message subclassing, on real windows.

#include "com/Module.h"
#include "runtime/RuntimeError.h"
#include "subclass/MSubclass.h"
#include "support/FaultyWindows.h"
#include "support/HiddenWindow.h"
#include "support/SubclassClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t hello = WM_USER + 7;
constexpr std::int32_t other = WM_USER + 8;
constexpr LRESULT fromWindow = 1000;

std::vector<std::string> calls;     // in order: names of clients, "old", "destroyed"
std::function<void(HWND)> atTheEnd; // what the old procedure does with WM_NCDESTROY

// The old procedure of the windows here.
LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == hello || message == other) {
        calls.emplace_back("old");
        return fromWindow;
    }
    if (message == WM_DESTROY)
        calls.emplace_back("destroyed");
    if (message == WM_NCDESTROY && atTheEnd)
        atTheEnd(window);
    return ::DefWindowProcA(window, message, wParam, lParam);
}

const char* windowClass() {
    static const ATOM registered = [] {
        WNDCLASSA description{};
        description.lpfnWndProc = &windowProcedure;
        description.hInstance = ::GetModuleHandleA(nullptr);
        description.lpszClassName = "CorvinaSubclassTest";
        return ::RegisterClassA(&description);
    }();
    return registered ? "CorvinaSubclassTest" : "";
}

std::string numberOf(HWND window) {
    return std::to_string(static_cast<int>(reinterpret_cast<LONG_PTR>(window)));
}

struct PropertyCount {
    std::string number;
    int count = 0;
};

BOOL CALLBACK countOne(HWND, LPSTR name, HANDLE, ULONG_PTR data) {
    auto& properties = *reinterpret_cast<PropertyCount*>(data);
    const bool isText = reinterpret_cast<ULONG_PTR>(name) > 0xFFFF;
    if (isText && std::string(name).find(properties.number) <= 1)
        ++properties.count;
    return TRUE;
}

// Those that are named after the window's own handle: the system keeps others.
int countProperties(HWND window) {
    PropertyCount properties{numberOf(window)};
    ::EnumPropsExA(window, &countOne, reinterpret_cast<LPARAM>(&properties));
    return properties.count;
}

std::int32_t property(HWND window, const std::string& name) {
    return static_cast<std::int32_t>(
        reinterpret_cast<std::intptr_t>(::GetPropA(window, name.c_str())));
}

class Subclass : public ::testing::Test {
protected:
    void SetUp() override {
        calls.clear();
        windowLog.clear();
        windowFaults.disarm();
        MSubclass::useWindowApi(&faultyWindowApi);
    }
    void TearDown() override {
        atTheEnd = nullptr;
        MSubclass::useWindowApi(nullptr);
        MSubclass::useTrace(nullptr);
    }

    static SubclassClient::Handler noting(const char* name, long answer) {
        return [=](HWND, UINT, WPARAM, LPARAM) {
            calls.emplace_back(name);
            return answer;
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

constexpr std::int32_t cannotSubclass = MSubclass::errorBase + 13081;
constexpr std::int32_t alreadyHandled = MSubclass::errorBase + 13082;
constexpr std::int32_t invalidWindow = MSubclass::errorBase + 13083;
constexpr std::int32_t externalWindow = MSubclass::errorBase + 13084;

TEST_F(Subclass, a_client_receives_the_message_with_its_arguments) {
    std::vector<long> seen;
    SubclassClient client([&](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        seen = {reinterpret_cast<long>(hwnd), static_cast<long>(message), static_cast<long>(wParam),
                static_cast<long>(lParam)};
        return 42;
    });
    attach(client);
    EXPECT_EQ(::SendMessageA(window.handle(), hello, 0xFFFFFFFF, -2), 42);
    EXPECT_THAT(seen, ElementsAre(reinterpret_cast<long>(window.handle()), hello, -1, -2));
}

TEST_F(Subclass, other_messages_reach_the_old_procedure) {
    attach(first);
    EXPECT_EQ(send(other), fromWindow);
    EXPECT_THAT(calls, ElementsAre("old"));
}

TEST_F(Subclass, attaching_twice_to_one_message_raises_13082) {
    attach(first);
    EXPECT_EQ(attachError(&first, window.handle()), alreadyHandled);
}

TEST_F(Subclass, attaching_to_a_second_message_does_not_replace_the_procedure_again) {
    attach(first);
    attach(first, other);
    EXPECT_EQ(std::count(windowLog.begin(), windowLog.end(), "SetWindowLong"), 1);
    EXPECT_EQ(send(hello), 1);
    EXPECT_EQ(send(other), 1);
}

TEST_F(Subclass, detaching_a_client_that_is_not_attached_does_nothing) {
    attach(first);
    windowLog.clear();
    detach(second);
    detach(first, other);
    EXPECT_THAT(windowLog, IsEmpty());
    EXPECT_EQ(send(), 1);
}

TEST_F(Subclass, the_client_attached_last_is_called_first) {
    attach(first);
    attach(second);
    EXPECT_EQ(send(), 1);
    EXPECT_THAT(calls, ElementsAre("second", "old", "first"));
}

TEST_F(Subclass, the_first_attached_client_alone_decides_how_the_old_procedure_is_combined) {
    first.response = emrConsume;
    second.response = emrPostProcess;
    attach(first);
    attach(second);
    EXPECT_EQ(send(), 1);
    EXPECT_THAT(calls, ElementsAre("second", "first"));
}

TEST_F(Subclass, preprocessing_calls_the_old_procedure_before_the_client_whose_result_counts) {
    first.response = emrPreprocess;
    attach(first);
    EXPECT_EQ(send(), 1);
    EXPECT_THAT(calls, ElementsAre("old", "first"));
}

TEST_F(Subclass, postprocessing_calls_the_old_procedure_after_the_client_and_its_result_counts) {
    first.response = emrPostProcess;
    attach(first);
    EXPECT_EQ(send(), fromWindow);
    EXPECT_THAT(calls, ElementsAre("first", "old"));
}

TEST_F(Subclass, consuming_never_calls_the_old_procedure) {
    first.response = emrConsume;
    attach(first);
    EXPECT_EQ(send(), 1);
    EXPECT_THAT(calls, ElementsAre("first"));
}

TEST_F(Subclass, detaching_the_last_client_restores_the_old_procedure) {
    attach(first);
    attach(second, other);
    detach(first);
    EXPECT_TRUE(subclassed());
    detach(second, other);
    EXPECT_FALSE(subclassed());
    EXPECT_EQ(countProperties(window.handle()), 0);
}

TEST_F(Subclass, detaching_moves_the_later_clients_down) {
    SubclassClient third(noting("third", 3));
    attach(first);
    attach(second);
    attach(third);
    detach(first);
    EXPECT_EQ(send(), 2);
    EXPECT_THAT(calls, ElementsAre("third", "old", "second"));
}

TEST_F(Subclass, the_bookkeeping_lies_in_properties_named_by_decimal_numbers) {
    const LONG old = ::GetWindowLongA(window.handle(), GWL_WNDPROC);
    attach(first);
    attach(second);
    attach(first, other);
    const auto address = [](ISubclass* client) {
        return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(client));
    };
    const HWND hwnd = window.handle();
    EXPECT_EQ(property(hwnd, std::string("C").append(number())), 3);
    EXPECT_EQ(property(hwnd, number()), old);
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(hello) + "C"), 2);
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(hello) + "#1"), address(&first));
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(hello) + "#2"), address(&second));
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(other) + "#1"), address(&first));
    EXPECT_EQ(countProperties(hwnd), 7);
}

TEST_F(Subclass, a_client_is_not_referenced_while_attached_but_while_it_is_called) {
    int during = 0;
    SubclassClient client([&](HWND, UINT, WPARAM, LPARAM) {
        during = client.references;
        return 0;
    });
    attach(client);
    EXPECT_EQ(client.references, 0);
    send();
    EXPECT_EQ(during, 1);
    EXPECT_EQ(client.references, 0);
}

TEST_F(Subclass, the_current_message_is_the_one_being_dispatched) {
    std::int32_t outer = 0;
    std::int32_t afterInner = 0;
    SubclassClient client([&](HWND hwnd, UINT message, WPARAM, LPARAM) {
        if (message == hello) {
            outer = MSubclass::CurrentMessage();
            ::SendMessageA(hwnd, other, 0, 0);
            afterInner = MSubclass::CurrentMessage();
        }
        return 0;
    });
    attach(client);
    attach(client, other);
    send();
    EXPECT_EQ(outer, hello);
    EXPECT_EQ(afterInner, other) << "one number serves all messages, also nested ones";
}

TEST_F(Subclass, the_old_procedure_can_be_called_by_a_client) {
    attach(first);
    EXPECT_EQ(MSubclass::CallOldWindowProc(window.handle(), hello, 0, 0), fromWindow);
    EXPECT_THAT(calls, ElementsAre("old"));
}

TEST_F(Subclass, calling_the_old_procedure_of_a_window_without_one_answers_0) {
    EXPECT_EQ(MSubclass::CallOldWindowProc(window.handle(), hello, 0, 0), 0);
    EXPECT_EQ(MSubclass::CallOldWindowProc(nullptr, hello, 0, 0), 0);
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Subclass, no_window_raises_13083) {
    EXPECT_EQ(attachError(&first, nullptr), invalidWindow);
    EXPECT_EQ(attachError(&first, reinterpret_cast<HWND>(0x7FFFFFF0)), invalidWindow);
}

TEST_F(Subclass, a_window_of_another_process_raises_13084_and_is_ignored_on_detach) {
    const HWND desktop = ::GetDesktopWindow();
    DWORD owner = 0;
    ::GetWindowThreadProcessId(desktop, &owner);
    ASSERT_NE(owner, ::GetCurrentProcessId());
    EXPECT_EQ(attachError(&first, desktop), externalWindow);
    MSubclass::DetachMessage(&first, desktop, hello);
}

TEST_F(Subclass, detaching_from_a_window_that_is_gone_is_ignored) {
    attach(first);
    window.destroy();
    detach(first);
}

TEST_F(Subclass, no_client_raises_5) {
    EXPECT_EQ(attachError(nullptr, window.handle()), 5);
    EXPECT_FALSE(subclassed());
}

TEST_F(Subclass, the_errors_name_the_host_program_and_say_what_is_wrong) {
    const auto textOf = [](ISubclass* client, HWND hwnd) {
        try {
            MSubclass::AttachMessage(client, hwnd, hello);
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.source(), L"subclass_test.WindowProc");
            return error.text();
        }
        return std::wstring();
    };
    attach(first);
    EXPECT_EQ(textOf(&first, window.handle()), L"Message already handled by another class");
    EXPECT_EQ(textOf(&first, nullptr), L"Invalid window");
    EXPECT_EQ(textOf(&first, ::GetDesktopWindow()), L"Can't modify external window");
    detach(first);
    windowFaults.arm("SetWindowLong", 1);
    EXPECT_EQ(textOf(&first, window.handle()), L"Can't subclass window");
}

TEST_F(Subclass, a_destroyed_window_gets_its_procedure_back_where_nobody_takes_that_message) {
    attach(first);
    window.destroy();
    EXPECT_THAT(calls, ElementsAre("destroyed"));
}

TEST_F(Subclass, the_cleanup_at_the_windows_end_leaves_the_entries_of_the_messages) {
    std::int32_t attachments = -1;
    std::int32_t clients = -1;
    atTheEnd = [&](HWND hwnd) {
        attachments = property(hwnd, std::string("C").append(number()));
        clients = property(hwnd, number() + "#" + std::to_string(hello) + "C");
    };
    attach(first);
    window.destroy();
    EXPECT_EQ(attachments, 0);
    EXPECT_EQ(clients, 1);
}

TEST_F(Subclass, a_client_that_detaches_after_the_cleanup_finds_its_entry) {
    int left = -1;
    atTheEnd = [&](HWND hwnd) {
        detach(first);
        left = countProperties(hwnd);
    };
    attach(first);
    window.destroy();
    EXPECT_EQ(left, 0);
}

TEST_F(Subclass, a_client_that_takes_the_destruction_is_called_once) {
    SubclassClient client(noting("client", 0));
    attach(client, WM_DESTROY);
    window.destroy();
    EXPECT_THAT(calls, ElementsAre("destroyed", "client"));
}

TEST_F(Subclass, the_module_stays_loaded_while_a_window_is_subclassed) {
    EXPECT_FALSE(thisModule().inUse());
    attach(first);
    EXPECT_TRUE(thisModule().inUse());
    detach(first);
    EXPECT_FALSE(thisModule().inUse());
    for (int nth = 1; nth <= 4; ++nth) {
        windowFaults.arm("SetProp", nth);
        EXPECT_EQ(attachError(&first, window.handle()), 5);
        EXPECT_FALSE(thisModule().inUse());
    }
    windowFaults.disarm();
    attach(first, WM_DESTROY);
    window.destroy();
    EXPECT_FALSE(thisModule().inUse());
}

TEST_F(Subclass, a_client_may_detach_itself_while_it_is_called) {
    SubclassClient client([&](HWND, UINT, WPARAM, LPARAM) {
        detach(client);
        return 5;
    });
    attach(client);
    EXPECT_EQ(send(), 5);
    EXPECT_EQ(send(), fromWindow);
    EXPECT_FALSE(subclassed());
}

TEST_F(Subclass, a_client_may_detach_all_others_while_it_is_called) {
    SubclassClient client([&](HWND, UINT, WPARAM, LPARAM) {
        detach(first);
        detach(second);
        return 5;
    });
    attach(first);
    attach(second);
    attach(client);
    send();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "second"), 0);
    calls.clear();
    EXPECT_EQ(send(), 5);
    EXPECT_THAT(calls, ElementsAre("old"));
}

TEST_F(Subclass, a_client_may_attach_others_while_it_is_called) {
    SubclassClient client([&](HWND, UINT, WPARAM, LPARAM) {
        if (calls.size() == 1)
            attach(second);
        return 5;
    });
    attach(client);
    EXPECT_EQ(send(), 5);
    EXPECT_THAT(calls, ElementsAre("old")) << "the new client waits for the next message";
    send();
    EXPECT_THAT(calls, ElementsAre("old", "second", "old"));
}

TEST_F(Subclass, a_client_may_destroy_the_window_while_it_is_called) {
    for (const EMsgResponse response : {emrConsume, emrPostProcess, emrPreprocess}) {
        HiddenWindow victim(windowClass());
        SubclassClient client(
            [&](HWND, UINT, WPARAM, LPARAM) {
                victim.destroy();
                return 5;
            },
            response);
        MSubclass::AttachMessage(&first, victim.handle(), hello);
        MSubclass::AttachMessage(&client, victim.handle(), hello);
        EXPECT_EQ(::SendMessageA(victim.handle(), hello, 0, 0), 5);
    }
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "first"), 0);
}

TEST_F(Subclass, the_old_procedure_is_not_called_for_a_window_that_is_gone) {
    SubclassClient client(
        [&](HWND, UINT, WPARAM, LPARAM) {
            window.destroy();
            return 5;
        },
        emrPostProcess);
    attach(client);
    EXPECT_EQ(send(), 5);
    EXPECT_THAT(calls, ElementsAre("destroyed"));
}

TEST_F(Subclass, a_client_that_fails_does_not_take_the_message_from_the_window) {
    first.status = E_FAIL;
    attach(first);
    EXPECT_EQ(send(), fromWindow);
    EXPECT_THAT(calls, ElementsAre("first", "old"));
}

TEST_F(Subclass, every_change_makes_a_trace_text) {
    static std::vector<std::string> traces;
    traces.clear();
    MSubclass::useTrace([](const char* text) { traces.emplace_back(text); });
    const auto hex = [](LONG_PTR value) {
        char text[16];
        std::snprintf(text, sizeof text, "%lX", static_cast<unsigned long>(value));
        return std::string(text);
    };
    const std::string handle = hex(reinterpret_cast<LONG_PTR>(window.handle()));
    const std::string message = " Message " + std::to_string(hello);
    const std::string old = hex(::GetWindowLongA(window.handle(), GWL_WNDPROC));
    attach(first);
    EXPECT_THAT(traces,
                ElementsAre("Changed message count for " + handle + message + " to 1",
                            "Changed message class for " + handle + message + " Index 1 to " +
                                hex(reinterpret_cast<LONG_PTR>(static_cast<ISubclass*>(&first))),
                            "Changed Window Proc for " + handle + " to " + old,
                            "Changed message count for " + handle + " to 1"));
    detach(first);
}

// A property is set four times by a first attachment: the message's count, the client, the old
// procedure, the window's count.
class SubclassRollback : public Subclass, public ::testing::WithParamInterface<int> {};

TEST_P(SubclassRollback, a_property_that_cannot_be_set_raises_5_and_leaves_nothing) {
    windowFaults.arm("SetProp", GetParam());
    EXPECT_EQ(attachError(&first, window.handle()), 5);
    EXPECT_EQ(windowFaults.struck(), 1);
    EXPECT_EQ(countProperties(window.handle()), 0);
    EXPECT_FALSE(subclassed());
    windowFaults.disarm();
    attach(first);
    EXPECT_EQ(send(), 1);
}

INSTANTIATE_TEST_SUITE_P(EachProperty, SubclassRollback, ::testing::Values(1, 2, 3, 4));

TEST_F(Subclass, a_procedure_that_cannot_be_replaced_raises_13081_and_leaves_nothing) {
    windowFaults.arm("SetWindowLong", 1);
    EXPECT_EQ(attachError(&first, window.handle()), cannotSubclass);
    EXPECT_EQ(countProperties(window.handle()), 0);
}

TEST_F(Subclass, a_failed_second_attachment_leaves_the_first_as_it_was) {
    attach(first);
    for (int nth = 1; nth <= 3; ++nth) {
        windowFaults.arm("SetProp", nth);
        EXPECT_EQ(attachError(&second, window.handle()), 5);
    }
    windowFaults.disarm();
    EXPECT_EQ(property(window.handle(), std::string("C").append(number())), 1);
    EXPECT_EQ(send(), 1);
    EXPECT_THAT(calls, ElementsAre("old", "first"));
}

TEST_F(Subclass, the_rollback_goes_in_the_reverse_order) {
    windowFaults.arm("SetProp", 4);
    const std::string message = number() + "#" + std::to_string(hello);
    EXPECT_EQ(attachError(&first, window.handle()), 5);
    EXPECT_THAT(windowLog,
                ElementsAre("SetProp " + message + "C", "SetProp " + message + "#1",
                            "SetWindowLong", std::string("SetProp ").append(number()),
                            std::string("SetProp C").append(number()),
                            "RemoveProp " + message + "#1", "RemoveProp " + message + "C",
                            "SetWindowLong", std::string("RemoveProp ").append(number())));
}

TEST_F(Subclass, any_failing_call_leaves_a_window_that_can_be_used_and_destroyed) {
    forEachFault(windowFaults, [&] {
        HiddenWindow victim(windowClass());
        static_cast<void>(attachError(&first, victim.handle()));
        static_cast<void>(attachError(&second, victim.handle()));
        ::SendMessageA(victim.handle(), hello, 0, 0);
        MSubclass::DetachMessage(&second, victim.handle(), hello);
        MSubclass::DetachMessage(&first, victim.handle(), hello);
        ::SendMessageA(victim.handle(), hello, 0, 0);
        victim.destroy();
        EXPECT_EQ(first.references, 0);
        EXPECT_EQ(second.references, 0);
    });
}

} // namespace
} // namespace corvina::test
