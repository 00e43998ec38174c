// The subclassing when the platform fails.

#include "SubclassFixture.h"

namespace corvina::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
    forEachFaultAndPair(
        windowFaults,
        [&] {
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
        },
        4);
}

} // namespace
} // namespace corvina::test
