#pragma once

// A file header that passes every call on to another one, except those that the derived class
// implements itself.

#include <windows.h>

#include <wmsdk.h>

namespace corvina::wine {

class ForwardedHeader : public IWMHeaderInfo3 {
protected:
    // Belongs to the derived class.
    IWMHeaderInfo3* inner_ = nullptr;

public:
    HRESULT STDMETHODCALLTYPE GetAttributeCount(WORD streamNum, WORD* attributes) override {
        return inner_->GetAttributeCount(streamNum, attributes);
    }
    HRESULT STDMETHODCALLTYPE GetAttributeByIndex(WORD index, WORD* streamNum, WCHAR* name,
                                                  WORD* nameLen, WMT_ATTR_DATATYPE* type,
                                                  BYTE* value, WORD* length) override {
        return inner_->GetAttributeByIndex(index, streamNum, name, nameLen, type, value, length);
    }
    HRESULT STDMETHODCALLTYPE GetAttributeByName(WORD* streamNum, LPCWSTR name,
                                                 WMT_ATTR_DATATYPE* type, BYTE* value,
                                                 WORD* length) override {
        return inner_->GetAttributeByName(streamNum, name, type, value, length);
    }
    HRESULT STDMETHODCALLTYPE SetAttribute(WORD streamNum, LPCWSTR name, WMT_ATTR_DATATYPE type,
                                           const BYTE* value, WORD length) override {
        return inner_->SetAttribute(streamNum, name, type, value, length);
    }
    HRESULT STDMETHODCALLTYPE GetMarkerCount(WORD* markers) override {
        return inner_->GetMarkerCount(markers);
    }
    HRESULT STDMETHODCALLTYPE GetMarker(WORD index, WCHAR* markerName, WORD* markerLen,
                                        QWORD* markerTime) override {
        return inner_->GetMarker(index, markerName, markerLen, markerTime);
    }
    HRESULT STDMETHODCALLTYPE AddMarker(LPCWSTR_WMSDK_TYPE_SAFE markerName,
                                        QWORD markerTime) override {
        return inner_->AddMarker(markerName, markerTime);
    }
    HRESULT STDMETHODCALLTYPE RemoveMarker(WORD index) override {
        return inner_->RemoveMarker(index);
    }
    HRESULT STDMETHODCALLTYPE GetScriptCount(WORD* scripts) override {
        return inner_->GetScriptCount(scripts);
    }
    HRESULT STDMETHODCALLTYPE GetScript(WORD index, WCHAR* type, WORD* typeLen, WCHAR* command,
                                        WORD* commandLen, QWORD* scriptTime) override {
        return inner_->GetScript(index, type, typeLen, command, commandLen, scriptTime);
    }
    HRESULT STDMETHODCALLTYPE AddScript(LPCWSTR_WMSDK_TYPE_SAFE type,
                                        LPCWSTR_WMSDK_TYPE_SAFE command,
                                        QWORD scriptTime) override {
        return inner_->AddScript(type, command, scriptTime);
    }
    HRESULT STDMETHODCALLTYPE RemoveScript(WORD index) override {
        return inner_->RemoveScript(index);
    }
    HRESULT STDMETHODCALLTYPE GetCodecInfoCount(DWORD* codecInfos) override {
        return inner_->GetCodecInfoCount(codecInfos);
    }
    HRESULT STDMETHODCALLTYPE GetCodecInfo(DWORD index, WORD* nameLen, WCHAR* name,
                                           WORD* descriptionLen, WCHAR* description,
                                           WMT_CODEC_INFO_TYPE* codecType, WORD* codecInfoCnt,
                                           BYTE* codecInfo) override {
        return inner_->GetCodecInfo(index, nameLen, name, descriptionLen, description, codecType,
                                    codecInfoCnt, codecInfo);
    }
    HRESULT STDMETHODCALLTYPE GetAttributeIndices(WORD streamNum, LPCWSTR name, WORD* langIndex,
                                                  WORD* indices, WORD* count) override {
        return inner_->GetAttributeIndices(streamNum, name, langIndex, indices, count);
    }
    HRESULT STDMETHODCALLTYPE ModifyAttribute(WORD streamNum, WORD index, WMT_ATTR_DATATYPE type,
                                              WORD langIndex, const BYTE* value,
                                              DWORD length) override {
        return inner_->ModifyAttribute(streamNum, index, type, langIndex, value, length);
    }
    HRESULT STDMETHODCALLTYPE AddAttribute(WORD streamNum, LPCWSTR name, WORD* index,
                                           WMT_ATTR_DATATYPE type, WORD langIndex,
                                           const BYTE* value, DWORD length) override {
        return inner_->AddAttribute(streamNum, name, index, type, langIndex, value, length);
    }
    HRESULT STDMETHODCALLTYPE DeleteAttribute(WORD streamNum, WORD index) override {
        return inner_->DeleteAttribute(streamNum, index);
    }
    HRESULT STDMETHODCALLTYPE AddCodecInfo(LPCWSTR_WMSDK_TYPE_SAFE name,
                                           LPCWSTR_WMSDK_TYPE_SAFE description,
                                           WMT_CODEC_INFO_TYPE codecType, WORD codecInfoCnt,
                                           BYTE* codecInfo) override {
        return inner_->AddCodecInfo(name, description, codecType, codecInfoCnt, codecInfo);
    }
};

} // namespace corvina::wine
