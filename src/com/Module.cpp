#include "com/Module.h"

namespace corvina {

HINSTANCE Module::handle() const noexcept {
    HMODULE handle = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<const wchar_t*>(&corvina::thisModule), &handle);
    return handle;
}

Module& thisModule() noexcept {
    static Module instance;
    return instance;
}

} // namespace corvina
