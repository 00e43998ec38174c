#include "stream/FileAccess.h"

#include "stream/FileName.h"

namespace corvina {

FileRecord FileAccess::open(const std::wstring& path, DWORD desiredAccess, DWORD shareMode,
                            DWORD creationDisposition) const {
    const FileName name = fileName(path);
    FileHandle handle;
    if (name.fitsAnsi)
        handle = FileHandle(files_, files_.createFile(name.ansi.c_str(), desiredAccess, shareMode,
                                                      nullptr, creationDisposition, 0, nullptr));
    else if (!name.impossible)
        handle =
            FileHandle(files_, files_.createFileWide(name.wide.c_str(), desiredAccess, shareMode,
                                                     nullptr, creationDisposition, 0, nullptr));
    return {.handle = std::move(handle), .path = path};
}

FileRecord FileAccess::openForReading(const std::wstring& path) const {
    return open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
}

std::int32_t FileAccess::read(const FileRecord& file, void* destination,
                              std::int32_t bytes) const noexcept {
    if (!file.isOpen())
        return 0;
    if (bytes < 0)
        return -1;
    DWORD got = 0;
    const BOOL result =
        files_.readFile(file.handle.get(), destination, static_cast<DWORD>(bytes), &got, nullptr);
    return result == TRUE ? static_cast<std::int32_t>(got) : -1;
}

std::int32_t FileAccess::setPosition(const FileRecord& file, std::int32_t distance,
                                     MoveMethod method) const noexcept {
    return static_cast<std::int32_t>(
        files_.setFilePointer(file.handle.get(), distance, nullptr, static_cast<DWORD>(method)));
}

std::int32_t FileAccess::position(const FileRecord& file) const noexcept {
    return setPosition(file, 0, MoveMethod::fromCurrent);
}

bool FileAccess::exists(const std::wstring& path) const {
    return openForReading(path).isOpen();
}

} // namespace corvina
