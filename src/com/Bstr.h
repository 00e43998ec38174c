#pragma once

// Texts at the COM boundary. A BSTR may be null, which means empty, and may hold characters of code
// 0.

#include "runtime/OutOfMemory.h"

#include <string>
#include <string_view>
#include <utility>
#include <windows.h>

#include <oleauto.h>

namespace corvina {

[[nodiscard]] inline std::wstring_view viewOf(BSTR text) noexcept {
    return text ? std::wstring_view(text, ::SysStringLen(text)) : std::wstring_view();
}

[[nodiscard]] inline std::wstring textOf(BSTR text) {
    return std::wstring(viewOf(text));
}

// Owns a BSTR; an empty text is an empty BSTR, not a null one.
class Bstr {
public:
    Bstr() noexcept = default;
    explicit Bstr(std::wstring_view text)
        : text_(allocated(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size())))) {}
    Bstr(Bstr&& other) noexcept : text_(other.detach()) {}
    Bstr& operator=(Bstr other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Bstr() { ::SysFreeString(text_); }

    [[nodiscard]] BSTR get() const noexcept { return text_; }
    [[nodiscard]] BSTR* put() noexcept {
        ::SysFreeString(detach());
        return &text_;
    }
    // Gives the text to the caller, who frees it.
    [[nodiscard]] BSTR detach() noexcept { return std::exchange(text_, nullptr); }

private:
    BSTR text_ = nullptr;
};

} // namespace corvina
