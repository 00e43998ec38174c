#include "sources/FormatOfFile.h"

#include "sources/FileHead.h"

namespace corvina {
namespace {

constexpr std::uint32_t mostBits = 64; // no sample has more, whatever a damaged header says

} // namespace

std::wstring withBits(const wchar_t* kind, std::uint32_t bits) {
    std::wstring words = kind;
    if (bits != 0 && bits <= mostBits)
        words += L", " + std::to_wstring(bits) + L" bits";
    return words;
}

std::wstring formatOfFile(const std::wstring& path, const FileApi& files) {
    const FileAccess access(files);
    const FileHead head(access, path);
    std::wstring words = formatOfSampleFile(head);
    return words.empty() ? formatOfCompressedFile(head, path, files) : words;
}

} // namespace corvina
