#include "subclass/WindowProperties.h"

#include <array>
#include <cstdio>

namespace corvina {
namespace {

// Long enough for every name and trace text: they hold up to four 32-bit numbers. No memory is
// allocated, because nothing may fail while a message is handled.
using Line = std::array<char, 128>;

template <typename... Values>
[[nodiscard]] Line line(const char* format, Values... values) noexcept {
    Line text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text;
}

[[nodiscard]] int number(const void* address) noexcept {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(address));
}

[[nodiscard]] unsigned hex(int value) noexcept {
    return static_cast<unsigned>(value);
}

[[nodiscard]] Line clientCountName(int window, int message) noexcept {
    return line("%d#%dC", window, message);
}

[[nodiscard]] Line clientName(int window, int message, int index) noexcept {
    return line("%d#%d#%d", window, message, index);
}

} // namespace

std::int32_t WindowProperties::handleNumber() const noexcept {
    return number(window_);
}

std::int32_t WindowProperties::get(const char* name) const noexcept {
    return number(windows_.getProp(window_, name));
}

void WindowProperties::set(const char* name, std::int32_t value) noexcept {
    if (value == 0) {
        windows_.removeProp(window_, name);
        accepted_ = true;
    } else {
        const auto data = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(value));
        accepted_ = windows_.setProp(window_, name, data) != FALSE;
    }
}

std::int32_t WindowProperties::attachmentCount() const noexcept {
    return get(line("C%d", handleNumber()).data());
}

void WindowProperties::setAttachmentCount(std::int32_t count) noexcept {
    set(line("C%d", handleNumber()).data(), count);
    trace_(line("Changed message count for %X to %d", hex(handleNumber()), count).data());
}

WNDPROC WindowProperties::oldProcedure() const noexcept {
    return reinterpret_cast<WNDPROC>(
        static_cast<std::intptr_t>(get(line("%d", handleNumber()).data())));
}

void WindowProperties::setOldProcedure(WNDPROC procedure) noexcept {
    const int address = number(reinterpret_cast<const void*>(procedure));
    set(line("%d", handleNumber()).data(), address);
    trace_(line("Changed Window Proc for %X to %X", hex(handleNumber()), hex(address)).data());
}

std::int32_t WindowProperties::clientCount(std::int32_t message) const noexcept {
    return get(clientCountName(handleNumber(), message).data());
}

void WindowProperties::setClientCount(std::int32_t message, std::int32_t count) noexcept {
    set(clientCountName(handleNumber(), message).data(), count);
    trace_(line("Changed message count for %X Message %d to %d", hex(handleNumber()),
                static_cast<int>(message), static_cast<int>(count))
               .data());
}

ISubclass* WindowProperties::client(std::int32_t message, std::int32_t index) const noexcept {
    return reinterpret_cast<ISubclass*>(
        static_cast<std::intptr_t>(get(clientName(handleNumber(), message, index).data())));
}

void WindowProperties::setClient(std::int32_t message, std::int32_t index,
                                 ISubclass* client) noexcept {
    set(clientName(handleNumber(), message, index).data(), number(client));
    trace_(line("Changed message class for %X Message %d Index %d to %X", hex(handleNumber()),
                static_cast<int>(message), static_cast<int>(index), hex(number(client)))
               .data());
}

} // namespace corvina
