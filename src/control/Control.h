#pragma once

// How a control is made:
//
//   const Property properties[] = {{.name = L"Bands", .id = 2, .initial = 50}, ...};
//   const ControlClass meterClass{.clsid = CLSID_cMeter,
//                                 .primary = IID__cMeter,
//                                 .events = DIID___cMeter,
//                                 .progId = L"Corvina.cMeter",
//                                 .description = L"Corvina meter",
//                                 .naturalPixels = {200, 100},
//                                 .properties = properties};
//
//   class cMeter final : public Control<_cMeter> {       // more dual interfaces may follow
//   public:
//       cMeter() : Control(meterClass) {}
//       ~cMeter() { ole().disconnect(); }                // first of all, before members are gone
//       // IDispatch is the base's; the interface's members are the control's:
//       HRESULT STDMETHODCALLTYPE get_Bands(long* result) override {
//           return enterReturning(result, [&] { return ole().property(0); });
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
#include "com/EntryPoints.h"
#include "control/OleControl.h"

namespace corvina {

template <typename Primary, typename... More>
class Control : public Implements<Dispatch<Primary>, Dispatch<More>...>,
                protected ControlHooks,
                protected EntryPoints {
protected:
    explicit Control(const ControlClass& controlClass)
        : EntryPoints(static_cast<Dispatch<Primary>&>(*this), controlClass.primary,
                      controlClass.progId),
          ole_(static_cast<Dispatch<Primary>&>(*this), *this, controlClass) {}

    [[nodiscard]] OleControl& ole() noexcept { return ole_; }
    [[nodiscard]] const OleControl& ole() const noexcept { return ole_; }

    void* findInterface(REFIID iid) noexcept override {
        void* found = Implements<Dispatch<Primary>, Dispatch<More>...>::findInterface(iid);
        return found ? found : ole_.find(iid);
    }

private:
    OleControl ole_;
};

} // namespace corvina
