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
    void add(std::unique_ptr<cSoundSTRM> source);
    [[nodiscard]] std::size_t count() const noexcept { return sources_.size(); }

    // The first source in whose extensions, joined with ";", the file's extension occurs, without
    // regard to case; null if there is none. A part of an extension is enough, and an empty one
    // belongs to the first source. Both are on purpose: hosts rely on them.
    [[nodiscard]] cSoundSTRM* findForFile(const std::wstring& file) const;

    // Every extension in order, without those that occur, whole or as a part, among the ones
    // before.
    [[nodiscard]] std::vector<std::wstring> allExtensions() const;

private:
    std::vector<std::unique_ptr<cSoundSTRM>> sources_;
};

} // namespace corvina
