#include "subclass/MSubclass.h"

#include "com/ComPtr.h"
#include "com/Module.h"
#include "platform/ModulePath.h"
#include "runtime/RuntimeError.h"
#include "subclass/WindowProperties.h"

#include <optional>
#include <string>

namespace corvina::MSubclass {
namespace {

void discard(const char*) {}

LRESULT CALLBACK sharedProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

const WindowApi* api = &systemWindowApi;
Trace traceTo = &discard;
std::int32_t currentMessage = 0;

[[nodiscard]] WindowProperties propertiesOf(HWND window) noexcept {
    return {window, *api, traceTo};
}

// The host program's file name without folder and extension.
[[nodiscard]] std::wstring hostProgramName() {
    const std::wstring path = modulePath(nullptr);
    const std::wstring name = path.substr(path.find_last_of(L"\\/") + 1);
    return name.substr(0, name.rfind(L'.'));
}

[[noreturn]] void raise(std::int32_t number) {
    const wchar_t* text = L"";
    switch (number) {
    case ErrorNumber::cannotSubclass:
        text = L"Can't subclass window";
        break;
    case ErrorNumber::alreadyHandled:
        text = L"Message already handled by another class";
        break;
    case ErrorNumber::invalidWindow:
        text = L"Invalid window";
        break;
    case ErrorNumber::externalWindow:
        text = L"Can't modify external window";
        break;
    }
    throw RuntimeError(errorBase + number, text, hostProgramName() + L".WindowProc");
}

// 0 for a window of this process, otherwise the error that attaching to it raises.
[[nodiscard]] std::int32_t checkWindow(HWND window) noexcept {
    if (!api->isWindow(window))
        return ErrorNumber::invalidWindow;
    DWORD process = 0;
    api->getWindowThreadProcessId(window, &process);
    return process == api->getCurrentProcessId() ? 0 : ErrorNumber::externalWindow;
}

[[nodiscard]] LONG numberOf(WNDPROC procedure) noexcept {
    return static_cast<LONG>(reinterpret_cast<LONG_PTR>(reinterpret_cast<void*>(procedure)));
}

WNDPROC installProcedure(HWND window, WNDPROC procedure) noexcept {
    return reinterpret_cast<WNDPROC>(
        static_cast<LONG_PTR>(api->setWindowLong(window, GWL_WNDPROC, numberOf(procedure))));
}

// Whether a procedure that was installed after the shared one calls it.
[[nodiscard]] bool isBelowAnother(HWND window) noexcept {
    const LONG current = api->getWindowLong(window, GWL_WNDPROC);
    return current != 0 && current != numberOf(&sharedProcedure);
}

// Gives the window its old procedure back and forgets it. If another component has put a procedure
// of its own over the shared one since, giving the old one back would cut that component off, and
// it goes on calling the shared one. So the shared one then stays in the chain and passes every
// message on, and the module stays loaded.
void restoreProcedure(HWND window, WindowProperties& properties) noexcept {
    if (const WNDPROC old = properties.oldProcedure()) {
        if (isBelowAnother(window))
            return;
        installProcedure(window, old);
        thisModule().unlock();
    }
    properties.setOldProcedure(nullptr);
}

// At the end of the window.
void forgetProcedure(HWND window, WindowProperties& properties) noexcept {
    restoreProcedure(window, properties);
    if (properties.oldProcedure()) {
        thisModule().unlock();
        properties.setOldProcedure(nullptr);
    }
}

[[nodiscard]] std::optional<std::int32_t> findClient(const WindowProperties& properties,
                                                     std::int32_t message, std::int32_t count,
                                                     const ISubclass* client) noexcept {
    for (std::int32_t i = 1; i <= count; ++i)
        if (properties.client(message, i) == client)
            return i;
    return std::nullopt;
}

// A client whose property fails does not keep its messages from the window.
[[nodiscard]] EMsgResponse responseOf(ISubclass& client) noexcept {
    EMsgResponse response = emrPostProcess;
    return SUCCEEDED(client.get_MsgResponse(&response)) ? response : emrPostProcess;
}

// Lets the clients of a message handle it, the one attached last first. They may attach, detach and
// destroy the window meanwhile, so each is looked up when its turn comes.
LRESULT dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam, WNDPROC old,
                 std::int32_t count) noexcept {
    const auto number = static_cast<std::int32_t>(message);
    const WindowProperties properties = propertiesOf(window);
    LRESULT result = 0;
    bool oldCalled = false;
    const auto callOld = [&] {
        oldCalled = true;
        result = api->callWindowProc(old, window, message, wParam, lParam);
    };

    ComPtr<ISubclass> client;
    for (std::int32_t i = count; i >= 1; --i) {
        client = ComPtr<ISubclass>(properties.client(number, i));
        if (!client)
            continue;
        currentMessage = number;
        if (i == 1 && !oldCalled && responseOf(*client.get()) == emrPreprocess)
            callOld();
        long returned = 0;
        const auto longOf = [](auto value) { return static_cast<long>(value); };
        if (SUCCEEDED(client->WindowProc(longOf(reinterpret_cast<LONG_PTR>(window)),
                                         longOf(message), longOf(wParam), longOf(lParam),
                                         &returned)))
            result = returned;
    }
    if (client && !oldCalled && api->isWindow(window) &&
        responseOf(*client.get()) == emrPostProcess)
        callOld();
    return result;
}

// The procedure of every subclassed window.
LRESULT CALLBACK sharedProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    WindowProperties properties = propertiesOf(window);
    const WNDPROC old = properties.oldProcedure();
    if (!old)
        return 0;
    std::int32_t count = properties.clientCount(static_cast<std::int32_t>(message));
    // The entries of a window whose procedure only passes messages on are of no client any more.
    if (count >= 1 && properties.attachmentCount() == 0)
        count = 0;
    if (message == WM_DESTROY && count < 1 && properties.attachmentCount() > 0) {
        // The clients' entries stay: whoever detaches later still finds its own.
        restoreProcedure(window, properties);
        properties.setAttachmentCount(0);
    }
    const LRESULT result = count >= 1 ? dispatch(window, message, wParam, lParam, old, count)
                                      : api->callWindowProc(old, window, message, wParam, lParam);
    // If a client handles WM_DESTROY, the procedure is still in place. This message is the last
    // one, so nobody calls the shared procedure after it.
    if (message == WM_NCDESTROY)
        forgetProcedure(window, properties);
    return result;
}

} // namespace

