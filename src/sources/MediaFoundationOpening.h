#pragma once

// Opens a file through Media Foundation on a thread of its own, because a damaged file may keep the
// system's reader for ever (Wine's waits for sound that never comes). After the limit the thread is
// left behind with the reader, the file and its share of the library, and keeps this module loaded
// until it ends.

#include "sources/MediaFoundationReader.h"

namespace corvina {

struct OpenedMedia {
    enum class Result { opened, unreadable, withoutSound };
    Result result = Result::unreadable;
    std::unique_ptr<MediaFoundationReader> reader = {}; // if opened
    // What was read for the start; empty in a file that ends at once.
    MediaFoundationReader::Block first = {};
};

// library: started. A file that takes longer is unreadable.
[[nodiscard]] OpenedMedia openMedia(std::shared_ptr<const MediaFoundationLibrary> library,
                                    const std::wstring& path, DWORD milliseconds);

} // namespace corvina
