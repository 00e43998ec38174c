/* The compiler's thread library takes an index of thread-local storage when something is first
 * thrown and never gives it back. A process has about a thousand: a host that loads and unloads a
 * DLL for each job would be ended by the thread library once they are used up. So they are noted
 * here, and given back when the DLL is unloaded.
 *
 * This file takes the place of the import of TlsAlloc, for the whole DLL. */
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

/* The last of the DLL's destructors. */
__attribute__((destructor(101))) static void give_indexes_back(void) {
    for (LONG at = 0; at < count && at < MOST_INDEXES; ++at)
        TlsFree(indexes[at]);
}
