#pragma once

// The system's Media Foundation, of which one call does not come back before a gate opens. All is
// static because the functions of a library are; one test at a time.

#include "platform/LibraryApi.h"

#include <atomic>
#include <string>
#include <windows.h>

#include <mfapi.h>
#include <mfidl.h>
#include <mfreadwrite.h>

namespace corvina::test {

class StalledMediaFoundation {
public:
    enum class Call { none, makeReader, read, seek, release };

    // The given call stalls from now on.
    static void stall(Call call) {
        ::ResetEvent(gate_);
        stalled_ = call;
    }
    static void openGate() {
        stalled_ = Call::none;
        ::SetEvent(gate_);
    }
    // Startups without a shutdown. Waits up to 5 seconds for the last of them.
    static int startsLeft() {
        for (int waits = 0; starts_ > 0 && waits < 500; ++waits)
            ::Sleep(10);
        return starts_;
    }

private:
    static void pass(Call call) {
        if (stalled_ == call)
            ::WaitForSingleObject(gate_, INFINITE);
    }

    // Hands everything on to the system's reader, which it owns.
    class Reader final : public IMFSourceReader {
    public:
        explicit Reader(IMFSourceReader* reader) : reader_(reader) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
        ULONG STDMETHODCALLTYPE Release() override {
            const ULONG left = --references_;
            if (left == 0) {
                pass(Call::release);
                reader_->Release();
                delete this;
            }
            return left;
        }
        HRESULT STDMETHODCALLTYPE GetStreamSelection(DWORD index, BOOL* selected) override {
            return reader_->GetStreamSelection(index, selected);
        }
        HRESULT STDMETHODCALLTYPE SetStreamSelection(DWORD index, BOOL selected) override {
            return reader_->SetStreamSelection(index, selected);
        }
        HRESULT STDMETHODCALLTYPE GetNativeMediaType(DWORD index, DWORD at,
                                                     IMFMediaType** type) override {
            return reader_->GetNativeMediaType(index, at, type);
        }
        HRESULT STDMETHODCALLTYPE GetCurrentMediaType(DWORD index, IMFMediaType** type) override {
            return reader_->GetCurrentMediaType(index, type);
        }
        HRESULT STDMETHODCALLTYPE SetCurrentMediaType(DWORD index, DWORD* reserved,
                                                      IMFMediaType* type) override {
            return reader_->SetCurrentMediaType(index, reserved, type);
        }
        HRESULT STDMETHODCALLTYPE SetCurrentPosition(REFGUID format,
                                                     REFPROPVARIANT position) override {
            pass(Call::seek);
            return reader_->SetCurrentPosition(format, position);
        }
        HRESULT STDMETHODCALLTYPE ReadSample(DWORD index, DWORD control, DWORD* stream,
                                             DWORD* flags, LONGLONG* time,
                                             IMFSample** sample) override {
            pass(Call::read);
            return reader_->ReadSample(index, control, stream, flags, time, sample);
        }
        HRESULT STDMETHODCALLTYPE Flush(DWORD index) override { return reader_->Flush(index); }
        HRESULT STDMETHODCALLTYPE GetServiceForStream(DWORD index, REFGUID service, REFIID id,
                                                      void** object) override {
            return reader_->GetServiceForStream(index, service, id, object);
        }
        HRESULT STDMETHODCALLTYPE GetPresentationAttribute(DWORD index, REFGUID attribute,
                                                           PROPVARIANT* value) override {
            return reader_->GetPresentationAttribute(index, attribute, value);
        }

    private:
        IMFSourceReader* reader_;
        std::atomic<ULONG> references_ = 1;
    };

    static HRESULT WINAPI makeReader(IMFByteStream* file, IMFAttributes* attributes,
                                     IMFSourceReader** reader) {
        pass(Call::makeReader);
        const HRESULT result = makeReader_(file, attributes, reader);
        if (SUCCEEDED(result))
            *reader = new Reader(*reader);
        return result;
    }
    static HRESULT WINAPI countedStartup(ULONG version, DWORD flags) {
        ++starts_;
        return startup_(version, flags);
    }
    static HRESULT WINAPI countedShutdown() {
        const HRESULT result = shutdown_();
        --starts_;
        return result;
    }

    template <typename Function>
    static FARPROC replaced(FARPROC found, Function& original, Function replacement) {
        original = reinterpret_cast<Function>(reinterpret_cast<void*>(found));
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(replacement));
    }
    static FARPROC WINAPI find(HMODULE library, LPCSTR name) {
        const FARPROC found = ::GetProcAddress(library, name);
        const std::string wanted = name;
        if (wanted == "MFCreateSourceReaderFromByteStream")
            return replaced(found, makeReader_, &makeReader);
        if (wanted == "MFStartup")
            return replaced(found, startup_, &countedStartup);
        if (wanted == "MFShutdown")
            return replaced(found, shutdown_, &countedShutdown);
        return found;
    }

    static inline const HANDLE gate_ = ::CreateEventW(nullptr, TRUE, TRUE, nullptr);
    static inline std::atomic<Call> stalled_ = Call::none;
    static inline std::atomic<int> starts_ = 0;
    static inline decltype(&::MFCreateSourceReaderFromByteStream) makeReader_ = nullptr;
    static inline decltype(&::MFStartup) startup_ = nullptr;
    static inline decltype(&::MFShutdown) shutdown_ = nullptr;

public:
    static inline const LibraryApi api = [] {
        LibraryApi table;
        table.getProcAddress = &find;
        return table;
    }();
};

} // namespace corvina::test
