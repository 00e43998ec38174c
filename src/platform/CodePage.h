#pragma once

// A Windows code page, by its number.

#include "platform/TextApi.h"

#include <array>
#include <string>
#include <string_view>

namespace corvina {

struct AnsiText {
    std::string text;
    // Some character has no equal in the code page, or the text holds a character of code 0, so
    // that the converted text means something else (a question mark is a wildcard in a file name).
    bool lossy = false;
};

class CodePage {
public:
    explicit CodePage(unsigned number, const TextApi& texts = systemTextApi) noexcept;

    [[nodiscard]] AnsiText encode(std::wstring_view text) const;
    [[nodiscard]] std::wstring decode(std::string_view text) const;
    // One character for each byte, also where the code page joins two bytes to one character. In
    // UTF-8 bytes from 0x80 on are no characters by themselves, so the text is decoded as a whole.
    [[nodiscard]] std::wstring decodeBytes(std::string_view bytes) const;

private:
    [[nodiscard]] bool isUtf8() const noexcept;

    const unsigned number_;
    const TextApi& texts_;
    // What each byte stands for. A tag may hold a million texts: Windows is asked once.
    std::array<wchar_t, 256> characters_{};
};

} // namespace corvina
