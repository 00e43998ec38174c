#pragma once

// The audio sources in the order in which they are tried for a file.

#include "stream/cSoundSTRM.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace corvina {

// The text after the last "."; empty for a name without one.
[[nodiscard]] std::wstring fileExtension(const std::wstring& file);

class SourceList {
public:
    // A source is shared with the playback that uses it.
    using Source = std::shared_ptr<cSoundSTRM>;

    void add(Source source);
    // Puts a source of the same class in the place of one that is in use.
    void replace(const Source& used, Source fresh);
    // Where the source is in the list; count() if it is not.
    [[nodiscard]] std::size_t indexOf(const Source& source) const noexcept;
    [[nodiscard]] std::size_t count() const noexcept { return sources_.size(); }

    // The first source in whose extensions, joined with ";", the file's extension occurs, without
    // regard to case; null if there is none. A part of an extension is enough, and an empty one
    // belongs to the first source. Both are on purpose: hosts rely on them.
    [[nodiscard]] Source findForFile(const std::wstring& file) const;

    // The next source behind this one in whose list the file's whole extension is, without regard
    // to case; null if there is none. It may read what the sources before it refuse.
    [[nodiscard]] Source findNextForFile(const std::wstring& file, const Source& refused) const;

    // Every extension in order, without those that occur, whole or as a part, among the ones
    // before.
    [[nodiscard]] std::vector<std::wstring> allExtensions() const;

private:
    std::vector<Source> sources_;
};

} // namespace corvina
