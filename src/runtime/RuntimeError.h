#pragma once

// A failure of the component framework: overflow, bad index, object not set and the like.
//
// It may be thrown anywhere inside the library and never leaves it: the guard at each COM entry
// point turns it into an HRESULT with error information, and the handler of a window message
// reports it through the Err event.

#include <cstdint>
#include <exception>
#include <string>

namespace corvina {

class RuntimeError : public std::exception {
public:
    // number: one of the framework's own numbers (positive, below 1001), or a complete HRESULT
    // (negative) for errors that have a base of their own.
    // source: the name a host sees as the error's source; empty for the library's own.
    RuntimeError(std::int32_t number, std::wstring text, std::wstring source = {});

    [[nodiscard]] std::int32_t number() const noexcept { return number_; }
    [[nodiscard]] const std::wstring& text() const noexcept { return text_; }
    [[nodiscard]] const std::wstring& source() const noexcept { return source_; }
    [[nodiscard]] const char* what() const noexcept override { return "run-time error"; }

private:
    std::int32_t number_;
    std::wstring text_;
    std::wstring source_;
};

// The framework's own numbers with their standard texts.
[[noreturn]] void throwInvalidCall();                               // 5
[[noreturn]] void throwOverflow();                                  // 6
[[noreturn]] void throwSubscript();                                 // 9
[[noreturn]] void throwDivisionByZero();                            // 11
[[noreturn]] void throwCannotLoadLibrary(const std::wstring& name); // 53, names the file
[[noreturn]] void throwObjectNotSet();                              // 91

} // namespace corvina
