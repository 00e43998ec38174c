#include "platform/AnsiText.h"

#include <windows.h>

namespace corvina {
namespace {

const CodePage& systemCodePage() {
    static const CodePage page(::GetACP());
    return page;
}

} // namespace

AnsiText toAnsi(std::wstring_view text) {
    return systemCodePage().encode(text);
}

std::wstring fromAnsi(std::string_view text) {
    return systemCodePage().decode(text);
}

std::wstring fromAnsiBytes(std::string_view bytes) {
    return systemCodePage().decodeBytes(bytes);
}

} // namespace corvina
