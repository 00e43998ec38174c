#pragma once

// The file functions of kernel32 that the library calls. A user keeps the table by reference: it
// must outlive the user.

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
};

inline const FileApi systemFileApi;

} // namespace corvina
