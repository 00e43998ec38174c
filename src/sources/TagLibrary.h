#pragma once

// The tags and the cover of an audio file, read by CorvinaTags.dll. Without the library, and for a
// file that it cannot read, there are none.

#include "platform/LibraryApi.h"
#include "sources/TagInterface.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corvina {

struct FileTag {
    std::wstring name; // in capital letters
    std::wstring text;
};

struct FileTags {
    std::vector<FileTag> tags;
    std::vector<std::uint8_t> picture; // the content of a picture file
};

class TagLibrary {
public:
    // libraries must outlive the object.
    explicit TagLibrary(const LibraryApi& libraries) noexcept : libraries_(libraries) {}

    // The library is loaded for the first file and stays loaded; a missing one is looked for again
    // with each file.
    [[nodiscard]] FileTags read(const std::wstring& path);

private:
    [[nodiscard]] bool load();

    const LibraryApi& libraries_;
    LibraryHandle library_;
    ReadTagsFunction read_ = nullptr;
    FreeTagsFunction free_ = nullptr;
};

} // namespace corvina
