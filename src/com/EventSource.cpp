#include "com/EventSource.h"

#include "com/Bstr.h"
#include "com/HandlerCall.h"

#include <algorithm>

namespace corvina {
namespace {

// The arguments of one event as a listener takes them: last first, in memory that stays ours.
class Parameters {
public:
    explicit Parameters(EventSource::Arguments& arguments) : values_(arguments.size()) {
        texts_.reserve(arguments.size());
        auto value = values_.rbegin();
        for (EventSource::Argument& argument : arguments)
            fill(*value++, argument);
    }

    [[nodiscard]] DISPPARAMS get() noexcept {
        return {values_.data(), nullptr, static_cast<UINT>(values_.size()), 0};
    }

private:
    void fill(VARIANT& value, EventSource::Argument& argument) {
        ::VariantInit(&value);
        if (const auto* number = std::get_if<std::int32_t>(&argument)) {
            V_VT(&value) = VT_I4;
            V_I4(&value) = *number;
        } else if (auto* reference = std::get_if<EventSource::ByReference>(&argument)) {
            V_VT(&value) = VT_BYREF | VT_I4;
            V_I4REF(&value) = reinterpret_cast<LONG*>(&reference->value);
        } else {
            V_VT(&value) = VT_BSTR;
            V_BSTR(&value) = texts_.emplace_back(std::get<std::wstring>(argument)).get();
        }
    }

    std::vector<VARIANT> values_;
    std::vector<Bstr> texts_;
};

} // namespace

void EventSource::fire(DISPID id, Arguments arguments, WhenFrozen whenFrozen) noexcept {
    try {
        Event event{id, std::move(arguments)};
        if (frozen_ > 0)
            keep(std::move(event), whenFrozen);
        else
            raise(event);
    } catch (...) {
        // No memory.
    }
}

void EventSource::thaw() noexcept {
    if (frozen_ == 0 || --frozen_ > 0)
        return;
    const ComPtr<IUnknown> alive(&outer_);
    std::vector<Event> due;
    due.swap(kept_);
    for (Event& event : due)
        fire(event.id, std::move(event.arguments));
}

void EventSource::keep(Event event, WhenFrozen whenFrozen) {
    if (whenFrozen == WhenFrozen::keepLatest)
        std::erase_if(kept_, [&](const Event& each) { return each.id == event.id; });
    kept_.push_back(std::move(event));
}

void EventSource::raise(Event& event) {
    const ComPtr<IUnknown> alive(&outer_);
    for (const ComPtr<IUnknown>& listener : point_.listeners()) {
        // What one listener writes through a reference does not reach the next.
        Arguments arguments = event.arguments;
        Parameters parameters(arguments);
        DISPPARAMS params = parameters.get();
        callHandler([&] {
            static_cast<IDispatch*>(listener.get())
                ->Invoke(event.id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr,
                         nullptr, nullptr);
        });
    }
}

} // namespace corvina
