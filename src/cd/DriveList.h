#pragma once

// The drives that a backend has found, counted from 0, and which of them is selected. The selection
// outlives the drives: it counts again when the list is long enough.

#include "cd/cCDAccess.h"
#include "runtime/RuntimeError.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace corvina {

template <typename Drive>
class DriveList {
public:
    void add(Drive drive) { drives_.push_back(std::move(drive)); }
    void clear() noexcept { drives_.clear(); }

    [[nodiscard]] bool isEmpty() const noexcept { return drives_.empty(); }
    [[nodiscard]] std::int32_t count() const noexcept {
        return static_cast<std::int32_t>(drives_.size());
    }
    // Raises Subscript out of range for an index outside the list.
    [[nodiscard]] const Drive& at(std::int32_t index) const {
        if (!holds(index))
            throwSubscript();
        return drives_[static_cast<std::size_t>(index)];
    }

    // 0, or 3 for an index outside the list, which leaves the selection as it was.
    std::int32_t select(std::int32_t index) noexcept {
        if (!holds(index))
            return CdStatus::badIndex;
        selected_ = index;
        return CdStatus::done;
    }
    // Null while none is selected.
    [[nodiscard]] const Drive* selected() const noexcept {
        return selected_ && holds(*selected_) ? &drives_[static_cast<std::size_t>(*selected_)]
                                              : nullptr;
    }

private:
    [[nodiscard]] bool holds(std::int32_t index) const noexcept {
        return index >= 0 && index < count();
    }

    std::vector<Drive> drives_;
    std::optional<std::int32_t> selected_;
};

} // namespace corvina
