#pragma once

// A Windows code page, by its number.

#include "platform/TextApi.h"

#include <array>
#include <string>
#include <string_view>

namespace corvina {

struct AnsiText {
    std::string text;
    // A character has no equal in the code page, or the text holds a character of code 0. The
    // converted text then means something else (a question mark is a wildcard in a file name).
    bool lossy = false;
};

class CodePage {
public:
    explicit CodePage(unsigned number, const TextApi& texts = systemTextApi) noexcept;

    [[nodiscard]] AnsiText encode(std::wstring_view text) const;
    [[nodiscard]] std::wstring decode(std::string_view text) const;
    // One character for each byte, even if the code page encodes a character in two bytes. In UTF-8
    // a single byte from 0x80 on is no character, so there the text is decoded as decode() does.
    [[nodiscard]] std::wstring decodeBytes(std::string_view bytes) const;

private:
    [[nodiscard]] bool isUtf8() const noexcept;

    const unsigned number_;
    const TextApi& texts_;
    // The character of each byte, asked for once: a tag may hold a million texts.
    std::array<wchar_t, 256> characters_{};
};

} // namespace corvina
