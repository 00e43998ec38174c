#pragma once

// The attributes of an MP3 or Windows Media file as Windows' own reader would list them.

#include <cstdint>
#include <string>
#include <vector>
#include <windows.h>

#include <wmsdk.h>

namespace TagLib {
class IOStream;
}

namespace corvina::wine {

struct FileAttribute {
    std::wstring name;
    WMT_ATTR_DATATYPE type = WMT_TYPE_STRING;
    std::vector<std::uint8_t> value; // a text with its terminator
};

[[nodiscard]] FileAttribute textAttribute(const wchar_t* name, const std::wstring& text);

template <typename Number>
[[nodiscard]] FileAttribute numberAttribute(const wchar_t* name, WMT_ATTR_DATATYPE type,
                                            Number number) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&number);
    return {name, type, {bytes, bytes + sizeof number}};
}

// Whether MPEG audio begins in the file, behind its tag if it has one.
[[nodiscard]] bool isMpegAudio(const std::wstring& path);
[[nodiscard]] bool isMpegAudio(TagLib::IOStream& stream);

// The tags, as far as the file has them, and the bitrate of MPEG audio; empty for a file that is
// neither kind.
[[nodiscard]] std::vector<FileAttribute> readFileAttributes(const std::wstring& path);
[[nodiscard]] std::vector<FileAttribute> readFileAttributes(TagLib::IOStream& stream);

} // namespace corvina::wine
