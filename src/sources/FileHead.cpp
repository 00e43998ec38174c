#include "sources/FileHead.h"

#include <algorithm>
#include <limits>

namespace corvina {

std::size_t FilePiece::find(std::string_view text) const noexcept {
    return std::min(std::string_view(bytes_).find(text), bytes_.size());
}

std::uint32_t FilePiece::little(std::size_t at, std::size_t count) const noexcept {
    std::uint32_t value = 0;
    for (std::size_t index = count; index > 0; --index)
        value = value << 8 | byte(at + index - 1);
    return value;
}

std::uint32_t FilePiece::big(std::size_t at, std::size_t count) const noexcept {
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < count; ++index)
        value = value << 8 | byte(at + index);
    return value;
}

FilePiece FileHead::piece(std::uint64_t at, std::size_t bytes) const {
    if (at > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return FilePiece({});
    const auto position = static_cast<std::int32_t>(at);
    std::string read(bytes, '\0');
    std::int32_t got = 0;
    if (file_.isOpen() &&
        access_.setPosition(file_, position, MoveMethod::fromBeginning) == position)
        got = access_.read(file_, read.data(), static_cast<std::int32_t>(bytes));
    read.resize(static_cast<std::size_t>(std::max(got, 0)));
    return FilePiece(std::move(read));
}

} // namespace corvina
