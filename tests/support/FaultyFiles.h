#pragma once

// The real file and mmio functions, counted and failing on command. One set for a test program.

#include "platform/FileApi.h"
#include "platform/MmioApi.h"
#include "support/Faults.h"

namespace corvina::test {

inline Faults fileFaults;
// Handles of files, listings and mmio that are open.
inline int openFiles = 0;

namespace faulty {

inline HANDLE WINAPI createFile(LPCSTR name, DWORD access, DWORD share,
                                LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                                HANDLE pattern) {
    if (fileFaults.strikes("CreateFile"))
        return INVALID_HANDLE_VALUE;
    const HANDLE handle = ::CreateFileA(name, access, share, security, disposition, flags, pattern);
    openFiles += handle != INVALID_HANDLE_VALUE;
    return handle;
}

inline HANDLE WINAPI createFileWide(LPCWSTR name, DWORD access, DWORD share,
                                    LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                                    HANDLE pattern) {
    if (fileFaults.strikes("CreateFileWide"))
        return INVALID_HANDLE_VALUE;
    const HANDLE handle = ::CreateFileW(name, access, share, security, disposition, flags, pattern);
    openFiles += handle != INVALID_HANDLE_VALUE;
    return handle;
}

// A close that reports a failure has closed all the same.
inline BOOL WINAPI closeHandle(HANDLE handle) {
    const bool fails = fileFaults.strikes("CloseHandle");
    openFiles -= ::CloseHandle(handle) != 0;
    return !fails;
}

inline BOOL WINAPI readFile(HANDLE handle, LPVOID to, DWORD bytes, LPDWORD got,
                            LPOVERLAPPED state) {
    if (!fileFaults.strikes("ReadFile"))
        return ::ReadFile(handle, to, bytes, got, state);
    *got = 0;
    return FALSE;
}

inline DWORD WINAPI setFilePointer(HANDLE handle, LONG distance, PLONG high, DWORD method) {
    return fileFaults.strikes("SetFilePointer") ? INVALID_SET_FILE_POINTER
                                                : ::SetFilePointer(handle, distance, high, method);
}

inline HANDLE WINAPI findFirstFile(LPCSTR name, LPWIN32_FIND_DATAA entry) {
    if (fileFaults.strikes("FindFirstFile"))
        return INVALID_HANDLE_VALUE;
    const HANDLE listing = ::FindFirstFileA(name, entry);
    openFiles += listing != INVALID_HANDLE_VALUE;
    return listing;
}

inline BOOL WINAPI findNextFile(HANDLE listing, LPWIN32_FIND_DATAA entry) {
    return !fileFaults.strikes("FindNextFile") && ::FindNextFileA(listing, entry);
}

inline HANDLE WINAPI findFirstFileWide(LPCWSTR name, LPWIN32_FIND_DATAW entry) {
    if (fileFaults.strikes("FindFirstFileWide"))
        return INVALID_HANDLE_VALUE;
    const HANDLE listing = ::FindFirstFileW(name, entry);
    openFiles += listing != INVALID_HANDLE_VALUE;
    return listing;
}

inline BOOL WINAPI findNextFileWide(HANDLE listing, LPWIN32_FIND_DATAW entry) {
    return !fileFaults.strikes("FindNextFileWide") && ::FindNextFileW(listing, entry);
}

inline BOOL WINAPI findClose(HANDLE listing) {
    const bool fails = fileFaults.strikes("FindClose");
    openFiles -= ::FindClose(listing) != 0;
    return !fails;
}

inline HMMIO WINAPI mmioOpen(LPSTR name, LPMMIOINFO info, DWORD flags) {
    if (fileFaults.strikes("mmioOpen"))
        return nullptr;
    const HMMIO handle = ::mmioOpenA(name, info, flags);
    openFiles += handle != nullptr;
    return handle;
}

inline FOURCC WINAPI mmioStringToFourcc(LPCSTR text, UINT flags) {
    return fileFaults.strikes("mmioStringToFOURCC") ? 0 : ::mmioStringToFOURCCA(text, flags);
}

inline MMRESULT WINAPI mmioDescend(HMMIO handle, LPMMCKINFO chunk, const MMCKINFO* parent,
                                   UINT flags) {
    return fileFaults.strikes("mmioDescend") ? MMRESULT{MMIOERR_CHUNKNOTFOUND}
                                             : ::mmioDescend(handle, chunk, parent, flags);
}

inline LONG WINAPI mmioRead(HMMIO handle, HPSTR to, LONG bytes) {
    return fileFaults.strikes("mmioRead") ? -1 : ::mmioRead(handle, to, bytes);
}

inline LONG WINAPI mmioSeek(HMMIO handle, LONG distance, int method) {
    return fileFaults.strikes("mmioSeek") ? -1 : ::mmioSeek(handle, distance, method);
}

inline MMRESULT WINAPI mmioClose(HMMIO handle, UINT flags) {
    const bool fails = fileFaults.strikes("mmioClose");
    openFiles -= ::mmioClose(handle, flags) == 0;
    return fails ? MMIOERR_CANNOTWRITE : 0;
}

} // namespace faulty

inline const FileApi faultyFileApi{.createFile = faulty::createFile,
                                   .closeHandle = faulty::closeHandle,
                                   .readFile = faulty::readFile,
                                   .setFilePointer = faulty::setFilePointer,
                                   .findFirstFile = faulty::findFirstFile,
                                   .findNextFile = faulty::findNextFile,
                                   .findClose = faulty::findClose,
                                   .createFileWide = faulty::createFileWide,
                                   .findFirstFileWide = faulty::findFirstFileWide,
                                   .findNextFileWide = faulty::findNextFileWide};

inline const MmioApi faultyMmioApi{faulty::mmioOpen,    faulty::mmioStringToFourcc,
                                   faulty::mmioDescend, faulty::mmioRead,
                                   faulty::mmioSeek,    faulty::mmioClose};

} // namespace corvina::test
