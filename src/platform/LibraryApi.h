#pragma once

// The functions with which libraries are loaded by name and called. A user keeps the table by
// reference: it must outlive the user.

#include <windows.h>

namespace corvina {

struct LibraryApi {
    decltype(&::LoadLibraryA) loadLibrary = &::LoadLibraryA;
    decltype(&::LoadLibraryExW) loadLibraryFile = &::LoadLibraryExW;
    decltype(&::GetProcAddress) getProcAddress = &::GetProcAddress;
    decltype(&::FreeLibrary) freeLibrary = &::FreeLibrary;
    decltype(&::CallWindowProcA) callWindowProc = &::CallWindowProcA;
};

inline const LibraryApi systemLibraryApi;

} // namespace corvina
