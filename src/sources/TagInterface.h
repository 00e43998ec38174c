#pragma once

// What CorvinaTags.dll and its user share: the tags and the cover of an audio file as plain data.
//
// CorvinaReadTags returns null if the file cannot be opened, is of no known kind or there is no
// memory. Nothing is thrown. The result belongs to the library; CorvinaFreeTags frees it and takes
// null too.

#include <cstddef>

namespace corvina {

// Both texts end with a character of code 0.
struct TagOfFile {
    const wchar_t* name; // in capital letters
    const wchar_t* text;
};

struct TagsOfFile {
    const TagOfFile* tags; // ordered by name, each name once
    std::size_t tagCount;
    const void* picture; // the content of a picture file; null without one
    std::size_t pictureBytes;
};

using ReadTagsFunction = const TagsOfFile*(__cdecl*)(const wchar_t* path);
using FreeTagsFunction = void(__cdecl*)(const TagsOfFile* tags);

inline constexpr wchar_t tagLibraryName[] = L"CorvinaTags.dll";
inline constexpr char readTagsName[] = "CorvinaReadTags";
inline constexpr char freeTagsName[] = "CorvinaFreeTags";

// A larger picture counts as none.
inline constexpr std::size_t largestPictureBytes = std::size_t{16} << 20;

} // namespace corvina
