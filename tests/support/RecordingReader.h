#pragma once

// Puts a recorder between the Windows Media source and the system's reader: whatever the reader
// hands out is noted on its way.

#include "../../wine/reader/ForwardedReader.h"
#include "com/ComPtr.h"
#include "platform/LibraryApi.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace corvina::test {

// All bytes that readers made through recordingApi handed out.
inline std::vector<std::uint8_t> handedOut;

class RecordingReader final : public wine::ForwardedReader {
public:
    // Takes over the reference.
    explicit RecordingReader(IWMSyncReader2* reader) { inner_ = reader; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return inner_->QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE Open(const WCHAR* name) override { return inner_->Open(name); }
    HRESULT STDMETHODCALLTYPE OpenStream(IStream* stream) override {
        return inner_->OpenStream(stream);
    }
    HRESULT STDMETHODCALLTYPE SetRangeByFrame(WORD stream, QWORD frame, LONGLONG count) override {
        return inner_->SetRangeByFrame(stream, frame, count);
    }
    HRESULT STDMETHODCALLTYPE GetNextSample(WORD stream, INSSBuffer** sample, QWORD* time,
                                            QWORD* duration, DWORD* flags, DWORD* output,
                                            WORD* sampleStream) override {
        const HRESULT result =
            inner_->GetNextSample(stream, sample, time, duration, flags, output, sampleStream);
        BYTE* data = nullptr;
        DWORD length = 0;
        if (result == S_OK && (*sample)->GetBufferAndLength(&data, &length) == S_OK)
            handedOut.insert(handedOut.end(), data, data + length);
        return result;
    }

private:
    ~RecordingReader() { inner_->Release(); }

    ULONG references_ = 1;
};

inline HRESULT WINAPI createRecordingReader(IUnknown* certificate, DWORD rights,
                                            IWMSyncReader** reader) {
    using Create = HRESULT(WINAPI*)(IUnknown*, DWORD, IWMSyncReader**);
    const auto create = reinterpret_cast<Create>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"wmvcore.dll"), "WMCreateSyncReader")));
    ComPtr<IWMSyncReader> real;
    const HRESULT result = create(certificate, rights, real.put());
    if (result == S_OK)
        *reader = new RecordingReader(real.query<IWMSyncReader2>().detach());
    return result;
}

inline FARPROC WINAPI recordingProcAddress(HMODULE library, const char* name) {
    if (std::strcmp(name, "WMCreateSyncReader") != 0)
        return ::GetProcAddress(library, name);
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&createRecordingReader));
}

inline const LibraryApi recordingApi{.getProcAddress = &recordingProcAddress};

} // namespace corvina::test
