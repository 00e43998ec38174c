#pragma once

// The functions with which libraries are loaded by name and called. A user keeps the table by
// reference: it must outlive the user.

#include "platform/ApiHandle.h"

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

struct LibraryHandleTraits {
    using Api = LibraryApi;
    using Handle = HMODULE;
    static Handle none() noexcept { return nullptr; }
    static void close(const Api& api, Handle library) noexcept { api.freeLibrary(library); }
};
using LibraryHandle = ApiHandle<LibraryHandleTraits>;

} // namespace corvina
