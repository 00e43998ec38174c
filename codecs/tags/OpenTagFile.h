#pragma once

// Which of TagLib's classes reads a file.

#include <memory>

namespace TagLib {
class File;
class IOStream;
} // namespace TagLib

namespace corvina::tags {

// By the content: a name may lie. Null if the file is of none of the kinds that are played. The
// stream must outlive the result.
[[nodiscard]] std::unique_ptr<TagLib::File> openTagFile(TagLib::IOStream& stream);

} // namespace corvina::tags
