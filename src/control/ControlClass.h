#pragma once

// What is fixed about one class of control: everything the control base needs that is no code.

#include <cstdint>
#include <span>
#include <windows.h>

#include <oleidl.h>

namespace corvina {

// One persisted property: a 32-bit number (colours and enumerations are numbers too).
struct Property {
    const wchar_t* name = nullptr; // as it is persisted
    DISPID id = DISPID_UNKNOWN;    // as listeners to property changes know it
    std::int32_t initial = 0;
    // Which values are taken; null for all. A persisted value that is refused is replaced by the
    // initial one.
    bool (*accepts)(std::int32_t value) = nullptr;
};

struct ControlClass {
    const CLSID& clsid;
    const IID& primary; // the dual interface, source of run-time errors
    const IID& events;  // the event dispinterface
    const wchar_t* progId;
    const wchar_t* description; // the name that people see
    // In device pixels, before a container says otherwise.
    SIZE naturalPixels;
    // If both are above 0 the control always has this size, in its container's units.
    SIZE fixedUnits = {};
    // False for a component: at run time it shows nothing, takes no focus and is not worth
    // printing, so it offers no metafile of itself.
    bool visibleAtRunTime = true;
    // Persisted in this order; append only.
    std::span<const Property> properties = {};
};

// What containers ask about a control, the same in the registry and from GetMiscStatus.
[[nodiscard]] constexpr DWORD miscStatus(const ControlClass& controlClass) noexcept {
    constexpr DWORD ofAll = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                            OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST;
    constexpr DWORD ofComponents = OLEMISC_INVISIBLEATRUNTIME | OLEMISC_NOUIACTIVATE;
    return controlClass.visibleAtRunTime ? ofAll : ofAll | ofComponents;
}

} // namespace corvina
