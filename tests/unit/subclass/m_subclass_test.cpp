// Window message subclassing, on real windows.

#include "SubclassFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

std::int32_t addressOf(ISubclass* client) {
    return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(client));
}

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

TEST_F(Subclass, the_old_procedure_is_called_once_for_a_client_that_changes_its_mind) {
    first.response = emrPreprocess;
    first.handle = [this](HWND, UINT, WPARAM, LPARAM) {
        calls.emplace_back("first");
        first.response = emrPostProcess;
        return 1;
    };
    attach(first);
    EXPECT_EQ(send(), 1);
    EXPECT_THAT(calls, ElementsAre("old", "first"));
}

TEST_F(Subclass, a_client_that_returns_nothing_returns_0) {
    struct Silent : SubclassClient {
        HRESULT STDMETHODCALLTYPE WindowProc(long, long, long, long, long*) override {
            return S_OK;
        }
    } silent;
    attach(silent);
    EXPECT_EQ(send(), 0);
}

TEST_F(Subclass, the_old_procedure_gets_the_messages_arguments) {
    attach(first);
    for (const EMsgResponse response : {emrPreprocess, emrPostProcess}) {
        first.response = response;
        ::SendMessageA(window.handle(), hello, 0x11, 0x22);
    }
    MSubclass::CallOldWindowProc(window.handle(), hello, 0x33, 0x44);
    detach(first);
    attach(first, other);
    ::SendMessageA(window.handle(), hello, 0x55, 0x66); // nobody's message
    EXPECT_THAT(greetings, ElementsAre(Pair(0x11, 0x22), Pair(0x11, 0x22), Pair(0x33, 0x44),
                                       Pair(0x55, 0x66)));
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
    const HWND hwnd = window.handle();
    EXPECT_EQ(property(hwnd, std::string("C").append(number())), 3);
    EXPECT_EQ(property(hwnd, number()), old);
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(hello) + "C"), 2);
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(hello) + "#1"), addressOf(&first));
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(hello) + "#2"), addressOf(&second));
    EXPECT_EQ(property(hwnd, number() + "#" + std::to_string(other) + "#1"), addressOf(&first));
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

TEST_F(Subclass, calling_the_old_procedure_of_a_window_without_one_returns_0) {
    EXPECT_EQ(MSubclass::CallOldWindowProc(window.handle(), hello, 0, 0), 0);
    EXPECT_EQ(MSubclass::CallOldWindowProc(nullptr, hello, 0, 0), 0);
    EXPECT_THAT(calls, IsEmpty());
}

// A window of another host has the property too, and its number is an address over there.
TEST_F(Subclass, calling_the_old_procedure_of_another_processs_window_returns_0) {
    const HWND desktop = ::GetDesktopWindow();
    const std::string name = numberOf(desktop);
    ASSERT_TRUE(::SetPropA(desktop, name.c_str(), reinterpret_cast<HANDLE>(0x1234)));
    EXPECT_EQ(MSubclass::CallOldWindowProc(desktop, hello, 0, 0), 0);
    ::RemovePropA(desktop, name.c_str());
}

TEST_F(Subclass, no_window_raises_13083) {
    EXPECT_EQ(attachError(&first, nullptr), invalidWindow);
    EXPECT_EQ(attachError(&first, reinterpret_cast<HWND>(0x7FFFFFF0)), invalidWindow);
}

TEST_F(Subclass, a_window_of_another_process_raises_13084) {
    const HWND desktop = ::GetDesktopWindow();
    DWORD owner = 0;
    ::GetWindowThreadProcessId(desktop, &owner);
    ASSERT_NE(owner, ::GetCurrentProcessId());
    EXPECT_EQ(attachError(&first, desktop), externalWindow);
}

// Another host that subclasses its window may have a client at the same address.
TEST_F(Subclass, the_bookkeeping_of_another_processs_window_is_left_alone_on_detach) {
    const HWND desktop = ::GetDesktopWindow();
    const std::string name = numberOf(desktop);
    const std::string message = name + "#" + std::to_string(hello);
    const std::pair<std::string, std::int32_t> bookkeeping[] = {
        {"C" + name, 2}, {message + "C", 1}, {message + "#1", addressOf(&first)}};
    for (const auto& [entry, value] : bookkeeping)
        ASSERT_TRUE(::SetPropA(desktop, entry.c_str(), reinterpret_cast<HANDLE>(value)));
    MSubclass::DetachMessage(&first, desktop, hello);
    for (const auto& [entry, value] : bookkeeping) {
        EXPECT_EQ(property(desktop, entry), value) << entry;
        ::RemovePropA(desktop, entry.c_str());
    }
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
            EXPECT_EQ(error.source(), L"m_subclass_test.WindowProc");
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
    traces.clear();
    detach(first);
    EXPECT_THAT(traces,
                ElementsAre("Changed message class for " + handle + message + " Index 1 to 0",
                            "Changed message count for " + handle + message + " to 0",
                            "Changed Window Proc for " + handle + " to 0",
                            "Changed message count for " + handle + " to 0"));
    MSubclass::useTrace(nullptr);
}

} // namespace
} // namespace corvina::test
