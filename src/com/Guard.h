#pragma once

// The boundary of every COM entry point: nothing is thrown into a host.

#include <type_traits>
#include <utility>
#include <windows.h>

namespace corvina {

// Turns the exception being handled into an HRESULT and, for a run-time error, sets the thread's
// error information: the framework's own numbers become 0x800A0000 + number, complete HRESULTs
// stay, bad_alloc becomes E_OUTOFMEMORY, anything else E_UNEXPECTED. source is used if the error
// names none. Call it inside a catch block only.
[[nodiscard]] HRESULT currentExceptionToHresult(REFIID iid, const wchar_t* source) noexcept;

// Runs body, which returns an HRESULT or nothing (S_OK).
template <typename Body>
[[nodiscard]] HRESULT guarded(REFIID iid, const wchar_t* source, Body&& body) noexcept {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            std::forward<Body>(body)();
            return S_OK;
        } else {
            return std::forward<Body>(body)();
        }
    } catch (...) {
        return currentExceptionToHresult(iid, source);
    }
}

} // namespace corvina