void AttachMessage(ISubclass* client, HWND window, std::int32_t message) {
    if (const std::int32_t error = checkWindow(window))
        raise(error);
    if (!client)
        throwInvalidCall();
    WindowProperties properties = propertiesOf(window);
    const std::int32_t count = properties.clientCount(message);
    if (findClient(properties, message, count, client))
        raise(ErrorNumber::alreadyHandled);

    const auto forgetClient = [&] {
        properties.setClient(message, count + 1, nullptr);
        properties.setClientCount(message, count);
    };
    properties.setClientCount(message, count + 1);
    if (!properties.accepted())
        throwInvalidCall();
    properties.setClient(message, count + 1, client);
    if (!properties.accepted()) {
        properties.setClientCount(message, count);
        throwInvalidCall();
    }
    if (!properties.oldProcedure()) {
        const WNDPROC old = installProcedure(window, &sharedProcedure);
        if (!old) {
            forgetClient();
            raise(ErrorNumber::cannotSubclass);
        }
        // If the property could not be read, the window has the shared procedure already: stored as
        // the old one it would call itself without end.
        if (old != &sharedProcedure) {
            properties.setOldProcedure(old);
            if (!properties.accepted()) {
                installProcedure(window, old);
                forgetClient();
                throwInvalidCall();
            }
            // The code of the shared procedure must stay loaded while a window has it.
            thisModule().lock();
        }
    }
    properties.setAttachmentCount(properties.attachmentCount() + 1);
    if (!properties.accepted()) {
        forgetClient();
        if (properties.attachmentCount() == 0)
            restoreProcedure(window, properties);
        throwInvalidCall();
    }
}

void DetachMessage(ISubclass* client, HWND window, std::int32_t message) noexcept {
    if (checkWindow(window) != 0)
        return;
    WindowProperties properties = propertiesOf(window);
    const std::int32_t count = properties.clientCount(message);
    const std::optional<std::int32_t> found = findClient(properties, message, count, client);
    if (!found)
        return;
    for (std::int32_t i = *found; i < count; ++i)
        properties.setClient(message, i, properties.client(message, i + 1));
    properties.setClient(message, count, nullptr);
    properties.setClientCount(message, count - 1);

    // 0 after the window's own cleanup at WM_DESTROY.
    const std::int32_t attachments = properties.attachmentCount();
    if (attachments == 1)
        restoreProcedure(window, properties);
    if (attachments > 0)
        properties.setAttachmentCount(attachments - 1);
}

bool isSubclassed(HWND window) noexcept {
    const WindowProperties properties = propertiesOf(window);
    return properties.oldProcedure() && properties.attachmentCount() > 0;
}

std::int32_t CurrentMessage() noexcept {
    return currentMessage;
}

LRESULT CallOldWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    // A window of another process has an address of that process in its property.
    if (checkWindow(window) != 0)
        return 0;
    const WNDPROC old = propertiesOf(window).oldProcedure();
    return old ? api->callWindowProc(old, window, message, wParam, lParam) : 0;
}

void useWindowApi(const WindowApi* windows) noexcept {
    api = windows ? windows : &systemWindowApi;
}

void useTrace(Trace trace) noexcept {
    traceTo = trace ? trace : &discard;
}

} // namespace corvina::MSubclass
