#include "TimedOpen.h"

#include <memory>
#include <new>

namespace corvina::wine {
namespace {

struct Opening {
    IWMSyncReader& reader;
    IStream& stream;
};

DWORD WINAPI open(void* parameter) {
    const std::unique_ptr<Opening> opening(static_cast<Opening*>(parameter));
    const HRESULT result = opening->reader.OpenStream(&opening->stream);
    opening->stream.Release();
    return static_cast<DWORD>(result);
}

} // namespace

HRESULT openWithin(DWORD milliseconds, IWMSyncReader& reader, IStream& stream) {
    std::unique_ptr<Opening> opening(new (std::nothrow) Opening{reader, stream});
    const HANDLE thread =
        opening ? ::CreateThread(nullptr, 0, &open, opening.get(), CREATE_SUSPENDED, nullptr)
                : nullptr;
    if (!thread)
        return E_OUTOFMEMORY;
    stream.AddRef();
    (void)opening.release(); // both are the thread's
    ::ResumeThread(thread);
    auto result = static_cast<DWORD>(openedInVain);
    if (::WaitForSingleObject(thread, milliseconds) == WAIT_OBJECT_0)
        ::GetExitCodeThread(thread, &result);
    ::CloseHandle(thread);
    return static_cast<HRESULT>(result);
}

} // namespace corvina::wine
