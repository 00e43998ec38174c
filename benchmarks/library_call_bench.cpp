// How much longer a call through cDLL takes than a direct one.

#include "Figure.h"
#include "stream/cDLL.h"

namespace corvina::bench {
namespace {

constexpr int turns = 15;
constexpr int calls = 200'000;

template <typename Body>
double microsecondsEach(Body body) {
    return 1e6 / calls * secondsFor([&body] {
               for (int call = 0; call < calls; ++call)
                   body(call);
           });
}

void measure(cDLL& library, bool isCdecl, const char* name, const char* title) {
    library.IsCDECL(isCdecl);
    volatile int sink = 0;
    const auto direct = reinterpret_cast<int (*)(int)>(reinterpret_cast<void*>(::GetProcAddress(
        reinterpret_cast<HMODULE>(static_cast<std::uintptr_t>(library.ModuleHandle())), name)));
    if (!direct)
        giveUp("the function of the benchmark is missing");
    const auto directStdcall =
        reinterpret_cast<int(__stdcall*)(int)>(reinterpret_cast<void*>(direct));
    const Pair cost = interleaved(
        turns,
        [&] { return microsecondsEach([&](int call) { sink = library.CallFunc(name, call); }); },
        [&] {
            return microsecondsEach(
                [&](int call) { sink = isCdecl ? direct(call) : directStdcall(call); });
        });
    report(title, "us", cost.value, cost.reference, cost.ratio, Judged::excessAtMost, 1);
}

} // namespace
} // namespace corvina::bench

int main() {
    using namespace corvina;
    using namespace corvina::bench;
    cDLL library;
    if (!library.LoadDLL(L"msvcrt.dll"))
        giveUp("no msvcrt.dll");
    measure(library, true, "abs", "a cdecl call through cDLL, above a direct one");
    library.UnloadDLL();
    if (!library.LoadDLL(L"user32.dll"))
        giveUp("no user32.dll");
    measure(library, false, "GetSysColor", "a stdcall call through cDLL, above a direct one");
    library.UnloadDLL();
}
