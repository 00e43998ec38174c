#include "control/AboutBox.h"

#define CORVINA_WIDEN(text) L##text
#define CORVINA_WIDE(text) CORVINA_WIDEN(text)

namespace corvina {

void showAboutBox(HWND owner) {
    ::MessageBoxW(owner,
                  L"Corvina " CORVINA_WIDE(CORVINA_VERSION) L"\n"
                                                            L"Audio player and graph controls\n\n"
                                                            L"Free software under the MIT licence.",
                  L"About Corvina", MB_OK | MB_ICONINFORMATION);
}

} // namespace corvina
