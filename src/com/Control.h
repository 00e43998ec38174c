#pragma once

// How a control is made:
//
//   const Property properties[] = {{L"Bands", 2, 50}, ...};
//   const ControlClass meterClass{CLSID_cMeter, IID__cMeter, DIID___cMeter, L"Corvina.cMeter",
//                                 L"Corvina meter", {200, 100}, {}, true, properties};
//
//   class cMeter final : public Control<_cMeter> {       // more dual interfaces may follow
//   public:
//       cMeter() : Control(meterClass) {}
//       ~cMeter() { ole().disconnect(); }                // first of all, before members are gone
//       // IDispatch is the base's; the interface's members are the control's:
//       HRESULT STDMETHODCALLTYPE get_Bands(long* result) override {
//           return answer(result, [&] { return ole().property(0); });
//       }
//       HRESULT STDMETHODCALLTYPE put_Bands(long value) override {
//           return enter([&] { return ole().setProperty(0, value); });
//       }
//   private:
//       void draw(HDC dc, const RECT& bounds) override;  // and other ControlHooks
//   };
//
// The class gets one line in the library's class table. Events: ole().events().fire(id, {value}).
// The constructor must not hand out references to the control.

#include "com/Dispatch.h"
#include "com/Guard.h"
#include "com/OleControl.h"

namespace corvina {

template <typename Primary, typename... More>
class Control : public Implements<Dispatch<Primary>, Dispatch<More>...>, protected ControlHooks {
protected:
    explicit Control(const ControlClass& controlClass)
        : ole_(static_cast<Dispatch<Primary>&>(*this), *this, controlClass) {}

    [[nodiscard]] OleControl& ole() noexcept { return ole_; }
    [[nodiscard]] const OleControl& ole() const noexcept { return ole_; }

    // The boundary of an entry point: nothing is thrown into the host, and the control outlives the
    // call even where a handler releases the host's last reference. body returns an HRESULT or
    // nothing.
    template <typename Body>
    [[nodiscard]] HRESULT enter(Body&& body) noexcept {
        const ComPtr<IUnknown> alive(static_cast<Dispatch<Primary>*>(this));
        return guarded(ole_.controlClass().primary, ole_.controlClass().progId,
                       std::forward<Body>(body));
    }

    // The same for an entry point with a result, which body returns: it is checked and cleared
    // first.
    template <typename Result, typename Body>
    [[nodiscard]] HRESULT answer(Result* result, Body&& body) noexcept {
        if (!result)
            return E_POINTER;
        *result = Result{};
        return enter([&] { *result = static_cast<Result>(body()); });
    }

    void* findInterface(REFIID iid) noexcept override {
        void* found = Implements<Dispatch<Primary>, Dispatch<More>...>::findInterface(iid);
        return found ? found : ole_.find(iid);
    }

private:
    OleControl ole_;
};

} // namespace corvina
