#include "sources/MediaFoundationLibrary.h"

#include "stream/LibrarySearch.h"

namespace corvina {

template <typename Function>
bool MediaFoundationLibrary::find(HMODULE library, const char* name, Function& function) const {
    const FARPROC found = library ? api_.getProcAddress(library, name) : nullptr;
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(found));
    return function != nullptr;
}

MediaFoundationLibrary::~MediaFoundationLibrary() {
    if (started_)
        shutdown_();
    unload();
}

bool MediaFoundationLibrary::start() {
    if (started_)
        return true;
    platform_ = loadSystemLibrary(api_, L"mfplat.dll").release();
    readers_ = loadSystemLibrary(api_, L"mfreadwrite.dll").release();
    started_ = find(platform_, "MFStartup", startup_) && find(platform_, "MFShutdown", shutdown_) &&
               find(platform_, "MFCreateMediaType", createType_) &&
               find(platform_, "MFCreateFile", createFile_) &&
               find(readers_, "MFCreateSourceReaderFromByteStream", createReader_) &&
               SUCCEEDED(startup_(MF_VERSION, MFSTARTUP_LITE));
    if (!started_)
        unload();
    return started_;
}

void MediaFoundationLibrary::unload() noexcept {
    for (HMODULE* library : {&readers_, &platform_}) {
        if (*library)
            api_.freeLibrary(*library);
        *library = nullptr;
    }
}

// By way of the file and not of its name as an address, in which some characters mean something
// else.
ComPtr<IMFSourceReader> MediaFoundationLibrary::openFile(const std::wstring& path) const {
    ComPtr<IMFByteStream> file;
    ComPtr<IMFSourceReader> reader;
    if (SUCCEEDED(createFile_(MF_ACCESSMODE_READ, MF_OPENMODE_FAIL_IF_NOT_EXIST, MF_FILEFLAGS_NONE,
                              path.c_str(), file.put())) &&
        FAILED(createReader_(file.get(), nullptr, reader.put())))
        (void)reader.detach(); // what a failed call leaves there is no reference
    return reader;
}

ComPtr<IMFMediaType> MediaFoundationLibrary::makeType() const {
    ComPtr<IMFMediaType> type;
    if (FAILED(createType_(type.put())))
        (void)type.detach();
    return type;
}

} // namespace corvina
