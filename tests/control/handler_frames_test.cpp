// What a call of a host's handler leaves of the thread's list of exception handlers.

#include "com/HandlerCall.h"
#include "control/Control.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace corvina::test {
namespace {

constexpr DWORD ofCpp = 0xE06D7363;
constexpr DWORD unwinding = 0x2;

// A handler in the thread's list, as a compiler of the host's would put it there.
struct Frame {
    DWORD former = __readfsdword(0);
    EXCEPTION_DISPOSITION(__cdecl* handler)(EXCEPTION_RECORD*, void*, CONTEXT*, void*) = &pass;
    static inline int searched = 0;
    static inline int unwound = 0;

    void enter() { __writefsdword(0, static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(this))); }
    void leave() const { __writefsdword(0, former); }

    static EXCEPTION_DISPOSITION __cdecl pass(EXCEPTION_RECORD* raised, void*, CONTEXT*, void*) {
        ++(raised->ExceptionFlags & unwinding ? unwound : searched);
        return ExceptionContinueSearch;
    }
};

TEST(HandlerFrames, are_the_same_after_a_call) {
    const DWORD before = __readfsdword(0);
    EXPECT_TRUE(callHandler([] {}));
    EXPECT_EQ(before, __readfsdword(0));
}

#ifndef _MSC_VER // whose programs list the handlers that may be called
TEST(HandlerFrames, of_a_handler_that_raises_are_unwound_and_gone) {
    const DWORD before = __readfsdword(0);
    Frame::searched = Frame::unwound = 0;
    EXPECT_FALSE(callHandler([] {
        Frame frame;
        frame.enter();
        ::RaiseException(ofCpp, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    }));
    EXPECT_EQ(1, Frame::searched);
    EXPECT_EQ(1, Frame::unwound);
    EXPECT_EQ(before, __readfsdword(0));
}
#endif

} // namespace
} // namespace corvina::test
