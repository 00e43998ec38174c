#include "stream/StrmTags.h"

#include "runtime/RuntimeError.h"

#include <utility>

namespace corvina {

void StrmTag::SetTag(std::wstring name, std::wstring value) {
    name_ = std::move(name);
    value_ = std::move(value);
}

std::int32_t StrmTags::TagCount() const noexcept {
    return static_cast<std::int32_t>(tags_.size());
}

const StrmTag& StrmTags::TagItem(std::int32_t index) const {
    if (index < 1 || index > TagCount())
        throwSubscript();
    return tags_[static_cast<std::size_t>(index) - 1];
}

void StrmTags::AddTag(std::wstring name, std::wstring value) {
    StrmTag tag;
    tag.SetTag(std::move(name), std::move(value));
    tags_.push_back(std::move(tag));
}

void StrmTags::ClearTags() noexcept {
    tags_.clear();
}

} // namespace corvina
