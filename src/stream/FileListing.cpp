#include "stream/FileListing.h"

#include "platform/AnsiText.h"
#include "platform/ErrorBoxes.h"

namespace corvina {

bool isFileListed(const std::wstring& name, const FileApi& files) {
    const AnsiText path = toAnsi(name);
    if (path.text.empty() || path.lossy)
        return false;
    const NoErrorBoxes quiet;
    WIN32_FIND_DATAA entry{};
    const ListingHandle listing(files, files.findFirstFile(path.text.c_str(), &entry));
    if (!listing)
        return false;
    do
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            return true;
    while (files.findNextFile(listing.get(), &entry));
    return false;
}

} // namespace corvina
