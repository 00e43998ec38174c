#include "UnusedReaderMembers.h"

#include <algorithm>
#include <cstring>

namespace corvina::test {

StandInLibrary library;

// Notes the call; the result that the test wants for the function.
HRESULT noted(const std::string& text) {
    if (library.noting)
        library.calls.push_back(text);
    const auto found = library.results.find(text.substr(0, text.find(' ')));
    return found == library.results.end() ? S_OK : found->second;
}

namespace {

const HMODULE libraryModule = reinterpret_cast<HMODULE>(0x00C0DE00);

std::string narrow(const wchar_t* text) {
    std::string result;
    for (; text && *text; ++text)
        result += static_cast<char>(*text);
    return result;
}

template <typename... Arguments>
std::string call(const char* function, Arguments... arguments) {
    std::string text(function);
    ((text += ' ' + std::to_string(arguments)), ...);
    return text;
}

// Counts the stand-in's objects that are alive.
class Counted {
public:
    Counted() { ++library.objects; }
    ~Counted() { --library.objects; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

class Buffer final : public Implements<INSSBuffer> {
public:
    explicit Buffer(StandInBlock block) : block_(std::move(block)) {}

    HRESULT STDMETHODCALLTYPE GetLength(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetLength(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMaxLength(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBuffer(BYTE**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBufferAndLength(BYTE** data, DWORD* length) override {
        const HRESULT result = noted("GetBufferAndLength");
        if (result != S_OK)
            return result;
        *data = block_.withoutData ? nullptr : block_.bytes.data();
        *length = block_.reportedBytes == 0xFFFFFFFF ? static_cast<DWORD>(block_.bytes.size())
                                                     : block_.reportedBytes;
        return S_OK;
    }

private:
    StandInBlock block_;
    Counted counted_;
};

class Props final : public Implements<IWMOutputMediaProps> {
public:
    explicit Props(StandInFormat format) : format_(std::move(format)) {}

    HRESULT STDMETHODCALLTYPE GetType(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMediaType(WM_MEDIA_TYPE* type, DWORD* size) override {
        const HRESULT result = noted(type ? "GetMediaType" : "GetMediaTypeSize");
        const auto needed = static_cast<DWORD>(sizeof(WM_MEDIA_TYPE) + format_.block.size());
        const DWORD reported = format_.typeBytes ? format_.typeBytes : needed;
        if (!type) {
            *size = reported;
            return result;
        }
        if (*size < needed)
            return bufferTooSmall;
        auto* block = reinterpret_cast<BYTE*>(type + 1);
        *type = {};
        type->majortype = format_.major;
        type->subtype = format_.subtype;
        type->cbFormat = static_cast<ULONG>(format_.block.size());
        type->pbFormat = format_.withoutBlock ? nullptr : block;
        std::ranges::copy(format_.block, block);
        return result; // what a failed call has written is there all the same
    }
    HRESULT STDMETHODCALLTYPE SetMediaType(WM_MEDIA_TYPE* type) override {
        WAVEFORMATEX wave{};
        std::memcpy(&wave, type->pbFormat, std::min<std::size_t>(type->cbFormat, sizeof wave));
        return noted(call("SetMediaType", wave.wBitsPerSample));
    }
    HRESULT STDMETHODCALLTYPE GetStreamGroupName(WCHAR*, WORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionName(WCHAR*, WORD*) override { return E_NOTIMPL; }

private:
    static constexpr HRESULT bufferTooSmall = static_cast<HRESULT>(0xC00D07D1);
    StandInFormat format_;
    Counted counted_;
};

class Reader final : public UnusedReaderMembers {
public:
    HRESULT STDMETHODCALLTYPE Open(const WCHAR* name) override {
        const HRESULT result = noted("Open " + narrow(name));
        library.fileOpen = result == S_OK;
        library.next = 0;
        return result;
    }
    HRESULT STDMETHODCALLTYPE Close() override {
        library.fileOpen = false;
        return noted("Close");
    }
    HRESULT STDMETHODCALLTYPE SetRange(QWORD start, LONGLONG length) override {
        const HRESULT result = noted(call("SetRange", start, length));
        if (result == S_OK)
            for (library.next = 0;
                 library.next < library.blocks.size() && library.blocks[library.next].time < start;
                 ++library.next) {
            }
        return result;
    }
    HRESULT STDMETHODCALLTYPE SetRangeByFrame(WORD stream, QWORD frame, LONGLONG count) override {
        return noted(call("SetRangeByFrame", stream, frame, count));
    }
    HRESULT STDMETHODCALLTYPE GetNextSample(WORD stream, INSSBuffer** sample, QWORD* time,
                                            QWORD* duration, DWORD* flags, DWORD* output,
                                            WORD* streamOut) override {
        const bool complete = duration && flags && output && !streamOut;
        const HRESULT result = noted(call("GetNextSample", stream) + (complete ? "" : " ?"));
        if (result != S_OK)
            return result;
        if (library.next >= library.blocks.size())
            return library.afterLastBlock;
        const StandInBlock& block = library.blocks[library.next++];
        *time = block.time;
        *sample = makeCom<Buffer>(block).detach();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetOutputCount(DWORD* count) override {
        *count = library.outputs;
        return noted("GetOutputCount");
    }
    HRESULT STDMETHODCALLTYPE GetStreamNumberForOutput(DWORD output, WORD* stream) override {
        *stream = static_cast<WORD>(output + 1);
        return noted("GetStreamNumberForOutput");
    }
    HRESULT STDMETHODCALLTYPE SetStreamsSelected(WORD count, WORD* streams,
                                                 WMT_STREAM_SELECTION* selections) override {
        std::string name = "SetStreamsSelected";
        for (WORD index = 0; index < count; ++index) {
            name.append(1, ' ').append(std::to_string(streams[index]));
            name.append(selections[index] == WMT_OFF ? " off" : " on");
        }
        return noted(name);
    }
    HRESULT STDMETHODCALLTYPE GetOutputFormatCount(DWORD output, DWORD* count) override {
        const auto found = library.formatCounts.find(output);
        *count = found == library.formatCounts.end() ? 0 : found->second;
        const HRESULT result = noted(call("GetOutputFormatCount", output));
        return found == library.formatCounts.end() ? E_INVALIDARG : result;
    }
    HRESULT STDMETHODCALLTYPE GetOutputFormat(DWORD output, DWORD format,
                                              IWMOutputMediaProps** props) override {
        const HRESULT result = noted(call("GetOutputFormat", output, format));
        const auto found = library.formats.find({output, format});
        if (result != S_OK || found == library.formats.end())
            return E_INVALIDARG;
        *props = makeCom<Props>(found->second).detach();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetOutputProps(DWORD output, IWMOutputMediaProps* props) override {
        return noted(call("SetOutputProps", output) + (props ? "" : " null"));
    }
    HRESULT STDMETHODCALLTYPE GetAttributeCountEx(WORD stream, WORD* count) override {
        *count = library.attributeCount ? library.attributeCount
                                        : static_cast<WORD>(library.attributes.size());
        return noted(call("GetAttributeCountEx", stream));
    }
    HRESULT STDMETHODCALLTYPE GetAttributeByIndexEx(WORD stream, WORD index, WCHAR* name,
                                                    WORD* nameLength, WMT_ATTR_DATATYPE* type,
                                                    WORD*, BYTE* value,
                                                    DWORD* valueLength) override {
        const char* const function = name ? "GetAttributeByIndexEx" : "GetAttributeLengths";
        const HRESULT result = noted(call(function, stream, index));
        if (result != S_OK && !name)
            return result;
        const StandInAttribute& attribute = library.attributes[index % library.attributes.size()];
        *type = attribute.type;
        if (!name) {
            *nameLength = static_cast<WORD>(attribute.name.size() + !attribute.withoutTerminator);
            *valueLength = attribute.reportedBytes == 0xFFFFFFFF
                               ? static_cast<DWORD>(attribute.value.size())
                               : attribute.reportedBytes;
            return S_OK;
        }
        std::memcpy(name, attribute.name.c_str(), *nameLength * sizeof(WCHAR));
        std::copy_n(attribute.value.begin(),
                    std::min<std::size_t>(*valueLength, attribute.value.size()), value);
        return result; // what a failed call has written is there all the same
    }

protected:
    void* findInterface(REFIID iid) noexcept override {
        if (library.withoutHeader && iid == __uuidof(IWMHeaderInfo3))
            return nullptr;
        return UnusedReaderMembers::findInterface(iid);
    }

private:
    Counted counted_;
};

HRESULT WINAPI createSyncReader(IUnknown* certificate, DWORD rights, IWMSyncReader** reader) {
    library.calls.push_back(call("WMCreateSyncReader", rights) + (certificate ? " ?" : " null"));
    if (library.createResult == S_OK)
        *reader = makeCom<Reader>().detach();
    else
        // A failed call may leave anything there.
        *reader = reinterpret_cast<IWMSyncReader*>(0xDEAD);
    return library.createResult;
}

HMODULE WINAPI loadLibrary(const char* name) {
    library.calls.push_back(std::string("LoadLibrary ") + name);
    if (library.missing)
        return nullptr;
    ++library.libraryUses;
    return libraryModule;
}

HMODULE WINAPI loadNoLibraryFile(const wchar_t*, HANDLE, DWORD) {
    return nullptr;
}

FARPROC WINAPI getProcAddress(HMODULE, const char* name) {
    if (library.withoutExport || std::strcmp(name, "WMCreateSyncReader") != 0)
        return nullptr;
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&createSyncReader));
}

BOOL WINAPI freeLibrary(HMODULE module) {
    library.calls.push_back(call("FreeLibrary with", library.objects));
    if (module)
        --library.libraryUses;
    return module != nullptr;
}

} // namespace

const LibraryApi standInApi{.loadLibrary = &loadLibrary,
                            .loadLibraryFile = &loadNoLibraryFile,
                            .getProcAddress = &getProcAddress,
                            .freeLibrary = &freeLibrary};

StandInFormat pcmFormat(WORD bits) {
    WAVEFORMATEX wave{};
    wave.wFormatTag = WAVE_FORMAT_PCM;
    wave.nChannels = 2;
    wave.nSamplesPerSec = 44100;
    wave.wBitsPerSample = bits;
    wave.nBlockAlign = static_cast<WORD>(wave.nChannels * bits / 8);
    wave.nAvgBytesPerSec = wave.nSamplesPerSec * wave.nBlockAlign;
    StandInFormat format;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&wave);
    format.block.assign(bytes, bytes + sizeof wave);
    return format;
}

StandInAttribute textAttribute(std::wstring name, const std::wstring& value) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(value.c_str());
    return {
        std::move(name), WMT_TYPE_STRING, {bytes, bytes + (value.size() + 1) * sizeof(wchar_t)}};
}

void layFile(QWORD duration, std::vector<StandInBlock> blocks) {
    library = {};
    library.formatCounts = {{0, 1}};
    library.formats = {{{0, 0}, pcmFormat(16)}};
    library.attributes = {numberAttribute(L"Duration", WMT_TYPE_QWORD, duration)};
    library.blocks = std::move(blocks);
}

} // namespace corvina::test
