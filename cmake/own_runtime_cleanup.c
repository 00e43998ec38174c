/* Gives back what the compiler's own libraries would keep when the DLL is unloaded. A host that
 * loads and unloads a DLL for each job would otherwise lose at each:
 *   - an index of thread-local storage; a process has about a thousand, and the thread library ends it
 *     once they are used up,
 *   - two handles of the thread that unloads it; two more of the thread library stay out of reach,
 *   - 19 KB that are kept for exceptions thrown when memory is short.
 *
 * This file takes the place of the import of TlsAlloc, for the whole DLL, to note its indexes. */
#include <stdlib.h>
#include <string.h>
#include <windows.h>

enum { MOST_INDEXES = 16 };

static DWORD indexes[MOST_INDEXES];
static LONG count;

typedef DWORD(WINAPI* TakeIndex)(void);

static DWORD WINAPI take_index(void) {
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc");
    TakeIndex take = NULL;
    memcpy(&take, &found, sizeof take);
    const DWORD index = take ? take() : TLS_OUT_OF_INDEXES;
    if (index != TLS_OUT_OF_INDEXES) {
        const LONG at = InterlockedIncrement(&count) - 1;
        if (at < MOST_INDEXES)
            indexes[at] = index;
    }
    return index;
}

const TakeIndex imported_tls_alloc __asm__("__imp__TlsAlloc@0") = take_index;

/* The thread library's callback for the loader, and the end of the exception library's memory. */
extern const PIMAGE_TLS_CALLBACK thread_library_callback __asm__("___xl_f");
extern void free_exception_memory(void) __asm__("__ZN9__gnu_cxx9__freeresEv");
extern IMAGE_DOS_HEADER __ImageBase;

static void clean_up(void) {
    free_exception_memory();
    thread_library_callback(&__ImageBase, DLL_THREAD_DETACH, NULL);
    for (LONG at = 0; at < count && at < MOST_INDEXES; ++at)
        TlsFree(indexes[at]);
}

/* What is registered first runs last, behind the ends of all C++ objects. */
__attribute__((constructor(101))) static void clean_up_at_the_end(void) {
    atexit(clean_up);
}
