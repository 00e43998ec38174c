#include "player/ExceptionReport.h"

#include "player/PlayerEvents.h"
#include "runtime/RuntimeError.h"

#include <new>

namespace corvina {

void reportCurrentException(PlayerEvents& events) noexcept {
    constexpr const wchar_t* function = L"WindowProcOut";
    try {
        try {
            throw;
        } catch (const RuntimeError& error) {
            events.Err(function, error.number(), error.text());
        } catch (const std::bad_alloc&) {
            events.Err(function, 7, L"Out of memory");
        } catch (...) {
            events.Err(function, 51, L"Internal error");
        }
    } catch (const std::bad_alloc&) {
        // There is no memory for the report itself; the end of the playback says enough.
    }
}

} // namespace corvina
