#pragma once

// The Windows Media reader used as plainly as can be, to compare the source with: its first output
// in its first format, block after block.

#include "com/ComPtr.h"

#include <cstdint>
#include <string>
#include <vector>
#include <windows.h>

#include <wmsdk.h>

namespace corvina::test {

class BareReader {
public:
    // Null if there is none.
    [[nodiscard]] static ComPtr<IWMSyncReader> create() {
        using Create = HRESULT(WINAPI*)(IUnknown*, DWORD, IWMSyncReader**);
        const HMODULE library = ::LoadLibraryW(L"wmvcore.dll");
        const auto createReader = reinterpret_cast<Create>(
            reinterpret_cast<void*>(::GetProcAddress(library, "WMCreateSyncReader")));
        ComPtr<IWMSyncReader> reader;
        if (createReader)
            (void)createReader(nullptr, 1, reader.put());
        return reader;
    }

    explicit BareReader(const std::wstring& file) : reader_(create()) {
        ComPtr<IWMOutputMediaProps> props;
        opened_ = reader_ && reader_->Open(file.c_str()) == S_OK &&
                  reader_->GetOutputFormat(0, 0, props.put()) == S_OK &&
                  reader_->SetOutputProps(0, props.get()) == S_OK;
    }
    BareReader(const BareReader&) = delete;
    BareReader& operator=(const BareReader&) = delete;
    ~BareReader() {
        if (opened_)
            reader_->Close();
    }

    [[nodiscard]] bool opened() const noexcept { return opened_; }
    [[nodiscard]] IWMSyncReader& reader() const noexcept { return *reader_.get(); }

    // The next block's bytes go to take(data, length); false at the end.
    template <typename Take>
    [[nodiscard]] bool next(Take take) {
        ComPtr<INSSBuffer> buffer;
        QWORD duration = 0;
        DWORD flags = 0;
        DWORD output = 0;
        BYTE* data = nullptr;
        DWORD length = 0;
        if (reader_->GetNextSample(0, buffer.put(), &time_, &duration, &flags, &output, nullptr) !=
                S_OK ||
            buffer->GetBufferAndLength(&data, &length) != S_OK)
            return false;
        take(data, length);
        return true;
    }

    // Of the block that came last, in units of 100 nanoseconds.
    [[nodiscard]] QWORD time() const noexcept { return time_; }

    [[nodiscard]] std::vector<std::uint8_t> rest() {
        std::vector<std::uint8_t> bytes;
        while (next([&](const BYTE* data, DWORD length) {
            bytes.insert(bytes.end(), data, data + length);
        })) {
        }
        return bytes;
    }

private:
    ComPtr<IWMSyncReader> reader_;
    QWORD time_ = 0;
    bool opened_ = false;
};

} // namespace corvina::test
