#pragma once

// Owners of what drawing takes from the system.

#include "platform/UniqueHandle.h"

#include <windows.h>

namespace corvina {

template <typename Object>
struct GdiObjectTraits {
    using Handle = Object;
    static constexpr Handle none = nullptr;
    static void close(Handle object) noexcept { ::DeleteObject(object); }
};

// Must not be deleted while a device context has it selected: declare the SelectedObject later.
using Brush = UniqueHandle<GdiObjectTraits<HBRUSH>>;
using Pen = UniqueHandle<GdiObjectTraits<HPEN>>;
using Bitmap = UniqueHandle<GdiObjectTraits<HBITMAP>>;
using Region = UniqueHandle<GdiObjectTraits<HRGN>>;

struct MemoryContextTraits {
    using Handle = HDC;
    static constexpr Handle none = nullptr;
    static void close(Handle dc) noexcept { ::DeleteDC(dc); }
};
using MemoryContext = UniqueHandle<MemoryContextTraits>;

struct ScreenContextTraits {
    using Handle = HDC;
    static constexpr Handle none = nullptr;
    static void close(Handle dc) noexcept { ::ReleaseDC(nullptr, dc); }
};
// ScreenContext screen(::GetDC(nullptr));
using ScreenContext = UniqueHandle<ScreenContextTraits>;

struct EnhancedMetafileTraits {
    using Handle = HENHMETAFILE;
    static constexpr Handle none = nullptr;
    static void close(Handle file) noexcept { ::DeleteEnhMetaFile(file); }
};
using EnhancedMetafile = UniqueHandle<EnhancedMetafileTraits>;

struct MetafileTraits {
    using Handle = HMETAFILE;
    static constexpr Handle none = nullptr;
    static void close(Handle file) noexcept { ::DeleteMetaFile(file); }
};
using Metafile = UniqueHandle<MetafileTraits>;

// An object selected into a device context until the end of a scope, when the one before is back.
class SelectedObject {
public:
    SelectedObject(HDC dc, HGDIOBJ object) noexcept
        : dc_(dc), former_(::SelectObject(dc, object)) {}
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;
    ~SelectedObject() {
        if (former_)
            ::SelectObject(dc_, former_);
    }

private:
    HDC dc_;
    HGDIOBJ former_;
};

} // namespace corvina
