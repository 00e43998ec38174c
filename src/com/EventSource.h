#pragma once

// Raises the events of an object to all listeners of its event interface.
//
// Listeners may do anything in their handlers: connect, disconnect, release the object. While
// events are frozen they are kept, in order, and raised when they thaw.

#include "com/ConnectionPoint.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace corvina {

class EventSource {
public:
    // A number that is passed by reference; what a handler writes there is not read.
    struct ByReference {
        std::int32_t value;
    };
    using Argument = std::variant<std::int32_t, ByReference, std::wstring>;
    using Arguments = std::vector<Argument>;

    // What happens to an event that is raised while events are frozen.
    enum class WhenFrozen { keepAll, keepLatest };

    EventSource(IUnknown& outer, ConnectionPoint& point) noexcept : outer_(outer), point_(point) {}

    // Nothing is thrown; an event that finds no memory is lost.
    void fire(DISPID event, Arguments arguments,
              WhenFrozen whenFrozen = WhenFrozen::keepAll) noexcept;
    // Freezing nests.
    void freeze() noexcept { ++frozen_; }
    void thaw() noexcept;

private:
    struct Event {
        DISPID id;
        Arguments arguments;
    };

    void keep(Event event, WhenFrozen whenFrozen);
    void raise(Event& event);

    IUnknown& outer_;
    ConnectionPoint& point_;
    unsigned frozen_ = 0;
    std::vector<Event> kept_;
};

} // namespace corvina
