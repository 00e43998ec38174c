#include "InputFile.h"

#include "MpegStart.h"

#include <new>
#include <nserror.h>
#include <optional>
#include <utility>

namespace corvina::wine {
namespace {

HRESULT lastError() {
    return HRESULT_FROM_WIN32(::GetLastError());
}

class Locked {
public:
    explicit Locked(SRWLOCK& lock) : lock_(lock) { ::AcquireSRWLockExclusive(&lock_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ::ReleaseSRWLockExclusive(&lock_); }

private:
    SRWLOCK& lock_;
};

} // namespace

HRESULT InputFile::open(const WCHAR* fileName, InputFile** stream) {
    FileHandle file(::CreateFileW(fileName, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file)
        return lastError();
    AsfFile asf;
    if (!asf.read(file.get()))
        return NS_E_INVALID_INPUT_FORMAT;
    *stream = new (std::nothrow) InputFile(std::move(file), asf);
    return *stream ? S_OK : E_OUTOFMEMORY;
}

InputFile::InputFile(FileHandle file, const AsfFile& asf) noexcept
    : file_(std::move(file)), asf_(asf) {
    if (asf_.isAsf())
        return;
    if (const std::optional<MpegStart> found = findMpegStart(file_.get())) {
        mpegAudio_ = true;
        firstFrame_ = found->firstFrame;
        start_ = found->usual ? 0 : firstFrame_;
    }
}

std::uint64_t InputFile::lengthOfFrames() const {
    return mpegAudio_ && file_ ? lengthOfMpegFrames(file_.get(), firstFrame_) : 0;
}

void InputFile::closeFile() {
    if (!::TryAcquireSRWLockExclusive(&lock_))
        return;
    file_.reset();
    ::ReleaseSRWLockExclusive(&lock_);
}

std::uint64_t InputFile::size() const {
    const std::uint64_t whole = sizeOf(file_.get());
    return whole > start_ ? whole - start_ : 0;
}

HRESULT InputFile::QueryInterface(REFIID iid, void** result) {
    if (!result)
        return E_POINTER;
    const bool known =
        iid == __uuidof(IUnknown) || iid == __uuidof(ISequentialStream) || iid == __uuidof(IStream);
    *result = known ? static_cast<IStream*>(this) : nullptr;
    if (!known)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG InputFile::Release() {
    const ULONG left = --references_;
    if (left == 0)
        delete this;
    return left;
}

HRESULT InputFile::Read(void* buffer, ULONG bytes, ULONG* got) {
    const Locked locked(lock_);
    if (!file_)
        return STG_E_REVERTED;
    const DWORD count = readAt(file_.get(), start_ + position_, buffer, bytes);
    if (got)
        *got = count;
    asf_.correct(position_, static_cast<std::uint8_t*>(buffer), count);
    position_ += count;
    return bytes > 0 && count == 0 ? HRESULT_FROM_WIN32(ERROR_HANDLE_EOF) : S_OK;
}

HRESULT InputFile::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* at) {
    const Locked locked(lock_);
    std::uint64_t from = 0;
    if (origin == STREAM_SEEK_CUR)
        from = position_;
    else if (origin == STREAM_SEEK_END)
        from = size();
    else if (origin != STREAM_SEEK_SET)
        return STG_E_INVALIDFUNCTION;
    const std::uint64_t target = from + static_cast<std::uint64_t>(move.QuadPart);
    if (!file_ || static_cast<std::int64_t>(target) < 0)
        return STG_E_INVALIDFUNCTION;
    position_ = target;
    if (at)
        at->QuadPart = position_;
    return S_OK;
}

HRESULT InputFile::Stat(STATSTG* status, DWORD) {
    if (!status)
        return E_POINTER;
    *status = {};
    status->type = STGTY_STREAM;
    const Locked locked(lock_);
    if (!file_)
        return STG_E_REVERTED;
    status->cbSize.QuadPart = size();
    return S_OK;
}

} // namespace corvina::wine
