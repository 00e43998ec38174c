#include "stream/FileListing.h"

#include "platform/ErrorBoxes.h"
#include "stream/FileName.h"

namespace corvina {
namespace {

// Whether one of the entries from the given one on is a file. next reads the one behind it.
template <typename Entry, typename Next>
bool holdsFile(const ListingHandle& listing, Entry& entry, Next next) {
    if (!listing)
        return false;
    do
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            return true;
    while (next(listing.get(), &entry));
    return false;
}

} // namespace

bool isFileListed(const std::wstring& path, const FileApi& files) {
    const FileName name = fileName(path);
    if (name.impossible)
        return false;
    const NoErrorBoxes quiet;
    if (name.fitsAnsi) {
        WIN32_FIND_DATAA entry{};
        const ListingHandle listing(files, files.findFirstFile(name.ansi.c_str(), &entry));
        return holdsFile(listing, entry, files.findNextFile);
    }
    WIN32_FIND_DATAW entry{};
    const ListingHandle listing(files, files.findFirstFileWide(name.wide.c_str(), &entry));
    return holdsFile(listing, entry, files.findNextFileWide);
}

} // namespace corvina
