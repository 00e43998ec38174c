#include "InputFile.h"

#include <new>
#include <nserror.h>

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
    const HANDLE file = ::CreateFileW(fileName, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return lastError();
    AsfFile asf;
    const bool usable = asf.read(file);
    ::SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    *stream = usable ? new (std::nothrow) InputFile(file, asf) : nullptr;
    if (*stream)
        return S_OK;
    ::CloseHandle(file);
    return usable ? E_OUTOFMEMORY : NS_E_INVALID_INPUT_FORMAT;
}

InputFile::~InputFile() {
    if (file_ != INVALID_HANDLE_VALUE)
        ::CloseHandle(file_);
}

void InputFile::closeFile() {
    if (!::TryAcquireSRWLockExclusive(&lock_))
        return;
    ::CloseHandle(file_);
    file_ = INVALID_HANDLE_VALUE;
    ::ReleaseSRWLockExclusive(&lock_);
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
    DWORD count = 0;
    const bool read = ::ReadFile(file_, buffer, bytes, &count, nullptr) != 0;
    if (got)
        *got = count;
    if (!read)
        return lastError();
    asf_.correct(position_, static_cast<std::uint8_t*>(buffer), count);
    position_ += count;
    return bytes > 0 && count == 0 ? HRESULT_FROM_WIN32(ERROR_HANDLE_EOF) : S_OK;
}

HRESULT InputFile::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* at) {
    const Locked locked(lock_);
    LARGE_INTEGER now{};
    // The numbers of the three origins are the same for files and streams.
    if (!::SetFilePointerEx(file_, move, &now, origin))
        return lastError();
    position_ = static_cast<std::uint64_t>(now.QuadPart);
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
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(file_, &size))
        return lastError();
    status->cbSize.QuadPart = static_cast<ULONGLONG>(size.QuadPart);
    return S_OK;
}

} // namespace corvina::wine
