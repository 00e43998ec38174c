#pragma once

// The text conversion of kernel32 whose refusals matter. A user keeps the table by reference: it
// must outlive the user.

#include <windows.h>

namespace corvina {

struct TextApi {
    decltype(&::WideCharToMultiByte) wideCharToMultiByte = &::WideCharToMultiByte;
};

inline const TextApi systemTextApi;

} // namespace corvina
