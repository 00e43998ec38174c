#include "player/SourceList.h"

#include "runtime/Text.h"

#include <algorithm>
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

cSoundSTRM* SourceList::findNextForFile(const std::wstring& file, const cSoundSTRM* refused) const {
    const std::wstring extension = lowerCase(fileExtension(file));
    const auto isRefused = [=](const auto& source) { return source.get() == refused; };
    const auto reads = [&](const auto& source) {
        const std::vector<std::wstring> extensions = source->Extensions();
        return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    };
    auto next = std::find_if(sources_.begin(), sources_.end(), isRefused);
    if (next != sources_.end())
        next = std::find_if(next + 1, sources_.end(), reads);
    return next == sources_.end() ? nullptr : next->get();
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
