#pragma once

// The tags of an MP4 file: the list that music programs write into its "moov" box.

#include "platform/FileApi.h"
#include "stream/StrmTags.h"

#include <string>

namespace corvina {

// Adds title, artist, album, year, genre, tracknumber and comment, as far as the file has them.
// Adds nothing if the file is none, or those before the damage if it is damaged.
void readMp4Tags(const std::wstring& path, StrmTags& tags, const FileApi& files = systemFileApi);

} // namespace corvina
