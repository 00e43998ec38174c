#pragma once

// The cover among the pictures of a file.

#include <tbytevector.h>

namespace TagLib {
class File;
}

namespace corvina::tags {

// The front cover, otherwise the first picture; empty without one, or if it is too large.
[[nodiscard]] TagLib::ByteVector coverOf(TagLib::File& file);

} // namespace corvina::tags
