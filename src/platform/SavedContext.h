#pragma once

// The state of a device context, put back at the end of a scope however the scope ends.

#include <windows.h>

namespace corvina {

class SavedContext {
public:
    explicit SavedContext(HDC dc) noexcept : dc_(dc), saved_(::SaveDC(dc) != 0) {}
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;
    // The state saved last, by its place from the top: a metafile keeps the number as it is given,
    // and whoever plays it may have saved states before.
    ~SavedContext() {
        if (saved_)
            ::RestoreDC(dc_, -1);
    }

private:
    HDC dc_;
    bool saved_;
};

} // namespace corvina
