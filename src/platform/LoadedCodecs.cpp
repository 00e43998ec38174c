#include "platform/LoadedCodecs.h"

#include <new>

namespace corvina {

LoadedCodecs::LoadedCodecs(const AcmApi& acm) noexcept : acm_(acm) {
    acm.driverEnum(&onCodec, reinterpret_cast<DWORD_PTR>(this), 0);
}

LoadedCodecs::~LoadedCodecs() {
    for (const HACMDRIVER driver : drivers_)
        acm_.driverClose(driver, 0);
}

BOOL CALLBACK LoadedCodecs::onCodec(HACMDRIVERID codec, DWORD_PTR instance, DWORD) noexcept {
    auto& self = *reinterpret_cast<LoadedCodecs*>(instance);
    HACMDRIVER driver = nullptr;
    if (self.acm_.driverOpen(&driver, codec, 0) != 0)
        return TRUE;
    try {
        self.drivers_.push_back(driver);
    } catch (const std::bad_alloc&) {
        self.acm_.driverClose(driver, 0);
    }
    return TRUE;
}

} // namespace corvina
