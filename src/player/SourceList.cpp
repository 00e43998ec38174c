#include "player/SourceList.h"

#include "runtime/Text.h"

#include <utility>

namespace corvina {

std::wstring fileExtension(const std::wstring& file) {
    const std::size_t dot = file.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : file.substr(dot + 1);
}

void SourceList::add(std::unique_ptr<cSoundSTRM> source) {
    sources_.push_back(std::move(source));
}

cSoundSTRM* SourceList::findForFile(const std::wstring& file) const {
    const std::wstring wanted = fileExtension(file);
    for (const auto& source : sources_)
        if (containsIgnoringCase(join(source->Extensions(), L";"), wanted))
            return source.get();
    return nullptr;
}

std::vector<std::wstring> SourceList::allExtensions() const {
    std::wstring all;
    for (const auto& source : sources_)
        for (const std::wstring& extension : source->Extensions())
            if (!containsIgnoringCase(all, extension))
                all += extension + L";";
    if (!all.empty())
        all.pop_back();
    return split(all, L';');
}

} // namespace corvina
