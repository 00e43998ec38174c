#pragma once

// A folder of a test's own, deleted with all its files when the test ends.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

namespace corvina::test {

class TempFolder {
public:
    TempFolder() {
        wchar_t base[MAX_PATH];
        if (::GetTempPathW(MAX_PATH, base) == 0)
            throw std::runtime_error("no folder for temporary files");
        static int number = 0;
        do
            path_ = base + (L"corvina" + std::to_wstring(::GetCurrentProcessId()) + L"_") +
                    std::to_wstring(++number);
        while (::CreateDirectoryW(path_.c_str(), nullptr) == 0 && number < 1000);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        for (const std::wstring& file : files_)
            ::DeleteFileW(file.c_str());
        ::RemoveDirectoryW(path_.c_str());
    }

    [[nodiscard]] const std::wstring& path() const noexcept { return path_; }

    // The path of a file of that name, which is deleted with the folder.
    [[nodiscard]] std::wstring file(const std::wstring& name) {
        files_.push_back(path_ + L"\\" + name);
        return files_.back();
    }

    // Writes a file; its path.
    std::wstring write(const std::wstring& name, const std::vector<std::uint8_t>& bytes) {
        std::wstring path = file(name);
        const HANDLE handle =
            ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        const bool good = handle != INVALID_HANDLE_VALUE &&
                          ::WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()),
                                      &written, nullptr) != 0;
        const DWORD error = ::GetLastError();
        ::CloseHandle(handle);
        if (!good || written != bytes.size())
            throw std::runtime_error(
                error == ERROR_SHARING_VIOLATION
                    ? "a temporary file cannot be written while something has it open"
                    : "a temporary file could not be written: error " + std::to_string(error));
        return path;
    }

private:
    std::wstring path_;
    std::vector<std::wstring> files_;
};

} // namespace corvina::test
