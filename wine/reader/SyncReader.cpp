#include "SyncReader.h"

#include "InputFile.h"
#include "TimedOpen.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <nserror.h>

namespace corvina::wine {
namespace {

constexpr WORD wholeFile = 0xFFFF;
constexpr WORD fileLevel = 0;

// Makes Wine's reader as a part of outer; the export that Wine's own library uses.
using CreateReader = HRESULT(WINAPI*)(IUnknown* outer, void** inner);

HRESULT createWineReader(IUnknown* outer, IUnknown** inner) {
    const HMODULE library = ::LoadLibraryW(L"winegstreamer.dll");
    if (!library)
        return HRESULT_FROM_WIN32(::GetLastError());
    // It stays loaded: GStreamer cannot be started twice in a process.
    const auto create = reinterpret_cast<CreateReader>(
        reinterpret_cast<void*>(::GetProcAddress(library, "winegstreamer_create_wm_sync_reader")));
    return create ? create(outer, reinterpret_cast<void**>(inner)) : E_NOTIMPL;
}

// An interface of an aggregated object counts on its outer object, which must not keep itself
// alive.
template <typename Interface>
HRESULT borrow(IUnknown& aggregated, IUnknown& outer, Interface** result) {
    const HRESULT found =
        aggregated.QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(result));
    if (found == S_OK)
        outer.Release();
    return found;
}

// For an instant after an open, while GStreamer goes back to the start, Wine's reader does not know
// the format of a stream and fails so; a moment later the same call succeeds.
template <typename Call>
HRESULT onceFormatIsKnown(HRESULT failure, Call call) {
    constexpr int mostMs = 50;
    HRESULT result = call();
    for (int waited = 0; result == failure && waited < mostMs; ++waited) {
        ::Sleep(1);
        result = call();
    }
    return result;
}

// Returns the length if there is no buffer, and copies if the buffer is large enough.
template <typename Length, typename Element>
bool handOut(const Element* from, std::size_t count, Element* buffer, Length* length) {
    const bool fits = *length >= count;
    *length = static_cast<Length>(count);
    if (!buffer)
        return true;
    if (fits)
        std::memcpy(buffer, from, count * sizeof(Element));
    return fits;
}

bool startsAsMpegAudio(const WCHAR* fileName) {
    try {
        return isMpegAudio(fileName);
    } catch (const std::exception&) {
        return false;
    }
}

DWORD openLimit() {
    constexpr DWORD generous = 10'000;
    WCHAR text[16];
    const DWORD length = ::GetEnvironmentVariableW(L"CORVINA_READER_LIMIT", text, ARRAYSIZE(text));
    const bool given = length > 0 && length < ARRAYSIZE(text);
    return given ? static_cast<DWORD>(std::wcstoul(text, nullptr, 10)) : generous;
}

} // namespace

HRESULT SyncReader::create(IWMSyncReader** reader) {
    auto* const created = new (std::nothrow) SyncReader;
    if (!created)
        return E_OUTOFMEMORY;
    const HRESULT result = created->aggregate();
    if (result == S_OK)
        *reader = static_cast<ForwardedReader*>(created);
    else
        created->Release();
    return result;
}

HRESULT SyncReader::aggregate() {
    IUnknown& self = *static_cast<ForwardedReader*>(this);
    HRESULT result = createWineReader(&self, &wineReader_);
    if (result == S_OK)
        result = borrow(*wineReader_, self, &(ForwardedReader::inner_));
    if (result == S_OK)
        result = borrow(*wineReader_, self, &(ForwardedHeader::inner_));
    return result;
}

SyncReader::~SyncReader() {
    if (wineReader_)
        wineReader_->Release();
}

HRESULT SyncReader::QueryInterface(REFIID iid, void** result) {
    if (!result)
        return E_POINTER;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IWMSyncReader) ||
        iid == __uuidof(IWMSyncReader2))
        *result = static_cast<ForwardedReader*>(this);
    else if (iid == __uuidof(IWMHeaderInfo) || iid == __uuidof(IWMHeaderInfo2) ||
             iid == __uuidof(IWMHeaderInfo3))
        *result = static_cast<ForwardedHeader*>(this);
    else
        return wineReader_ ? wineReader_->QueryInterface(iid, result) : E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG SyncReader::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        // While it ends, the aggregated reader may take and give references once more.
        references_ = 0x40000000;
        delete this;
    }
    return left;
}

// Wine's reader gets the file as a stream, because it never closes a file that it opened itself and
// could not use.
HRESULT SyncReader::Open(const WCHAR* fileName) {
    if (!fileName)
        return E_INVALIDARG;
    InputFile* file = nullptr;
    const HRESULT opened = InputFile::open(fileName, &file);
    if (FAILED(opened))
        return opened;
    // Wine's reader takes whatever GStreamer knows, Windows' only these two; and of some others
    // Wine's never comes to an end, or ends the process.
    const bool known = file->asf().isAsf() || file->isMpegAudio() || startsAsMpegAudio(fileName);
    const HRESULT result = known ? openStream(file, file, fileName) : NS_E_UNRECOGNIZED_STREAM_TYPE;
    if (result == openedInVain)
        file->closeFile();
    file->Release();
    return result;
}

HRESULT SyncReader::OpenStream(IStream* stream) {
    return stream ? openStream(stream, nullptr, nullptr) : E_INVALIDARG;
}

HRESULT SyncReader::openStream(IStream* stream, const InputFile* file, const WCHAR* fileName) {
    const HRESULT result = openWithin(openLimit(), *ForwardedReader::inner_, *stream);
    if (result == openedInVain) {
        // A reader that hangs may be neither called nor released. If no new one can be made it
        // stays, and the next open is in vain as well.
        wineReader_ = nullptr;
        (void)aggregate();
    }
    if (SUCCEEDED(result)) {
        open_ = true;
        atStart_ = true;
        listAttributes(file, fileName);
    }
    return result;
}

