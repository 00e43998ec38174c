#pragma once

// The format of an audio file in words, by what it holds: "FLAC, 24 bits", "Ogg Vorbis",
// "WAV, MS-ADPCM". Its name plays no part.

#include "platform/FileApi.h"

#include <cstdint>
#include <string>

namespace corvina {

class FileHead;

// Empty if the content is of no kind that says so itself.
[[nodiscard]] std::wstring formatOfFile(const std::wstring& path,
                                        const FileApi& files = systemFileApi);

// The kinds whose files hold plain samples, or samples of one of several codecs. Empty for others.
[[nodiscard]] std::wstring formatOfSampleFile(const FileHead& head);
// The kinds whose sound is always compressed. Empty for others.
[[nodiscard]] std::wstring formatOfCompressedFile(const FileHead& head, const std::wstring& path,
                                                  const FileApi& files);

// "kind, 16 bits"; without the number for 0 and for one that is no width of samples.
[[nodiscard]] std::wstring withBits(const wchar_t* kind, std::uint32_t bits);

} // namespace corvina
