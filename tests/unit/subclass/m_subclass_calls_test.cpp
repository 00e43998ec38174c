// What a client or a window may do to the subclassing in the middle of a message.

#include "SubclassFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Subclass, a_destroyed_window_gets_its_procedure_back_if_no_client_handles_that_message) {
    attach(first);
    window.destroy();
    EXPECT_THAT(calls, ElementsAre("destroyed"));
}

TEST_F(Subclass, the_old_procedure_is_back_and_no_client_counts_when_it_gets_the_destruction) {
    bool inPlace = false;
    std::int32_t attachments = -1;
    atDestruction = [&](HWND hwnd) {
        inPlace = !subclassed();
        attachments = property(hwnd, std::string("C").append(number()));
    };
    attach(first);
    window.destroy();
    EXPECT_TRUE(inPlace);
    EXPECT_EQ(attachments, 0);
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

TEST_F(Subclass, a_client_that_takes_the_destruction_still_gets_what_comes_after_it) {
    attach(first, WM_DESTROY);
    attach(second, WM_NCDESTROY);
    window.destroy();
    EXPECT_THAT(calls, ElementsAre("destroyed", "first", "second"));
}

TEST_F(Subclass, a_window_is_subclassed_from_the_first_attached_client_to_the_last_detached_one) {
    EXPECT_FALSE(MSubclass::isSubclassed(window.handle()));
    attach(first);
    EXPECT_TRUE(MSubclass::isSubclassed(window.handle()));
    attach(second);
    detach(first);
    EXPECT_TRUE(MSubclass::isSubclassed(window.handle()));
    detach(second);
    EXPECT_FALSE(MSubclass::isSubclassed(window.handle()));
}

TEST_F(Subclass, a_window_without_bookkeeping_gets_0_from_the_shared_procedure) {
    attach(first);
    const auto shared = reinterpret_cast<WNDPROC>(::GetWindowLongA(window.handle(), GWL_WNDPROC));
    const HiddenWindow foreign(windowClass());
    EXPECT_EQ(0, ::CallWindowProcA(shared, foreign.handle(), hello, 0, 0));
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Subclass, a_message_of_which_the_client_goes_away_returns_0) {
    first.handle = [this](HWND, UINT, WPARAM, LPARAM) {
        first.status = E_FAIL;
        window.destroy();
        return 7L;
    };
    first.response = emrConsume;
    attach(first);
    EXPECT_EQ(0, send());
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

} // namespace
} // namespace corvina::test
