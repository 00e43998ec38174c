#include "sources/MediaFoundationOpening.h"

#include "platform/UniqueHandle.h"

#include <new>
#include <objbase.h>

namespace corvina {
namespace {

// Both threads have a share of it.
struct Opening {
    std::shared_ptr<const MediaFoundationLibrary> library;
    std::wstring path;
    OpenedMedia media = {};
};

void open(Opening& opening) {
    auto reader = std::make_unique<MediaFoundationReader>(opening.library);
    if (!reader->open(opening.path))
        return;
    opening.media.result = OpenedMedia::Result::withoutSound;
    if (!reader->selectSound())
        return;
    if (!reader->read(opening.media.first))
        opening.media.first = {};
    opening.media.reader = std::move(reader);
    opening.media.result = OpenedMedia::Result::opened;
}

// What the thread gets. Its use of the module ends with the thread, so that a host that lets go of
// the module meanwhile does not take the code away from under it.
struct ThreadStart {
    std::shared_ptr<Opening> opening;
    HMODULE module = nullptr;
};

HMODULE openModule(const void* code) {
    HMODULE module = nullptr;
    (void)::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                               static_cast<const wchar_t*>(code), &module);
    return module;
}

HMODULE runThread(void* parameter) {
    const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(parameter));
    const bool entered = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    try {
        open(*start->opening);
    } catch (const std::bad_alloc&) {
        start->opening->media = {};
    }
    const HMODULE module = start->module;
    start->opening.reset();
    if (entered)
        ::CoUninitialize();
    return module;
}

// Nothing here has a destructor: the call does not come back.
DWORD WINAPI threadMain(void* parameter) {
    ::FreeLibraryAndExitThread(runThread(parameter), 0);
}

struct ThreadTraits {
    using Handle = HANDLE;
    static constexpr Handle none = nullptr;
    static void close(Handle thread) noexcept { ::CloseHandle(thread); }
};

} // namespace

OpenedMedia openMedia(std::shared_ptr<const MediaFoundationLibrary> library,
                      const std::wstring& path, DWORD milliseconds) {
    const auto opening = std::make_shared<Opening>(Opening{std::move(library), path});
    auto start = std::make_unique<ThreadStart>(ThreadStart{opening});
    start->module = openModule(reinterpret_cast<const void*>(&threadMain));
    const UniqueHandle<ThreadTraits> thread(
        ::CreateThread(nullptr, 0, &threadMain, start.get(), 0, nullptr));
    if (!thread) {
        ::FreeLibrary(start->module);
        return {};
    }
    (void)start.release(); // it is the thread's
    // A thread that is left behind still writes to what it shares.
    if (::WaitForSingleObject(thread.get(), milliseconds) != WAIT_OBJECT_0)
        return {};
    return std::move(opening->media);
}

} // namespace corvina
