#pragma once

// The members of a Windows Media reader that the source does not use: each notes its call.

#include "StandInReader.h"

namespace corvina::test {

// Writes a call down and returns the result that the test wants for its function.
[[nodiscard]] HRESULT noted(const std::string& call);

class UnusedReaderMembers : public Implements<IWMSyncReader, IWMHeaderInfo3> {
public:
    HRESULT STDMETHODCALLTYPE GetStreamSelected(WORD, WMT_STREAM_SELECTION*) override {
        return noted("GetStreamSelected");
    }
    HRESULT STDMETHODCALLTYPE SetReadStreamSamples(WORD, BOOL) override {
        return noted("SetReadStreamSamples");
    }
    HRESULT STDMETHODCALLTYPE GetReadStreamSamples(WORD, BOOL*) override {
        return noted("GetReadStreamSamples");
    }
    HRESULT STDMETHODCALLTYPE GetOutputSetting(DWORD, LPCWSTR, WMT_ATTR_DATATYPE*, BYTE*,
                                               WORD*) override {
        return noted("GetOutputSetting");
    }
    HRESULT STDMETHODCALLTYPE SetOutputSetting(DWORD, LPCWSTR, WMT_ATTR_DATATYPE, const BYTE*,
                                               WORD) override {
        return noted("SetOutputSetting");
    }
    HRESULT STDMETHODCALLTYPE GetOutputProps(DWORD, IWMOutputMediaProps**) override {
        return noted("GetOutputProps");
    }
    HRESULT STDMETHODCALLTYPE GetOutputNumberForStream(WORD, DWORD*) override {
        return noted("GetOutputNumberForStream");
    }
    HRESULT STDMETHODCALLTYPE GetMaxOutputSampleSize(DWORD, DWORD*) override {
        return noted("GetMaxOutputSampleSize");
    }
    HRESULT STDMETHODCALLTYPE GetMaxStreamSampleSize(WORD, DWORD*) override {
        return noted("GetMaxStreamSampleSize");
    }
    HRESULT STDMETHODCALLTYPE OpenStream(IStream*) override { return noted("OpenStream"); }

    HRESULT STDMETHODCALLTYPE GetAttributeCount(WORD, WORD*) override {
        return noted("GetAttributeCount");
    }
    HRESULT STDMETHODCALLTYPE GetAttributeByIndex(WORD, WORD*, WCHAR*, WORD*, WMT_ATTR_DATATYPE*,
                                                  BYTE*, WORD*) override {
        return noted("GetAttributeByIndex");
    }
    HRESULT STDMETHODCALLTYPE GetAttributeByName(WORD*, LPCWSTR, WMT_ATTR_DATATYPE*, BYTE*,
                                                 WORD*) override {
        return noted("GetAttributeByName");
    }
    HRESULT STDMETHODCALLTYPE SetAttribute(WORD, LPCWSTR, WMT_ATTR_DATATYPE, const BYTE*,
                                           WORD) override {
        return noted("SetAttribute");
    }
    HRESULT STDMETHODCALLTYPE GetMarkerCount(WORD*) override { return noted("GetMarkerCount"); }
    HRESULT STDMETHODCALLTYPE GetMarker(WORD, WCHAR*, WORD*, QWORD*) override {
        return noted("GetMarker");
    }
    HRESULT STDMETHODCALLTYPE AddMarker(LPCWSTR_WMSDK_TYPE_SAFE, QWORD) override {
        return noted("AddMarker");
    }
    HRESULT STDMETHODCALLTYPE RemoveMarker(WORD) override { return noted("RemoveMarker"); }
    HRESULT STDMETHODCALLTYPE GetScriptCount(WORD*) override { return noted("GetScriptCount"); }
    HRESULT STDMETHODCALLTYPE GetScript(WORD, WCHAR*, WORD*, WCHAR*, WORD*, QWORD*) override {
        return noted("GetScript");
    }
    HRESULT STDMETHODCALLTYPE AddScript(LPCWSTR_WMSDK_TYPE_SAFE, LPCWSTR_WMSDK_TYPE_SAFE,
                                        QWORD) override {
        return noted("AddScript");
    }
    HRESULT STDMETHODCALLTYPE RemoveScript(WORD) override { return noted("RemoveScript"); }
    HRESULT STDMETHODCALLTYPE GetCodecInfoCount(DWORD*) override {
        return noted("GetCodecInfoCount");
    }
    HRESULT STDMETHODCALLTYPE GetCodecInfo(DWORD, WORD*, WCHAR*, WORD*, WCHAR*,
                                           WMT_CODEC_INFO_TYPE*, WORD*, BYTE*) override {
        return noted("GetCodecInfo");
    }
    HRESULT STDMETHODCALLTYPE GetAttributeIndices(WORD, LPCWSTR, WORD*, WORD*, WORD*) override {
        return noted("GetAttributeIndices");
    }
    HRESULT STDMETHODCALLTYPE ModifyAttribute(WORD, WORD, WMT_ATTR_DATATYPE, WORD, const BYTE*,
                                              DWORD) override {
        return noted("ModifyAttribute");
    }
    HRESULT STDMETHODCALLTYPE AddAttribute(WORD, LPCWSTR, WORD*, WMT_ATTR_DATATYPE, WORD,
                                           const BYTE*, DWORD) override {
        return noted("AddAttribute");
    }
    HRESULT STDMETHODCALLTYPE DeleteAttribute(WORD, WORD) override {
        return noted("DeleteAttribute");
    }
    HRESULT STDMETHODCALLTYPE AddCodecInfo(LPCWSTR_WMSDK_TYPE_SAFE, LPCWSTR_WMSDK_TYPE_SAFE,
                                           WMT_CODEC_INFO_TYPE, WORD, BYTE*) override {
        return noted("AddCodecInfo");
    }
};

} // namespace corvina::test
