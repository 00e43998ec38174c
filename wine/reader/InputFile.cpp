#include "InputFile.h"

#include <new>

namespace corvina::wine {
namespace {

HRESULT lastError() {
    return HRESULT_FROM_WIN32(::GetLastError());
}

} // namespace

HRESULT InputFile::open(const WCHAR* fileName, IStream** stream) {
    const HANDLE file = ::CreateFileW(fileName, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return lastError();
    *stream = new (std::nothrow) InputFile(file);
    if (*stream)
        return S_OK;
    ::CloseHandle(file);
    return E_OUTOFMEMORY;
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
    DWORD count = 0;
    const bool read = ::ReadFile(file_, buffer, bytes, &count, nullptr) != 0;
    if (got)
        *got = count;
    if (!read)
        return lastError();
    return bytes > 0 && count == 0 ? HRESULT_FROM_WIN32(ERROR_HANDLE_EOF) : S_OK;
}

HRESULT InputFile::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* at) {
    LARGE_INTEGER now{};
    // The numbers of the three origins are the same for files and streams.
    if (!::SetFilePointerEx(file_, move, &now, origin))
        return lastError();
    if (at)
        at->QuadPart = static_cast<ULONGLONG>(now.QuadPart);
    return S_OK;
}

HRESULT InputFile::Stat(STATSTG* status, DWORD) {
    if (!status)
        return E_POINTER;
    *status = {};
    status->type = STGTY_STREAM;
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(file_, &size))
        return lastError();
    status->cbSize.QuadPart = static_cast<ULONGLONG>(size.QuadPart);
    return S_OK;
}

} // namespace corvina::wine
