#include "com/Variant.h"

#include "runtime/OutOfMemory.h"

#include <oleauto.h>

namespace corvina {

Variant::Variant(const Variant& other) : Variant() {
    auto* const source = const_cast<Variant*>(&other); // only read
    if (FAILED(::VariantCopy(this, source)))
        throwOutOfMemory();
}

std::optional<std::int32_t> numberOf(const VARIANT& value) noexcept {
    auto* const source = const_cast<VARIANT*>(&value); // only read
    Variant number;
    if (SUCCEEDED(::VariantChangeType(&number, source, 0, VT_I4)))
        return static_cast<std::int32_t>(V_I4(&number));
    if (SUCCEEDED(::VariantChangeType(&number, source, 0, VT_UI4)))
        return static_cast<std::int32_t>(V_UI4(&number));
    return std::nullopt;
}

} // namespace corvina
