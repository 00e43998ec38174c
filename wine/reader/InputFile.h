#pragma once

// A file as the stream that Wine's reader reads. At the end of the file a read fails: Wine's reader
// would repeat one that succeeds with nothing for ever. False sizes in a damaged ASF file are
// corrected on the way. MPEG audio that GStreamer would not find behind what is in front of it
// begins the stream.

#include "AsfFile.h"
#include "FileHandle.h"

#include <atomic>
#include <objidl.h>
#include <windows.h>

namespace corvina::wine {

class InputFile final : public IStream {
public:
    // On success the caller owns one reference.
    [[nodiscard]] static HRESULT open(const WCHAR* fileName, InputFile** stream);

    [[nodiscard]] const AsfFile& asf() const { return asf_; }
    [[nodiscard]] bool isMpegAudio() const { return mpegAudio_; }
    // Of MPEG audio, by its frames; in units of 100 nanoseconds.
    [[nodiscard]] std::uint64_t lengthOfFrames() const;

    // Takes the file from a reader that hangs. It is closed, unless a read is under way, and from
    // now on every call fails.
    void closeFile();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG bytes, ULONG* got) override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* at) override;
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* status, DWORD) override;

    // Nothing is written, locked or copied.
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    InputFile(FileHandle file, const AsfFile& asf) noexcept;
    ~InputFile() = default;

    [[nodiscard]] std::uint64_t size() const;

    SRWLOCK lock_ = SRWLOCK_INIT; // the reader reads on a thread of its own
    FileHandle file_;
    std::uint64_t position_ = 0; // in the stream
    std::uint64_t start_ = 0;    // of the stream in the file
    AsfFile asf_;
    bool mpegAudio_ = false;
    std::uint64_t firstFrame_ = 0; // of MPEG audio, in the file
    std::atomic<ULONG> references_{1};
};

} // namespace corvina::wine
