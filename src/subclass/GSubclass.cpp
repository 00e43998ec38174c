#include "subclass/GSubclass.h"

#include "com/Guard.h"
#include "subclass/MSubclass.h"

namespace corvina {
namespace {

template <typename Body>
[[nodiscard]] HRESULT entry(Body&& body) noexcept {
    return guarded(__uuidof(_GSubclass), L"Corvina.GSubclass", std::forward<Body>(body));
}

[[nodiscard]] HWND handleOf(long number) noexcept {
    return reinterpret_cast<HWND>(static_cast<LONG_PTR>(number));
}

[[nodiscard]] ISubclass* clientOf(ISubclass** reference) noexcept {
    return reference ? *reference : nullptr;
}

} // namespace

HRESULT GSubclass::AttachMessage(ISubclass** iwp, long hWnd, long iMsg) {
    return entry([&] { MSubclass::AttachMessage(clientOf(iwp), handleOf(hWnd), iMsg); });
}

HRESULT GSubclass::DetachMessage(ISubclass** iwp, long hWnd, long iMsg) {
    return entry([&] { MSubclass::DetachMessage(clientOf(iwp), handleOf(hWnd), iMsg); });
}

HRESULT GSubclass::get_CurrentMessage(long* result) {
    if (!result)
        return E_POINTER;
    *result = MSubclass::CurrentMessage();
    return S_OK;
}

HRESULT GSubclass::CallOldWindowProc(long hWnd, long iMsg, long wParam, long lParam, long* result) {
    if (!result)
        return E_POINTER;
    *result = 0;
    return entry([&] {
        *result = static_cast<long>(MSubclass::CallOldWindowProc(
            handleOf(hWnd), static_cast<UINT>(iMsg), static_cast<WPARAM>(wParam), lParam));
    });
}

HRESULT GSubclass::InterfaceSupportsErrorInfo(REFIID iid) {
    return iid == __uuidof(_GSubclass) ? S_OK : S_FALSE;
}

} // namespace corvina
