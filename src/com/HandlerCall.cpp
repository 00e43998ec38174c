#include "com/HandlerCall.h"

#include <cstdint>
#include <windows.h>

namespace corvina {
namespace {

constexpr DWORD raisedBySoftware = 0x20000000; // the bit that no code of the system has
constexpr DWORD raisedByPascal = 0x0EEDFADE;   // which lacks it

bool isHeld(DWORD code) noexcept {
    return (code & raisedBySoftware) != 0 || code == raisedByPascal;
}

} // namespace

#ifdef _MSC_VER

bool callHandler(void (*call)(void*) noexcept, void* argument) noexcept {
    __try {
        call(argument);
        return true;
    } __except (isHeld(::GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER
                                             : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

#else

namespace {

// What the system finds in the thread's list of handlers, and where to go on.
struct Registration {
    DWORD former;
    EXCEPTION_DISPOSITION(__cdecl* handler)(EXCEPTION_RECORD*, void*, CONTEXT*, void*);
    void* goOn[5];
};

EXCEPTION_DISPOSITION __cdecl handle(EXCEPTION_RECORD* raised, void* frame, CONTEXT*,
                                     void*) noexcept {
    constexpr DWORD unwinding = 0x2 | 0x4;
    if ((raised->ExceptionFlags & unwinding) != 0 || !isHeld(raised->ExceptionCode))
        return ExceptionContinueSearch;
    // Unwinding may leave nothing in the registers.
    Registration* volatile const registration = static_cast<Registration*>(frame);
    ::RtlUnwind(frame, nullptr, raised, nullptr);
    __writefsdword(0, registration->former);
    __builtin_longjmp(registration->goOn, 1);
}

} // namespace

[[gnu::noinline]] bool callHandler(void (*call)(void*) noexcept, void* argument) noexcept {
    Registration registration{};
    registration.former = __readfsdword(0);
    registration.handler = &handle;
    if (__builtin_setjmp(registration.goOn) != 0)
        return false;
    __writefsdword(0, static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&registration)));
    call(argument);
    __writefsdword(0, registration.former);
    return true;
}

#endif

} // namespace corvina
