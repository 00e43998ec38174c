#pragma once

// What the registry says about this library: its type library and the classes of its table.

#include <windows.h>

namespace corvina {

enum class RegistrationScope { machine, currentUser };

// Registering stops at the first step that fails and returns its result; what was registered
// before, of this file or another, is then registered as it was. Unregistering goes on after a
// failed step, leaves as little as it can and returns the first failure; what is not there is no
// failure.
[[nodiscard]] HRESULT registerLibrary(RegistrationScope scope);
[[nodiscard]] HRESULT unregisterLibrary(RegistrationScope scope);

} // namespace corvina
