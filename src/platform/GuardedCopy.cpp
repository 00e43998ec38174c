#include "platform/GuardedCopy.h"

#include "platform/MemoryProbe.h"

#include <cstring>
#include <windows.h>

namespace corvina {
namespace {

// What reading memory raises if it cannot be read.
bool isReadFault(DWORD code) noexcept {
    return code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR ||
           code == EXCEPTION_GUARD_PAGE;
}

} // namespace
} // namespace corvina

// ReadProcessMemory would do the same, but on Wine it takes fifty microseconds, and there it also
// "reads" memory that was freed.
#if defined(_MSC_VER)

namespace corvina {
namespace {

bool copyUntilFault(void* destination, const void* source, std::size_t bytes) noexcept {
    __try {
        std::memcpy(destination, source, bytes);
        return true;
    } __except (isReadFault(GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER
                                                : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

} // namespace
} // namespace corvina

#elif defined(__i386__)

// The compiler has no __try, so the copy puts its own handler at the head of the thread's list.
// After a fault the handler lets the thread go on behind the copying instruction, with the number
// of bytes not copied in ecx.
extern "C" {
std::size_t corvinaCopyUntilFault(void* destination, const void* source, std::size_t bytes);
extern const char corvinaCopyInstruction[];
extern const char corvinaCopyEnd[];
EXCEPTION_DISPOSITION corvinaCopyFault(EXCEPTION_RECORD* record, void* frame, CONTEXT* context,
                                       void* dispatcher);
}

// Returns the number of bytes not copied.
asm(R"(
    .text
    .globl _corvinaCopyUntilFault
_corvinaCopyUntilFault:
    pushl %esi
    pushl %edi
    movl 12(%esp), %edi
    movl 16(%esp), %esi
    movl 20(%esp), %ecx
    pushl $_corvinaCopyFault
    pushl %fs:0
    movl %esp, %fs:0
    cld
    .globl _corvinaCopyInstruction
_corvinaCopyInstruction:
    rep movsb
    .globl _corvinaCopyEnd
_corvinaCopyEnd:
    popl %fs:0
    addl $4, %esp
    movl %ecx, %eax
    popl %edi
    popl %esi
    ret
)");

EXCEPTION_DISPOSITION corvinaCopyFault(EXCEPTION_RECORD* record, void*, CONTEXT* context, void*) {
    const auto addressOf = [](const char* label) { return reinterpret_cast<DWORD_PTR>(label); };
    if (!corvina::isReadFault(record->ExceptionCode) ||
        context->Eip != addressOf(corvinaCopyInstruction))
        return ExceptionContinueSearch;
    context->Eip = addressOf(corvinaCopyEnd);
    return ExceptionContinueExecution;
}

namespace corvina {
namespace {

bool copyUntilFault(void* destination, const void* source, std::size_t bytes) noexcept {
    return corvinaCopyUntilFault(destination, source, bytes) == 0;
}

} // namespace
} // namespace corvina

#else

namespace corvina {
namespace {

bool copyUntilFault(void* destination, const void* source, std::size_t bytes) noexcept {
    SIZE_T copied = 0;
    return ::ReadProcessMemory(::GetCurrentProcess(), source, destination, bytes, &copied) &&
           copied == bytes;
}

} // namespace
} // namespace corvina

#endif

namespace corvina {

bool copyIfReadable(void* destination, const void* source, std::size_t bytes) noexcept {
    return isReadable(source, bytes) && copyUntilFault(destination, source, bytes);
}

} // namespace corvina
