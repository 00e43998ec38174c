#include "StandInMovies.h"

#include "com/Implements.h"

#include <cstring>
#include <mferror.h>
#include <mfidl.h>
#include <mfreadwrite.h>

namespace corvina::test {

StandInMovie movie;

namespace {

decltype(&::MFCreateMediaType) makeType = nullptr;
decltype(&::MFCreateSample) makeSample = nullptr;

// What a failed call leaves in a place for an object: no reference.
template <typename Interface>
HRESULT failed(Interface** object) {
    *object = reinterpret_cast<Interface*>(0xDEAD);
    return E_FAIL;
}

class Buffer final : public Implements<IMFMediaBuffer> {
public:
    explicit Buffer(const StandInRead& read) : read_(read) {}

    HRESULT STDMETHODCALLTYPE Lock(BYTE** data, DWORD* most, DWORD* bytes) override {
        if (read_.cannotBeLocked)
            return E_FAIL;
        ++movie.locks;
        // Somewhere, also when there is nothing in it.
        static BYTE nothing = 0;
        *data = read_.bytes.empty() ? &nothing : read_.bytes.data();
        for (DWORD* const length : {most, bytes})
            if (length)
                *length = static_cast<DWORD>(read_.bytes.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Unlock() override {
        --movie.locks;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetCurrentLength(DWORD* bytes) override {
        return GetMaxLength(bytes);
    }
    HRESULT STDMETHODCALLTYPE SetCurrentLength(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMaxLength(DWORD* bytes) override {
        *bytes = static_cast<DWORD>(read_.bytes.size());
        return S_OK;
    }

private:
    StandInRead read_;
};

class Reader final : public Implements<IMFSourceReader> {
public:
    Reader() { ++movie.readers; }
    ~Reader() override {
        --movie.readers;
        movie.letGoBy = ::GetCurrentThreadId();
    }

    HRESULT STDMETHODCALLTYPE GetStreamSelection(DWORD, BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStreamSelection(DWORD stream, BOOL selected) override {
        movie.selections.emplace_back(stream, selected);
        return resultOf(selected ? "SelectSound" : "SelectNothing");
    }
    HRESULT STDMETHODCALLTYPE GetNativeMediaType(DWORD, DWORD, IMFMediaType**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetCurrentMediaType(DWORD stream, IMFMediaType** type) override {
        if (stream != sound || FAILED(resultOf("GetCurrentMediaType")) || FAILED(makeType(type)))
            return MF_E_INVALIDSTREAMNUMBER;
        for (const auto& [key, number] : {std::pair{MF_MT_AUDIO_SAMPLES_PER_SECOND, movie.rate},
                                          std::pair{MF_MT_AUDIO_NUM_CHANNELS, movie.channels},
                                          std::pair{MF_MT_AUDIO_BITS_PER_SAMPLE, movie.bits},
                                          std::pair{MF_MT_AUDIO_CHANNEL_MASK, movie.speakers}})
            if (number)
                (*type)->SetUINT32(key, *number);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetCurrentMediaType(DWORD stream, DWORD*,
                                                  IMFMediaType* type) override {
        type->GetGUID(MF_MT_MAJOR_TYPE, &movie.wantedKind);
        type->GetGUID(MF_MT_SUBTYPE, &movie.wantedCoding);
        type->GetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, &movie.wantedBits);
        return stream == sound ? resultOf("SetCurrentMediaType") : MF_E_INVALIDSTREAMNUMBER;
    }
    HRESULT STDMETHODCALLTYPE SetCurrentPosition(REFGUID format, REFPROPVARIANT position) override {
        if (format != GUID_NULL || position.vt != VT_I8)
            return E_INVALIDARG;
        movie.seeks.push_back(position.hVal.QuadPart);
        const HRESULT result = resultOf("SetCurrentPosition");
        if (SUCCEEDED(result))
            next_ = lastReadUpTo(position.hVal.QuadPart);
        return result;
    }
    HRESULT STDMETHODCALLTYPE ReadSample(DWORD stream, DWORD control, DWORD* which, DWORD* flags,
                                         LONGLONG* time, IMFSample** sample) override {
        if (stream != sound || control != 0)
            return E_INVALIDARG;
        ++movie.calls;
        *which = 0;
        *flags = 0;
        *time = 0;
        if (next_ == movie.reads.size()) {
            *flags = MF_SOURCE_READERF_ENDOFSTREAM;
            return S_OK;
        }
        const StandInRead& read = movie.reads[next_];
        if (!movie.repeatsLast || next_ + 1 < movie.reads.size())
            ++next_;
        if (read.before)
            read.before();
        *flags = read.flags;
        *time = read.time;
        if (!read.withoutSample && SUCCEEDED(makeSample(sample)) && !read.withoutBuffer)
            (*sample)->AddBuffer(makeCom<Buffer>(read).get());
        return read.result;
    }
    HRESULT STDMETHODCALLTYPE Flush(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetServiceForStream(DWORD, REFGUID, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetPresentationAttribute(DWORD stream, REFGUID attribute,
                                                       PROPVARIANT* value) override {
        if (stream != static_cast<DWORD>(MF_SOURCE_READER_MEDIASOURCE) ||
            attribute != MF_PD_DURATION)
            return E_INVALIDARG;
        *value = movie.duration;
        return resultOf("GetPresentationAttribute");
    }

private:
    static constexpr auto sound = static_cast<DWORD>(MF_SOURCE_READER_FIRST_AUDIO_STREAM);

    static std::size_t lastReadUpTo(LONGLONG time) {
        std::size_t read = 0;
        while (read + 1 < movie.reads.size() && movie.reads[read + 1].time <= time)
            ++read;
        return read;
    }
    static HRESULT resultOf(const char* call) { return movie.failing == call ? E_FAIL : S_OK; }

    std::size_t next_ = 0;
};

HRESULT WINAPI startup(ULONG, DWORD) {
    if (movie.failing == "MFStartup")
        return E_FAIL;
    ++movie.starts;
    return S_OK;
}

HRESULT WINAPI shutdown() {
    --movie.starts;
    return S_OK;
}

HMODULE counted(HMODULE library) {
    movie.libraries += library != nullptr;
    return library;
}

HMODULE WINAPI load(LPCSTR name) {
    return counted(::LoadLibraryA(name));
}

HMODULE WINAPI loadFile(LPCWSTR name, HANDLE file, DWORD flags) {
    return counted(::LoadLibraryExW(name, file, flags));
}

BOOL WINAPI unload(HMODULE library) {
    --movie.libraries;
    return ::FreeLibrary(library);
}

HRESULT WINAPI createType(IMFMediaType** type) {
    return movie.failing == "MFCreateMediaType" ? failed(type) : makeType(type);
}

HRESULT WINAPI createFile(MF_FILE_ACCESSMODE, MF_FILE_OPENMODE, MF_FILE_FLAGS, LPCWSTR path,
                          IMFByteStream** file) {
    movie.openedPath = path;
    *file = nullptr;
    return movie.failing == "MFCreateFile" ? E_FAIL : S_OK;
}

HRESULT WINAPI createReader(IMFByteStream*, IMFAttributes*, IMFSourceReader** reader) {
    if (movie.failing == "MFCreateSourceReaderFromByteStream")
        return failed(reader);
    *reader = makeCom<Reader>().detach();
    return S_OK;
}

template <typename Function>
FARPROC procedure(Function function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

template <typename Function>
void findOriginal(HMODULE library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

FARPROC WINAPI find(HMODULE library, LPCSTR name) {
    const std::string wanted = name;
    if (wanted == "MFStartup")
        return procedure(&startup);
    if (wanted == "MFShutdown")
        return procedure(&shutdown);
    if (wanted == "MFCreateFile")
        return procedure(&createFile);
    if (wanted == "MFCreateSourceReaderFromByteStream")
        return procedure(&createReader);
    if (wanted != "MFCreateMediaType")
        return nullptr;
    findOriginal(library, "MFCreateMediaType", makeType);
    findOriginal(library, "MFCreateSample", makeSample);
    return procedure(&createType);
}

} // namespace

StandInRead samplesRead(std::size_t count, LONGLONG time, std::int16_t first) {
    StandInRead read{.bytes = std::vector<std::uint8_t>(count * sizeof first), .time = time};
    for (std::size_t index = 0; index < count; ++index) {
        const auto sample = static_cast<std::int16_t>(first + static_cast<std::int16_t>(index));
        std::memcpy(&read.bytes[index * sizeof sample], &sample, sizeof sample);
    }
    return read;
}

const LibraryApi standInMovies = [] {
    LibraryApi api;
    api.loadLibrary = &load;
    api.loadLibraryFile = &loadFile;
    api.getProcAddress = &find;
    api.freeLibrary = &unload;
    return api;
}();

} // namespace corvina::test
