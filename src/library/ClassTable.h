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
    // A new object with one reference; throws if it cannot be made. A control may be made with an
    // outer unknown; no other class is aggregated.
    IUnknown* (*create)(IUnknown* outer);
    // Null for a class that is no control.
    const ControlClass* control = nullptr;
    // The resource number of a control's toolbox bitmap.
    int toolboxBitmap = 0;
};

[[nodiscard]] std::span<const ClassEntry> classTable() noexcept;

} // namespace corvina
