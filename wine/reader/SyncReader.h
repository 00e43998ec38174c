#pragma once

// Wine's synchronous reader with what it lacks: a range by frames that is the whole file, and the
// list of the file's attributes. It aggregates Wine's reader, so that every other interface is that
// reader's own and still belongs to this object.
//
// An open that takes longer than 10 seconds is taken for one that never ends. It fails, the reader
// that hangs in it is left behind, with whatever interfaces of its own were handed out, and a new
// one takes its place. CORVINA_READER_LIMIT in the environment sets another limit, in milliseconds.

#include "FileAttributes.h"
#include "ForwardedHeader.h"
#include "ForwardedReader.h"

#include <atomic>
#include <string>
#include <vector>

namespace corvina::wine {

class InputFile;

class SyncReader final : public ForwardedReader, public ForwardedHeader {
public:
    // On success the caller owns one reference.
    [[nodiscard]] static HRESULT create(IWMSyncReader** reader);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE Open(const WCHAR* fileName) override;
    HRESULT STDMETHODCALLTYPE OpenStream(IStream* stream) override;
    HRESULT STDMETHODCALLTYPE Close() override;
    HRESULT STDMETHODCALLTYPE SetOutputProps(DWORD outputNum, IWMOutputMediaProps* output) override;
    HRESULT STDMETHODCALLTYPE GetOutputFormat(DWORD outputNum, DWORD formatNum,
                                              IWMOutputMediaProps** props) override;
    HRESULT STDMETHODCALLTYPE SetRange(QWORD start, LONGLONG duration) override;
    HRESULT STDMETHODCALLTYPE SetRangeByFrame(WORD stream, QWORD frame, LONGLONG count) override;
    HRESULT STDMETHODCALLTYPE GetNextSample(WORD stream, INSSBuffer** sample, QWORD* time,
                                            QWORD* duration, DWORD* flags, DWORD* output,
                                            WORD* sampleStream) override;
    HRESULT STDMETHODCALLTYPE GetAttributeCountEx(WORD stream, WORD* count) override;
    HRESULT STDMETHODCALLTYPE GetAttributeByIndexEx(WORD stream, WORD index, WCHAR* name,
                                                    WORD* nameLength, WMT_ATTR_DATATYPE* type,
                                                    WORD* language, BYTE* value,
                                                    DWORD* valueLength) override;

private:
    SyncReader() noexcept = default;
    ~SyncReader();

    [[nodiscard]] HRESULT aggregate();
    // file: what the stream is, if it is a file with that name; else both are null.
    [[nodiscard]] HRESULT openStream(IStream* stream, const InputFile* file, const WCHAR* fileName);
    void addReaderAttribute(const wchar_t* name, WMT_ATTR_DATATYPE type);
    void correctDuration(const InputFile& file);
    void listAttributes(const InputFile* file, const WCHAR* fileName);

    // The aggregated object's own IUnknown, which keeps it alive. Null if it had to be left behind
    // and there is no other.
    IUnknown* wineReader_ = nullptr;
    std::atomic<ULONG> references_{1};
    bool open_ = false;
    bool atStart_ = false;                  // opened, and since then neither moved nor read
    std::vector<FileAttribute> attributes_; // of the open file
};

} // namespace corvina::wine
