#pragma once

// Which of TagLib's classes reads a file.

#include <memory>

namespace TagLib {
class File;
} // namespace TagLib

namespace corvina::tags {

class LimitedFile;

// By the content: a name may lie. Null if the file is of none of the kinds that are played. Of MPEG
// audio behind up to 64 KB of other bytes the stream then begins with the audio or its tag. The
// stream must outlive the result.
[[nodiscard]] std::unique_ptr<TagLib::File> openTagFile(LimitedFile& stream);

} // namespace corvina::tags
