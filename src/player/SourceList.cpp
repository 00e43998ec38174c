#include "player/SourceList.h"

#include "runtime/Text.h"

#include <algorithm>
#include <utility>

namespace corvina {

std::wstring fileExtension(const std::wstring& file) {
    const std::size_t dot = file.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : file.substr(dot + 1);
}

void SourceList::add(Source source) {
    sources_.push_back(std::move(source));
}

std::size_t SourceList::indexOf(const Source& source) const noexcept {
    return static_cast<std::size_t>(std::find(sources_.begin(), sources_.end(), source) -
                                    sources_.begin());
}

void SourceList::replace(const Source& used, Source fresh) {
    std::replace(sources_.begin(), sources_.end(), used, fresh);
}

SourceList::Source SourceList::findForFile(const std::wstring& file) const {
    const std::wstring wanted = fileExtension(file);
    for (const auto& source : sources_)
        if (containsIgnoringCase(join(source->Extensions(), L";"), wanted))
            return source;
    return nullptr;
}

SourceList::Source SourceList::findNextForFile(const std::wstring& file,
                                               const Source& refused) const {
    const std::wstring extension = lowerCase(fileExtension(file));
    const auto reads = [&](const Source& source) {
        const std::vector<std::wstring> extensions = source->Extensions();
        return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    };
    auto next = std::find(sources_.begin(), sources_.end(), refused);
    if (next != sources_.end())
        next = std::find_if(next + 1, sources_.end(), reads);
    return next == sources_.end() ? nullptr : *next;
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
