#pragma once

// Owners of what the program takes from the system; each gives its handle back when it goes.

#include <memory>
#include <type_traits>
#include <windows.h>

namespace corvina::app {

template <typename Handle, typename Closer>
using Owner = std::unique_ptr<std::remove_pointer_t<Handle>, Closer>;

struct GdiObjectCloser {
    void operator()(HGDIOBJ object) const noexcept { DeleteObject(object); }
};
using Font = Owner<HFONT, GdiObjectCloser>;
using Bitmap = Owner<HBITMAP, GdiObjectCloser>;

struct MemoryContextCloser {
    void operator()(HDC dc) const noexcept { DeleteDC(dc); }
};
using MemoryContext = Owner<HDC, MemoryContextCloser>;

struct ScreenContextCloser {
    void operator()(HDC dc) const noexcept { ReleaseDC(nullptr, dc); }
};
// Of GetDC(nullptr).
using ScreenContext = Owner<HDC, ScreenContextCloser>;

struct KeyCloser {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using RegistryKey = Owner<HKEY, KeyCloser>;

struct LibraryCloser {
    void operator()(HMODULE library) const noexcept { FreeLibrary(library); }
};
using Library = Owner<HMODULE, LibraryCloser>;

struct SearchCloser {
    void operator()(HANDLE search) const noexcept { FindClose(search); }
};
// Of FindFirstFile, which returns INVALID_HANDLE_VALUE and not null if nothing is found.
using FileSearch = Owner<HANDLE, SearchCloser>;

} // namespace corvina::app
