#pragma once

// Stand-ins for what a container persists a control in: a property bag, a stream, a storage.

#include "Support.h"

#include <map>

namespace corvina::test {

// A property bag as forms have it.
class MemoryPropertyBag final : public IPropertyBag {
public:
    std::map<std::wstring, Variant> values;
    HRESULT writeResult = S_OK;

    void put(const wchar_t* name, const Variant& value) { values.emplace(name, value); }
    bool has(const wchar_t* name) const { return values.contains(name); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
        const auto found = values.find(name);
        if (found == values.end())
            return E_INVALIDARG;
        return ::VariantCopy(value, &found->second);
    }
    HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override {
        Variant copy;
        ::VariantCopy(&copy, value);
        values.erase(name);
        values.emplace(name, copy);
        return writeResult;
    }
};

[[nodiscard]] inline ComPtr<IStream> memoryStream() {
    ComPtr<IStream> stream;
    ::CreateStreamOnHGlobal(nullptr, TRUE, stream.put());
    return stream;
}

// A compound file in memory.
[[nodiscard]] inline ComPtr<IStorage> memoryStorage() {
    ComPtr<ILockBytes> bytes;
    ComPtr<IStorage> storage;
    ::CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.put());
    EXPECT_EQ(S_OK, ::StgCreateDocfileOnILockBytes(
                        bytes.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                        storage.put()));
    return storage;
}

// A stream that fails.
class BrokenStream final : public IStream {
public:
    explicit BrokenStream(HRESULT result) noexcept : result_(result) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Read(void*, ULONG, ULONG*) override { return result_; }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return result_; }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override {
        return result_;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return result_; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return result_;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return result_; }
    HRESULT STDMETHODCALLTYPE Revert() override { return result_; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return result_;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return result_;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return result_; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return result_; }

private:
    HRESULT result_;
};

inline void rewind(const ComPtr<IStream>& stream) {
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
}

} // namespace corvina::test
