#pragma once

// Tags of an audio file: an ordered collection of name/value texts. Names may repeat.
//
// Sources fill a collection (AddTag, ClearTags); everybody else reads it. Indexes start at 1; one
// outside 1..TagCount raises Subscript out of range.

#include <cstdint>
#include <string>
#include <vector>

namespace corvina {

class StrmTag {
public:
    [[nodiscard]] const std::wstring& TagName() const noexcept { return name_; }
    [[nodiscard]] const std::wstring& TagValue() const noexcept { return value_; }

    void SetTag(std::wstring name, std::wstring value);

private:
    std::wstring name_;
    std::wstring value_;
};

class StrmTags {
public:
    [[nodiscard]] std::int32_t TagCount() const noexcept;
    [[nodiscard]] const StrmTag& TagItem(std::int32_t index) const;

    // The tags in order, for a range-based loop.
    [[nodiscard]] auto begin() const noexcept { return tags_.begin(); }
    [[nodiscard]] auto end() const noexcept { return tags_.end(); }

    void AddTag(std::wstring name, std::wstring value);
    void ClearTags() noexcept;

private:
    std::vector<StrmTag> tags_;
};

} // namespace corvina
