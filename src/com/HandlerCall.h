#pragma once

// Calls a handler of the host so that an exception which it lets out ends there.
//
// Hosts in other languages raise their exceptions as structured ones of the system. Such an
// exception would leave this library's functions without their destructors, with references and
// memory lost and what was to follow undone. Faults of the processor are not held: a program that
// has overwritten memory must not go on as if nothing had happened.

#include <type_traits>

namespace corvina {

// Runs call(argument), which throws nothing of its own; false if an exception was held.
bool callHandler(void (*call)(void* argument) noexcept, void* argument) noexcept;

// The same for a callable object; what it throws as a C++ exception of this library is held too.
template <typename Body>
bool callHandler(Body&& body) noexcept {
    struct State {
        std::remove_reference_t<Body>& body;
        bool threw = false;
    } state{body};
    void (*const run)(void*) noexcept = [](void* argument) noexcept {
        auto& current = *static_cast<State*>(argument);
        try {
            current.body();
        } catch (...) {
            current.threw = true;
        }
    };
    const bool returned = callHandler(run, &state);
    return returned && !state.threw;
}

} // namespace corvina
