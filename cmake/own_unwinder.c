/* A DLL that is linked with an unwinder of its own must use that one. GCC's start code looks for
 * libgcc_s_dw2-1.dll first, and if the host has it loaded (one built with MinGW may) shows that
 * library where the DLL's exception tables are. The DLL's own unwinder then finds none, and the
 * first throw ends the host. So inside such a DLL there is no library of that name.
 *
 * The start code calls GetModuleHandleA through its import; this file takes the import's place. */
#include <string.h>
#include <windows.h>

static HMODULE WINAPI module_handle(LPCSTR name) {
    WCHAR wide[MAX_PATH];
    if (!name)
        return GetModuleHandleW(NULL);
    if (strcmp(name, "libgcc_s_dw2-1.dll") == 0)
        return NULL;
    return MultiByteToWideChar(CP_ACP, 0, name, -1, wide, MAX_PATH) != 0 ? GetModuleHandleW(wide)
                                                                         : NULL;
}

typedef HMODULE(WINAPI* ModuleHandle)(LPCSTR);
const ModuleHandle imported_module_handle __asm__("__imp__GetModuleHandleA@4") = module_handle;
