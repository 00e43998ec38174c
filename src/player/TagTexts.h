#pragma once

// The tag texts of the player, and how they are filled from a file's tags.

#include <string>

namespace corvina {

class StrmTags;

struct TagTexts {
    std::wstring title;
    std::wstring album;
    std::wstring artist;
    std::wstring songYear;
    std::wstring genre;
    std::wstring comment;
    std::wstring trackNumber;
};

// Clears the texts and fills them from the tags. The last three characters of the file name decide
// under which names the tags are looked up; for an unknown ending every text stays empty. Of
// several tags with one name the last wins. tags may be null.
void fillTagTexts(TagTexts& texts, const std::wstring& fileName, const StrmTags* tags);

} // namespace corvina
