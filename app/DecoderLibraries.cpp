#include "DecoderLibraries.h"

#include "ErrorWords.h"
#include "Owners.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <initializer_list>
#include <windows.h>

namespace corvina::app {

namespace {

constexpr long couldNotOpen = 3; // a result of PlayStart and OpenAudioFile

struct Kind {
    std::initializer_list<const wchar_t*> extensions;
    std::initializer_list<const wchar_t*> libraries; // each may need those before it
    const wchar_t* other = nullptr;                  // reads these files in their place
};

constexpr const wchar_t* sndfile = L"libsndfile.dll";

const std::array<Kind, 5> kinds{{
    {{L"ogg"}, {L"ogg.dll", L"vorbis.dll", L"vorbisfile.dll"}, sndfile},
    {{L"ape"}, {L"MACDll.dll"}},
    {{L"au", L"snd", L"aif", L"aiff", L"aifc", L"voc", L"vox", L"flac", L"oga", L"opus", L"w64",
      L"caf"},
     {sndfile}},
    {{L"mp3", L"mp2"}, {L"wmvcore.dll"}, sndfile},
    {{L"wma", L"wmv", L"asf"}, {L"wmvcore.dll"}},
}};

std::wstring extensionOf(const std::wstring& file) {
    const std::size_t dot = file.find_last_of(L'.');
    std::wstring extension = dot == std::wstring::npos ? L"" : file.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](wchar_t letter) { return static_cast<wchar_t>(std::towlower(letter)); });
    return extension;
}

std::wstring folderOfControl() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(GetModuleHandleW(L"Corvina.ocx"), path.data(), MAX_PATH));
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

bool loads(const std::wstring& name) {
    // Not in the current folder, where the control does not look either.
    return Library(LoadLibraryExW((folderOfControl() + name).c_str(), nullptr,
                                  LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR |
                                      LOAD_LIBRARY_SEARCH_DEFAULT_DIRS)) ||
           Library(LoadLibraryExW(name.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS));
}

} // namespace

std::wstring missingLibraryWords(long result, const std::wstring& file) {
    if (result != couldNotOpen && result != comFailure)
        return {};
    const std::wstring extension = extensionOf(file);
    const auto kind = std::ranges::find_if(kinds, [&](const Kind& each) {
        return std::ranges::find(each.extensions, extension) != each.extensions.end();
    });
    if (kind == kinds.end() || (kind->other && loads(kind->other)))
        return {};
    for (const wchar_t* library : kind->libraries)
        if (!loads(library))
            return std::wstring(library) + L" is missing or damaged; without it no " + extension +
                   L" file can be played.";
    return {};
}

} // namespace corvina::app
