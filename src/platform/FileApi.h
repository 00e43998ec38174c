#pragma once

// The file functions of kernel32 that the library calls. A user keeps the table by reference: it
// must outlive the user.

#include "platform/ApiHandle.h"

#include <windows.h>

namespace corvina {

struct FileApi {
    decltype(&::CreateFileA) createFile = &::CreateFileA;
    decltype(&::CloseHandle) closeHandle = &::CloseHandle;
    decltype(&::ReadFile) readFile = &::ReadFile;
    decltype(&::SetFilePointer) setFilePointer = &::SetFilePointer;
    decltype(&::FindFirstFileA) findFirstFile = &::FindFirstFileA;
    decltype(&::FindNextFileA) findNextFile = &::FindNextFileA;
    decltype(&::FindClose) findClose = &::FindClose;
    // For names that the functions above cannot take.
    decltype(&::CreateFileW) createFileWide = &::CreateFileW;
    decltype(&::FindFirstFileW) findFirstFileWide = &::FindFirstFileW;
    decltype(&::FindNextFileW) findNextFileWide = &::FindNextFileW;
};

inline const FileApi systemFileApi;

struct FileHandleTraits {
    using Api = FileApi;
    using Handle = HANDLE;
    static Handle none() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(const Api& api, Handle file) noexcept { api.closeHandle(file); }
};
using FileHandle = ApiHandle<FileHandleTraits>;

struct ListingHandleTraits {
    using Api = FileApi;
    using Handle = HANDLE;
    static Handle none() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(const Api& api, Handle listing) noexcept { api.findClose(listing); }
};
using ListingHandle = ApiHandle<ListingHandleTraits>;

} // namespace corvina
