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
//       explicit cMeter(IUnknown* outer = nullptr) : Control(meterClass, outer) {}
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

// A control may be aggregated: then it is given the outer unknown, to which its interfaces belong,
// and inner() is what the outer object holds.
template <typename Primary, typename... More>
class Control : public Implements<Dispatch<Primary>, Dispatch<More>...>,
                protected ControlHooks,
                protected EntryPoints {
    using Base = Implements<Dispatch<Primary>, Dispatch<More>...>;

public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return outer_ ? outer_->QueryInterface(iid, result) : Base::QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return outer_ ? outer_->AddRef() : Base::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override {
        return outer_ ? outer_->Release() : Base::Release();
    }

    // The control itself, whatever it is part of. Its references are the control's own.
    [[nodiscard]] IUnknown& inner() noexcept { return inner_; }

protected:
    // outer: null for a control that is an object of its own. No reference to it is kept.
    explicit Control(const ControlClass& controlClass, IUnknown* outer = nullptr)
        : EntryPoints(static_cast<Dispatch<Primary>&>(*this), controlClass.primary,
                      controlClass.progId),
          inner_(*this), outer_(outer),
          ole_(static_cast<Dispatch<Primary>&>(*this), *this, controlClass) {}

    [[nodiscard]] OleControl& ole() noexcept { return ole_; }
    [[nodiscard]] const OleControl& ole() const noexcept { return ole_; }

    void* findInterface(REFIID iid) noexcept override {
        void* found = Base::findInterface(iid);
        return found ? found : ole_.find(iid);
    }
    // The outer object is being destroyed itself and must not be counted any more.
    void beforeDestruction() noexcept override { outer_ = nullptr; }

private:
    class Inner final : public IUnknown {
    public:
        explicit Inner(Control& control) noexcept : control_(control) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
            if (iid != IID_IUnknown || !result)
                return control_.Base::QueryInterface(iid, result);
            *result = this;
            AddRef();
            return S_OK;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return control_.Base::AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return control_.Base::Release(); }

    private:
        Control& control_;
    };

    Inner inner_;
    IUnknown* outer_;
    OleControl ole_;
};

} // namespace corvina
