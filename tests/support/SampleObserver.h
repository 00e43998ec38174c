#pragma once

// A client that keeps what the converter shows it, and does mischief on command. It lives on the
// stack; its count is only counted.

#include "support/WavBytes.h"

#include "Corvina.h"

#include <functional>
#include <oleauto.h>
#include <vector>

namespace corvina::test {

class SampleObserver final : public cCallback {
public:
    struct Block {
        long bytes;
        short channels;
        ULONG elements;
        Bytes content;
    };
    std::vector<Block> blocks;
    VARTYPE type = VT_EMPTY;
    LONG lowerBound = -1;
    std::function<void(SAFEARRAY**)> act;

    HRESULT STDMETHODCALLTYPE Samples(SAFEARRAY** intSamples, long datalength,
                                      short channels) override {
        const auto* const data = static_cast<const std::uint8_t*>((*intSamples)->pvData);
        blocks.push_back({datalength, channels, (*intSamples)->rgsabound[0].cElements,
                          Bytes(data, data + datalength)});
        ::SafeArrayGetVartype(*intSamples, &type);
        ::SafeArrayGetLBound(*intSamples, 1, &lowerBound);
        if (act)
            act(intSamples);
        return E_FAIL; // nobody listens to it
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

private:
    ULONG references_ = 1;
};

} // namespace corvina::test
