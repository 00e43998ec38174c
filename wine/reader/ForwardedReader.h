#pragma once

// A synchronous reader that passes every call on to another one, except those that the derived
// class implements itself.

#include <windows.h>

#include <wmsdk.h>

namespace corvina::wine {

class ForwardedReader : public IWMSyncReader2 {
protected:
    // Belongs to the derived class.
    IWMSyncReader2* inner_ = nullptr;

public:
    HRESULT STDMETHODCALLTYPE Close() override { return inner_->Close(); }
    HRESULT STDMETHODCALLTYPE SetRange(QWORD startTime, LONGLONG duration) override {
        return inner_->SetRange(startTime, duration);
    }
    HRESULT STDMETHODCALLTYPE GetNextSample(WORD streamNum, INSSBuffer** sample, QWORD* sampleTime,
                                            QWORD* duration, DWORD* flags, DWORD* outputNum,
                                            WORD* sampleStream) override {
        return inner_->GetNextSample(streamNum, sample, sampleTime, duration, flags, outputNum,
                                     sampleStream);
    }
    HRESULT STDMETHODCALLTYPE SetStreamsSelected(WORD streamCount, WORD* streamNumbers,
                                                 WMT_STREAM_SELECTION* selections) override {
        return inner_->SetStreamsSelected(streamCount, streamNumbers, selections);
    }
    HRESULT STDMETHODCALLTYPE GetStreamSelected(WORD streamNum,
                                                WMT_STREAM_SELECTION* selection) override {
        return inner_->GetStreamSelected(streamNum, selection);
    }
    HRESULT STDMETHODCALLTYPE SetReadStreamSamples(WORD streamNum, BOOL compressed) override {
        return inner_->SetReadStreamSamples(streamNum, compressed);
    }
    HRESULT STDMETHODCALLTYPE GetReadStreamSamples(WORD streamNum, BOOL* compressed) override {
        return inner_->GetReadStreamSamples(streamNum, compressed);
    }
    HRESULT STDMETHODCALLTYPE GetOutputSetting(DWORD outputNum, LPCWSTR name,
                                               WMT_ATTR_DATATYPE* type, BYTE* value,
                                               WORD* length) override {
        return inner_->GetOutputSetting(outputNum, name, type, value, length);
    }
    HRESULT STDMETHODCALLTYPE SetOutputSetting(DWORD outputNum, LPCWSTR name,
                                               WMT_ATTR_DATATYPE type, const BYTE* value,
                                               WORD length) override {
        return inner_->SetOutputSetting(outputNum, name, type, value, length);
    }
    HRESULT STDMETHODCALLTYPE GetOutputCount(DWORD* outputs) override {
        return inner_->GetOutputCount(outputs);
    }
    HRESULT STDMETHODCALLTYPE GetOutputProps(DWORD outputNum,
                                             IWMOutputMediaProps** output) override {
        return inner_->GetOutputProps(outputNum, output);
    }
    HRESULT STDMETHODCALLTYPE SetOutputProps(DWORD outputNum,
                                             IWMOutputMediaProps* output) override {
        return inner_->SetOutputProps(outputNum, output);
    }
    HRESULT STDMETHODCALLTYPE GetOutputFormatCount(DWORD outputNum, DWORD* formats) override {
        return inner_->GetOutputFormatCount(outputNum, formats);
    }
    HRESULT STDMETHODCALLTYPE GetOutputFormat(DWORD outputNum, DWORD formatNum,
                                              IWMOutputMediaProps** props) override {
        return inner_->GetOutputFormat(outputNum, formatNum, props);
    }
    HRESULT STDMETHODCALLTYPE GetOutputNumberForStream(WORD streamNum, DWORD* outputNum) override {
        return inner_->GetOutputNumberForStream(streamNum, outputNum);
    }
    HRESULT STDMETHODCALLTYPE GetStreamNumberForOutput(DWORD outputNum, WORD* streamNum) override {
        return inner_->GetStreamNumberForOutput(outputNum, streamNum);
    }
    HRESULT STDMETHODCALLTYPE GetMaxOutputSampleSize(DWORD output, DWORD* max) override {
        return inner_->GetMaxOutputSampleSize(output, max);
    }
    HRESULT STDMETHODCALLTYPE GetMaxStreamSampleSize(WORD stream, DWORD* max) override {
        return inner_->GetMaxStreamSampleSize(stream, max);
    }
    HRESULT STDMETHODCALLTYPE SetRangeByTimecode(WORD streamNum, WMT_TIMECODE_EXTENSION_DATA* start,
                                                 WMT_TIMECODE_EXTENSION_DATA* end) override {
        return inner_->SetRangeByTimecode(streamNum, start, end);
    }
    HRESULT STDMETHODCALLTYPE SetRangeByFrameEx(WORD streamNum, QWORD frameNumber,
                                                LONGLONG framesToRead, QWORD* startTime) override {
        return inner_->SetRangeByFrameEx(streamNum, frameNumber, framesToRead, startTime);
    }
    HRESULT STDMETHODCALLTYPE SetAllocateForOutput(DWORD outputNum,
                                                   IWMReaderAllocatorEx* allocator) override {
        return inner_->SetAllocateForOutput(outputNum, allocator);
    }
    HRESULT STDMETHODCALLTYPE GetAllocateForOutput(DWORD outputNum,
                                                   IWMReaderAllocatorEx** allocator) override {
        return inner_->GetAllocateForOutput(outputNum, allocator);
    }
    HRESULT STDMETHODCALLTYPE SetAllocateForStream(DWORD streamNum,
                                                   IWMReaderAllocatorEx* allocator) override {
        return inner_->SetAllocateForStream(streamNum, allocator);
    }
    HRESULT STDMETHODCALLTYPE GetAllocateForStream(DWORD streamNum,
                                                   IWMReaderAllocatorEx** allocator) override {
        return inner_->GetAllocateForStream(streamNum, allocator);
    }
};

} // namespace corvina::wine
