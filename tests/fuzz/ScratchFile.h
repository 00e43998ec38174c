#pragma once

// A file whose content is replaced for every run, without opening it anew.

#include "fuzz/FuzzTarget.h"

#include <string>
#include <windows.h>

namespace corvina::fuzz {

class ScratchFile {
public:
    explicit ScratchFile(const wchar_t* name) {
        wchar_t folder[MAX_PATH];
        (void)::GetTempPathW(MAX_PATH, folder);
        const std::wstring path =
            folder + (L"corvina" + std::to_wstring(::GetCurrentProcessId())) + name;
        file_ = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr,
                              CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        require(file_ != INVALID_HANDLE_VALUE, "a temporary file can be made");
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { ::CloseHandle(file_); }

    void fill(std::span<const std::uint8_t> content) {
        DWORD written = 0;
        ::SetFilePointer(file_, 0, nullptr, FILE_BEGIN);
        const BOOL good = ::WriteFile(file_, content.data(), static_cast<DWORD>(content.size()),
                                      &written, nullptr);
        require(good && written == content.size() && ::SetEndOfFile(file_),
                "a temporary file can be written");
        ::SetFilePointer(file_, 0, nullptr, FILE_BEGIN);
    }
    [[nodiscard]] HANDLE handle() const { return file_; }

private:
    HANDLE file_;
};

} // namespace corvina::fuzz
