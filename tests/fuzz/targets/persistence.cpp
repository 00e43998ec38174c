// What containers give a control back: streams, storages and property bags.

#include "com/ComPtr.h"
#include "fuzz/FuzzTarget.h"
#include "graph/cAudioGraph.h"

#include <oleauto.h>
#include <string>

namespace corvina::fuzz {
namespace {

// A stream over the input. Reads may be short or fail, as its first byte says.
class InputStream final : public IStream {
public:
    explicit InputStream(std::span<const std::uint8_t> bytes)
        : input_(bytes), failing_(input_.byte()) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Read(void* to, ULONG bytes, ULONG* got) override {
        const std::span<const std::uint8_t> taken = input_.take(bytes);
        std::copy(taken.begin(), taken.end(), static_cast<std::uint8_t*>(to));
        if (got)
            *got = static_cast<ULONG>(taken.size());
        if (failing_ != 0 && --failing_ == 0)
            return STG_E_READFAULT;
        return taken.size() == bytes ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    Taker input_;
    std::uint8_t failing_; // the read that fails, from 1; 0: none
};

// A bag whose values come from the input one after another, of all kinds.
class InputBag final : public IPropertyBag {
public:
    explicit InputBag(std::span<const std::uint8_t> bytes) : input_(bytes) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Read(LPCOLESTR, VARIANT* value, IErrorLog*) override {
        ::VariantClear(value);
        switch (input_.byte() % 12) {
        case 0:
            return E_INVALIDARG; // no such name
        case 1:
            return S_OK; // empty
        case 2:
            V_VT(value) = VT_I2;
            V_I2(value) = input_.number<SHORT>();
            return S_OK;
        case 3:
            V_VT(value) = VT_R8;
            V_R8(value) = input_.number<double>();
            return S_OK;
        case 4:
            return text(*value);
        case 5:
            V_VT(value) = VT_BOOL;
            V_BOOL(value) = input_.number<SHORT>();
            return S_OK;
        case 6:
            V_VT(value) = VT_UI4;
            V_UI4(value) = input_.number<ULONG>();
            return S_OK;
        case 7:
            V_VT(value) = VT_NULL;
            return S_OK;
        case 8:
            V_VT(value) = VT_DISPATCH;
            V_DISPATCH(value) = nullptr;
            return S_OK;
        case 9:
            V_VT(value) = VT_ERROR;
            V_ERROR(value) = E_FAIL;
            return S_OK;
        default:
            V_VT(value) = VT_I4;
            V_I4(value) = input_.number<LONG>();
            return S_OK;
        }
    }
    HRESULT STDMETHODCALLTYPE Write(LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }

private:
    HRESULT text(VARIANT& value) {
        const std::span<const std::uint8_t> bytes = input_.take(input_.byte() % 16);
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = ::SysAllocString(std::wstring(bytes.begin(), bytes.end()).c_str());
        return V_BSTR(&value) ? S_OK : E_OUTOFMEMORY;
    }

    Taker input_;
};

// A storage whose stream is the input, or that has none.
class InputStorage final : public IStorage {
public:
    explicit InputStorage(std::span<const std::uint8_t> bytes)
        : hasStream_(bytes.empty() || bytes.front() != 0xEE), stream_(bytes) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE OpenStream(const OLECHAR*, void*, DWORD, DWORD,
                                         IStream** stream) override {
        *stream = hasStream_ ? &stream_ : nullptr;
        return hasStream_ ? S_OK : STG_E_FILENOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE CreateStream(const OLECHAR*, DWORD, DWORD, DWORD,
                                           IStream**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateStorage(const OLECHAR*, DWORD, DWORD, DWORD,
                                            IStorage**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE OpenStorage(const OLECHAR*, IStorage*, DWORD, SNB, DWORD,
                                          IStorage**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CopyTo(DWORD, const IID*, SNB, IStorage*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE MoveElementTo(const OLECHAR*, IStorage*, const OLECHAR*,
                                            DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnumElements(DWORD, void*, DWORD, IEnumSTATSTG**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DestroyElement(const OLECHAR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RenameElement(const OLECHAR*, const OLECHAR*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetElementTimes(const OLECHAR*, const FILETIME*, const FILETIME*,
                                              const FILETIME*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStateBits(DWORD, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }

private:
    bool hasStream_;
    InputStream stream_;
};

// The control takes nothing that it would not take from a program.
void expectGoodState(_cAudioGraph& control) {
    LONG bands = 0;
    AudioGraphStyle style{};
    require(control.get_Bands(&bands) == S_OK && control.get_GraphStyle(&style) == S_OK,
            "the state can be read");
    const auto put = [&](LONG value) { return control.put_Bands(value); };
    require(put(bands) == S_OK, "the state is one that may be set");
    const auto object = ComPtr<_cAudioGraph>(&control).query<IOleObject>();
    SIZEL extent{};
    require(object && object->GetExtent(DVASPECT_CONTENT, &extent) == S_OK && extent.cx >= 0 &&
                extent.cy >= 0,
            "the extent is one");
}

template <typename Interface, typename Load>
void loadGraph(Load&& load) {
    const ComPtr<cAudioGraph> control = makeCom<cAudioGraph>();
    const auto persistent =
        ComPtr<_cAudioGraph>(static_cast<_cAudioGraph*>(control.get())).query<Interface>();
    require(static_cast<bool>(persistent), "the control is persistent");
    (void)load(*persistent.get());
    expectGoodState(*control.get());
}

void useStream(std::span<const std::uint8_t> input) {
    loadGraph<IPersistStreamInit>([&](IPersistStreamInit& control) {
        InputStream stream(input);
        return control.Load(&stream);
    });
}

void useStorage(std::span<const std::uint8_t> input) {
    loadGraph<IPersistStorage>([&](IPersistStorage& control) {
        InputStorage storage(input);
        return control.Load(&storage);
    });
}

void useBag(std::span<const std::uint8_t> input) {
    loadGraph<IPersistPropertyBag>([&](IPersistPropertyBag& control) {
        InputBag bag(input);
        return control.Load(&bag, nullptr);
    });
}

std::vector<Bytes> streamSeeds() {
    Bytes good{0, 'C', 'r', 'v', '1', 0, 10, 0, 0, 0, 20, 0, 0, 8, 0, 0, 0};
    good.resize(good.size() + 32, 1);
    return {good, Bytes(40)};
}

std::vector<Bytes> bagSeeds() {
    Bytes numbers;
    for (int count = 0; count < 10; ++count)
        numbers.insert(numbers.end(), {10, 1, 0, 0, 0});
    return {numbers, {4, 2, '1', '2', 4, 3, 'x', 'y', 'z', 3, 0, 0, 0, 0, 0, 0, 0, 64}};
}

const FuzzTarget stream{"persisted_stream", &useStream, &streamSeeds, 256};
const FuzzTarget storage{"persisted_storage", &useStorage, &streamSeeds, 256};
const FuzzTarget bag{"property_bag", &useBag, &bagSeeds, 256};

} // namespace
} // namespace corvina::fuzz
