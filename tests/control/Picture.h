#pragma once

// What somebody drew, in a bitmap that is white at first.

#include "platform/GdiHandles.h"

#include <memory>

namespace corvina::test {

class Picture {
public:
    explicit Picture(SIZE size) : size_(size) {
        const RECT all{0, 0, size.cx, size.cy};
        ::FillRect(dc(), &all, static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH)));
    }
    [[nodiscard]] HDC dc() const { return dc_.get(); }
    [[nodiscard]] COLORREF at(int x, int y) const { return ::GetPixel(dc(), x, y); }
    [[nodiscard]] int count(COLORREF color) const {
        int found = 0;
        for (int y = 0; y < size_.cy; ++y)
            for (int x = 0; x < size_.cx; ++x)
                found += at(x, y) == color;
        return found;
    }
    [[nodiscard]] int differences(const Picture& other) const {
        int found = 0;
        for (int y = 0; y < size_.cy; ++y)
            for (int x = 0; x < size_.cx; ++x)
                found += at(x, y) != other.at(x, y);
        return found;
    }

private:
    static HBITMAP bitmapOf(SIZE size) noexcept {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = size.cx;
        info.bmiHeader.biHeight = -size.cy; // the top line first
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        void* bits = nullptr;
        return ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    }

    SIZE size_;
    MemoryContext dc_{::CreateCompatibleDC(nullptr)};
    Bitmap bitmap_{bitmapOf(size_)};
    std::unique_ptr<SelectedObject> selected_ =
        std::make_unique<SelectedObject>(dc_.get(), bitmap_.get());
};

} // namespace corvina::test
