#pragma once

// The values of a control's persisted properties, and their three persistent forms. All forms also
// hold the control's extent.
//
// Stream: "Crv1", width and height in HIMETRIC, the number of values, the values in the table's
// order; all 32-bit. A shorter list, of an older version, leaves the rest at their initial values.
// Property bag: each value under its name, the extent as _ExtentX and _ExtentY.

#include "control/ControlClass.h"
#include "control/ControlExtent.h"

#include <ocidl.h>
#include <vector>

namespace corvina {

class PropertyValues {
public:
    PropertyValues(const ControlClass& controlClass, ControlExtent& extent);

    [[nodiscard]] std::int32_t value(int index) const {
        return values_[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] bool accepts(int index, std::int32_t value) const;
    // Only a value that is accepted.
    void set(int index, std::int32_t value);

    [[nodiscard]] bool dirty() const noexcept { return dirty_; }
    void setDirty(bool dirty) noexcept { dirty_ = dirty; }

    // All at their initial values, the extent natural.
    void reset();

    // A damaged or foreign stream is refused and leaves everything as reset.
    HRESULT load(IStream& stream);
    HRESULT save(IStream& stream) const;
    [[nodiscard]] std::uint32_t streamSize() const noexcept;

    // What is missing or of no use in the bag gets its initial value.
    HRESULT load(IPropertyBag& bag, IErrorLog* log);
    // Without everything only what differs from its initial value is written.
    HRESULT save(IPropertyBag& bag, bool everything) const;

private:
    std::span<const Property> table_;
    ControlExtent& extent_;
    std::vector<std::int32_t> values_;
    bool dirty_ = false;
};

} // namespace corvina
