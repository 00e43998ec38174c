#pragma once

// A look at a stream of AAC frames (ADTS) before the system's decoder gets it. Wine's waits for
// ever, now and then, for the sound of a stream that ends within what its first frame says to be
// its length.

#include "platform/FileApi.h"

#include <string>

namespace corvina {

// False for a stream whose first frame, behind an ID3v2 tag if there is one, ends behind the end of
// the file. Any other kind of file is left to the decoder.
[[nodiscard]] bool firstFrameIsWhole(const std::wstring& path,
                                     const FileApi& files = systemFileApi);

} // namespace corvina
