#include "player/FormatName.h"

#include "player/SourceList.h"
#include "runtime/Text.h"
#include "sources/FormatOfFile.h"

namespace corvina {
namespace {

struct KnownExtension {
    const wchar_t* extension;
    const wchar_t* name;
};

// What these hold is settled by the extension.
constexpr KnownExtension withoutContent[] = {
    {L"cda", L"Audio CD track"},
    {L"vox", L"Dialogic ADPCM"},
};

// For files whose content says nothing.
constexpr KnownExtension others[] = {
    {L"ape", L"Monkey's Audio"},
    {L"ogg", L"Ogg"},
    {L"oga", L"Ogg"},
    {L"mp3", L"MP3"},
    {L"wma", L"Windows Media"},
    {L"wmv", L"Windows Media"},
    {L"wave", L"WAV"},
    {L"bwf", L"WAV"},
    {L"snd", L"AU"},
    {L"aif", L"AIFF"},
    {L"aifc", L"AIFF-C"},
    {L"w64", L"Wave64"},
};

template <std::size_t count>
const wchar_t* find(const KnownExtension (&list)[count], const std::wstring& extension) {
    for (const KnownExtension& known : list)
        if (extension == known.extension)
            return known.name;
    return nullptr;
}

} // namespace

std::wstring formatName(const std::wstring& file, const FileApi& files) {
    const std::wstring extension = lowerCase(fileExtension(file));
    if (const wchar_t* const name = find(withoutContent, extension))
        return name;
    std::wstring words = formatOfFile(file, files);
    if (!words.empty())
        return words;
    const wchar_t* const name = find(others, extension);
    return name ? name : upperCase(extension);
}

} // namespace corvina
