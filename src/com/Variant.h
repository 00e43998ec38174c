#pragma once

// The owner of a VARIANT: empty at first, cleared at its end.

#include "com/Bstr.h"

#include <cstdint>
#include <oaidl.h>
#include <optional>

namespace corvina {

struct Variant : VARIANT {
    Variant() noexcept : VARIANT{} { ::VariantInit(this); }
    explicit Variant(long number) noexcept : Variant() {
        V_VT(this) = VT_I4;
        V_I4(this) = number;
    }
    explicit Variant(int number) noexcept : Variant(static_cast<long>(number)) {}
    explicit Variant(std::wstring_view text) : Variant() {
        V_BSTR(this) = Bstr(text).detach();
        V_VT(this) = VT_BSTR;
    }
    explicit Variant(const wchar_t* text) : Variant(std::wstring_view(text)) {}
    // Throws std::bad_alloc if there is no memory for the copy.
    Variant(const Variant& other);
    Variant& operator=(const Variant&) = delete;
    ~Variant() { ::VariantClear(this); }

    // Changes the value to another type; false, and nothing changed, if it has no such form.
    bool changeTo(VARTYPE type) noexcept {
        return SUCCEEDED(::VariantChangeType(this, this, 0, type));
    }
};

// The 32-bit number that a value of a host stands for; nothing if it is no number or more than 32
// bits. An unsigned number above the signed ones, as the system's colours are, keeps its bits.
[[nodiscard]] std::optional<std::int32_t> numberOf(const VARIANT& value) noexcept;

} // namespace corvina
