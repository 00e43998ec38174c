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
    const HANDLE listing = files.findFirstFile(path.text.c_str(), &entry);
    if (listing == INVALID_HANDLE_VALUE)
        return false;
    bool isFile = false;
    do
        isFile = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    while (!isFile && files.findNextFile(listing, &entry));
    files.findClose(listing);
    return isFile;
}

} // namespace corvina
