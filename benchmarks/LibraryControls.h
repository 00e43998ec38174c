#pragma once

// The controls of the library that was built, whether registered or not, and a form for them.

#include "Figure.h"
#include "com/ComPtr.h"

#include <windows.h>

namespace corvina::bench {

[[nodiscard]] ComPtr<IUnknown> createUnknown(REFCLSID clsid);

// Ends the program if there is no such class or interface.
template <typename Interface>
[[nodiscard]] ComPtr<Interface> createControl(REFCLSID clsid) {
    auto control = createUnknown(clsid).query<Interface>();
    if (!control)
        giveUp("a control cannot be created");
    return control;
}

// A visible window of that size, filled by the control in the system's own container.
class Form {
public:
    Form(IUnknown* control, SIZE size);
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    ~Form();

private:
    HWND window_ = nullptr;
    ComPtr<IUnknown> host_;
};

} // namespace corvina::bench
