#include "stream/cDLL.h"

#include "platform/CodeMemory.h"
#include "runtime/RuntimeError.h"
#include "stream/CallStub.h"
#include "stream/LibrarySearch.h"

namespace corvina {
namespace {

std::uint32_t addressOf(const void* pointer) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

} // namespace

std::int32_t cDLL::ModuleHandle() const noexcept {
    return static_cast<std::int32_t>(addressOf(module_));
}

bool cDLL::LoadDLL(const std::wstring& name) {
    cdecl_ = false;
    module_ = loadOptionalLibrary(api_, name).release();
    return module_ != nullptr;
}

void cDLL::UnloadDLL() noexcept {
    // Also without a library, which the system refuses harmlessly.
    api_.freeLibrary(module_);
    module_ = nullptr;
}

std::int32_t cDLL::CallFunc(const char* name, std::span<const std::int32_t> arguments) {
    // The system would look a missing library's exports up in the host program.
    const FARPROC found = module_ ? api_.getProcAddress(module_, name) : nullptr;
    if (!found)
        throw RuntimeError(1, L"Export missing!");

    const std::uint32_t target = addressOf(reinterpret_cast<const void*>(found));
    CodePiece piece(target);
    const CallStub stub = cdecl_ ? makeCdeclStub(target, arguments)
                                 : makeStdcallStub(addressOf(piece.entry()), target, arguments);
    piece.write(stub.code());
    return static_cast<std::int32_t>(
        api_.callWindowProc(reinterpret_cast<WNDPROC>(addressOf(piece.entry())), nullptr, 0, 0, 0));
}

} // namespace corvina
