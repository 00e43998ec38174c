#pragma once

// The system's Media Foundation, loaded and started when the first file is opened and stopped with
// the last user: Windows without it (an N edition, or one older than 7) opens nothing.

#include "com/ComPtr.h"
#include "platform/LibraryApi.h"

#include <string>
#include <windows.h>

#include <mfapi.h>
#include <mfidl.h>
#include <mfreadwrite.h>

namespace corvina {

class MediaFoundationLibrary {
public:
    explicit MediaFoundationLibrary(const LibraryApi& api) noexcept : api_(api) {}
    MediaFoundationLibrary(const MediaFoundationLibrary&) = delete;
    MediaFoundationLibrary& operator=(const MediaFoundationLibrary&) = delete;
    ~MediaFoundationLibrary();

    // Whether the libraries are there. Loads and starts them.
    [[nodiscard]] bool start();

    // A reader of a local file; empty if the system cannot read it. After a successful start().
    [[nodiscard]] ComPtr<IMFSourceReader> openFile(const std::wstring& path) const;

    // An empty description of a format; may be empty itself.
    [[nodiscard]] ComPtr<IMFMediaType> makeType() const;

private:
    template <typename Function>
    [[nodiscard]] bool find(HMODULE library, const char* name, Function& function) const;
    void unload() noexcept;

    const LibraryApi& api_;
    HMODULE platform_ = nullptr;
    HMODULE readers_ = nullptr;
    bool started_ = false;
    decltype(&::MFStartup) startup_ = nullptr;
    decltype(&::MFShutdown) shutdown_ = nullptr;
    decltype(&::MFCreateMediaType) createType_ = nullptr;
    decltype(&::MFCreateFile) createFile_ = nullptr;
    decltype(&::MFCreateSourceReaderFromByteStream) createReader_ = nullptr;
};

} // namespace corvina
