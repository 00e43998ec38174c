#pragma once

// Calls of members as the type library declares them, so that a new member is called without being
// named in a test: through the vtable, as compiled hosts do, and by name, as scripts do.

#include "Support.h"
#include "TypeLibraryFixture.h"

#include <cstddef>
#include <string>
#include <vector>

namespace corvina::test {

struct MemberParameter {
    VARTYPE type = VT_EMPTY; // VT_RECORD for a record by reference
    bool result = false;     // the member writes it: type is what it writes
};

struct Member {
    std::wstring name;
    MEMBERID id = 0;
    INVOKEKIND kind = INVOKE_FUNC;
    std::size_t slot = 0; // offset in the vtable
    std::vector<MemberParameter> parameters;

    // "put Volume" and so on.
    [[nodiscard]] std::string text() const;
};

// The own members of a dual interface; info: its vtable half.
[[nodiscard]] std::vector<Member> membersOf(ITypeInfo* info);

// What is passed as arguments.
struct MemberValues {
    LONG number = 1;
    float fraction = 1;
    std::wstring text;
    IDispatch* object = nullptr;
    bool takesResults = true; // otherwise null pointers are passed for them
    bool wrongTypes = false;  // by name alone: texts for numbers and numbers for texts
};

// Through the vtable of that interface. What is returned is given back at once.
HRESULT callEarly(IUnknown* vtable, const Member& member, const MemberValues& values);
// By name; an error that is raised is returned as its number. result: if not null, gets what is
// returned.
HRESULT callLate(IDispatch* control, const Member& member, const MemberValues& values,
                 Variant* result = nullptr);

} // namespace corvina::test
