// A library to load in tests: its exports hand their arguments back.
#include <cstdint>

extern "C" {

__declspec(dllexport) std::int32_t __cdecl subtract_cdecl(std::int32_t a, std::int32_t b) {
    return a - b;
}

__declspec(dllexport) std::int32_t __stdcall subtract_stdcall(std::int32_t a, std::int32_t b) {
    return a - b;
}
}
