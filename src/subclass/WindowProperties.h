#pragma once

// What the subclassing keeps in the property list of a window:
//   "C" + window                          attachments over all messages
//   window                                the old window procedure
//   window + "#" + message + "C"          clients of one message
//   window + "#" + message + "#" + index  the address of one of them
// Windows and messages are decimal numbers in these names. A property that would become 0 is
// removed; one that does not exist reads as 0.

#include <cstdint>
#include <windows.h>

#include "Corvina.h"
#include "platform/WindowApi.h"

namespace corvina {

class WindowProperties {
public:
    using Trace = void (*)(const char* text);

    WindowProperties(HWND window, const WindowApi& windows, Trace trace) noexcept
        : window_(window), windows_(windows), trace_(trace) {}

    // Attachments over all messages.
    [[nodiscard]] std::int32_t attachmentCount() const noexcept;
    void setAttachmentCount(std::int32_t count) noexcept;
    [[nodiscard]] WNDPROC oldProcedure() const noexcept;
    void setOldProcedure(WNDPROC procedure) noexcept;
    // Clients of one message.
    [[nodiscard]] std::int32_t clientCount(std::int32_t message) const noexcept;
    void setClientCount(std::int32_t message, std::int32_t count) noexcept;
    // index: from 1.
    [[nodiscard]] ISubclass* client(std::int32_t message, std::int32_t index) const noexcept;
    void setClient(std::int32_t message, std::int32_t index, ISubclass* client) noexcept;

    // Whether the platform accepted the property set last.
    [[nodiscard]] bool accepted() const noexcept { return accepted_; }

private:
    [[nodiscard]] std::int32_t handleNumber() const noexcept;
    [[nodiscard]] std::int32_t get(const char* name) const noexcept;
    void set(const char* name, std::int32_t value) noexcept;

    HWND window_;
    const WindowApi& windows_;
    Trace trace_;
    bool accepted_ = true;
};

} // namespace corvina
