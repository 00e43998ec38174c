#pragma once

// The state of a device context, put back at the end of a scope however the scope ends.

#include <windows.h>

namespace corvina {

class SavedContext {
public:
    explicit SavedContext(HDC dc) noexcept : dc_(dc), saved_(::SaveDC(dc) != 0) {}
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;
    // -1 is the state saved last. Its absolute number would be recorded in a metafile, and be wrong
    // when the metafile is played into a device context that has saved states already.
    ~SavedContext() {
        if (saved_)
            ::RestoreDC(dc_, -1);
    }

private:
    HDC dc_;
    bool saved_;
};

} // namespace corvina