HRESULT SyncReader::Close() {
    open_ = false;
    attributes_.clear();
    return ForwardedReader::inner_->Close();
}

// What cannot be read of a file's tags is left out; the file plays all the same.
void SyncReader::listAttributes(const InputFile* file, const WCHAR* fileName) {
    attributes_.clear();
    try {
        addReaderAttribute(L"Duration", WMT_TYPE_QWORD);
        addReaderAttribute(L"Seekable", WMT_TYPE_BOOL);
        if (!file)
            return;
        correctDuration(*file);
        if (const DWORD bitrate = file->asf().bitrate())
            attributes_.push_back(numberAttribute(L"Bitrate", WMT_TYPE_DWORD, bitrate));
        std::vector<FileAttribute> fromFile = readFileAttributes(fileName);
        std::move(fromFile.begin(), fromFile.end(), std::back_inserter(attributes_));
    } catch (const std::exception&) {
    }
}

// Of MPEG audio with few frames Wine's reader knows no duration: it says 0, or a number that no
// file reaches.
void SyncReader::correctDuration(const InputFile& file) {
    constexpr QWORD longest = QWORD{10'000} * 0x7FFFFFFF; // of a length that fits into milliseconds
    const auto duration =
        std::find_if(attributes_.begin(), attributes_.end(),
                     [](const FileAttribute& attribute) { return attribute.name == L"Duration"; });
    QWORD known = 0;
    if (duration != attributes_.end()) {
        std::memcpy(&known, duration->value.data(), std::min(sizeof known, duration->value.size()));
        if (known > 0 && known <= longest)
            return;
    }
    if (!file.isMpegAudio())
        return;
    FileAttribute counted =
        numberAttribute(L"Duration", WMT_TYPE_QWORD, QWORD{file.lengthOfFrames()});
    if (duration != attributes_.end())
        *duration = std::move(counted);
    else
        attributes_.push_back(std::move(counted));
}

// An attribute that Wine's reader knows by its name.
void SyncReader::addReaderAttribute(const wchar_t* name, WMT_ATTR_DATATYPE type) {
    WORD stream = fileLevel;
    std::vector<std::uint8_t> value(sizeof(QWORD));
    WORD length = static_cast<WORD>(value.size());
    WMT_ATTR_DATATYPE found = type;
    if (ForwardedHeader::inner_->GetAttributeByName(&stream, name, &found, value.data(), &length) !=
            S_OK ||
        found != type || length > value.size())
        return;
    value.resize(length);
    attributes_.push_back({name, type, std::move(value)});
}

HRESULT SyncReader::SetOutputProps(DWORD outputNum, IWMOutputMediaProps* output) {
    return onceFormatIsKnown(NS_E_INCOMPATIBLE_FORMAT, [=, this] {
        return ForwardedReader::inner_->SetOutputProps(outputNum, output);
    });
}

HRESULT SyncReader::GetOutputFormat(DWORD outputNum, DWORD formatNum, IWMOutputMediaProps** props) {
    return onceFormatIsKnown(E_OUTOFMEMORY, [=, this] {
        return ForwardedReader::inner_->GetOutputFormat(outputNum, formatNum, props);
    });
}

HRESULT SyncReader::SetRange(QWORD start, LONGLONG duration) {
    atStart_ = false;
    return ForwardedReader::inner_->SetRange(start, duration);
}

HRESULT SyncReader::GetNextSample(WORD stream, INSSBuffer** sample, QWORD* time, QWORD* duration,
                                  DWORD* flags, DWORD* output, WORD* sampleStream) {
    atStart_ = false;
    return ForwardedReader::inner_->GetNextSample(stream, sample, time, duration, flags, output,
                                                  sampleStream);
}

// From the first frame to the end is the whole file, which is what a range of time 0 says as well.
// A file just opened has that range already; to set it again would be a seek, after which
// GStreamer's decoder for WMA makes up its noise anew.
HRESULT SyncReader::SetRangeByFrame(WORD stream, QWORD frame, LONGLONG count) {
    if (frame != 0 || count != 0)
        return ForwardedReader::inner_->SetRangeByFrame(stream, frame, count);
    return atStart_ ? S_OK : SetRange(0, 0);
}

HRESULT SyncReader::GetAttributeCountEx(WORD stream, WORD* count) {
    if (!count)
        return E_INVALIDARG;
    if (!open_)
        return NS_E_INVALID_REQUEST;
    const bool any = stream == wholeFile || stream == fileLevel;
    *count = any ? static_cast<WORD>(std::min<std::size_t>(attributes_.size(), 0xFFFF)) : WORD{0};
    return S_OK;
}

HRESULT SyncReader::GetAttributeByIndexEx(WORD stream, WORD index, WCHAR* name, WORD* nameLength,
                                          WMT_ATTR_DATATYPE* type, WORD* language, BYTE* value,
                                          DWORD* valueLength) {
    WORD count = 0;
    const HRESULT counted = GetAttributeCountEx(stream, &count);
    if (counted != S_OK)
        return counted;
    if (!nameLength || !type || !valueLength || index >= count)
        return E_INVALIDARG;
    const FileAttribute& attribute = attributes_[index];
    *type = attribute.type;
    if (language)
        *language = 0;
    const bool nameFits =
        handOut(attribute.name.c_str(), attribute.name.size() + 1, name, nameLength);
    const bool valueFits =
        handOut(attribute.value.data(), attribute.value.size(), value, valueLength);
    return nameFits && valueFits ? S_OK : NS_E_SDK_BUFFERTOOSMALL;
}

} // namespace corvina::wine
