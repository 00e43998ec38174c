#pragma once

// What a container may ask a control to do: the verbs, as EnumVerbs lists them and the registry
// repeats them.

#include <span>
#include <windows.h>

#include <olectl.h>
#include <oleidl.h>

namespace corvina {

struct Verb {
    LONG number = 0;
    const wchar_t* name = nullptr; // null for a verb that no menu shows
    DWORD attributes = 0;          // of OLEVERBATTRIB
};

// Shows the about box: the one verb beyond the standard ones.
inline constexpr LONG aboutVerb = 1;

[[nodiscard]] std::span<const Verb> controlVerbs() noexcept;

} // namespace corvina
