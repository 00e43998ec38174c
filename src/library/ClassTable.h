#pragma once

// The classes that this library creates: one line each in ClassTable.cpp.

#include "control/ControlClass.h"

#include <span>
#include <unknwn.h>

namespace corvina {

struct ClassEntry {
    const CLSID& clsid;
    const wchar_t* progId; // version-independent; ".1" follows for the current version
    const wchar_t* description;
    // A new object with one reference; throws if it cannot be made.
    IUnknown* (*create)();
    // The toolbox bitmap's resource number; 0 for a class that is no control.
    int toolboxBitmap = 0;
};

[[nodiscard]] std::span<const ClassEntry> classTable() noexcept;

} // namespace corvina
