// Which mutant is active, and which were reached. The first part of a process that asks, the
// program, leaves the address in the environment for the libraries that are loaded later.
#include <cstdio>
#include <cstdlib>
#include <windows.h>

namespace mutants {

State* state;

State* openState() {
    static State own;
    char text[64] = "";
    unsigned long process = 0;
    void* address = nullptr;
    ::GetEnvironmentVariableA("CORVINA_MUTANT_STATE", text, sizeof text);
    if (std::sscanf(text, "%lu %p", &process, &address) == 2 && process == ::GetCurrentProcessId())
        return state = static_cast<State*>(address);
    std::snprintf(text, sizeof text, "%lu %p", ::GetCurrentProcessId(), static_cast<void*>(&own));
    ::SetEnvironmentVariableA("CORVINA_MUTANT_STATE", text);
    if (::GetEnvironmentVariableA("CORVINA_MUTANT", text, sizeof text) != 0)
        own.active = std::atoi(text);
    return state = &own;
}

} // namespace mutants
