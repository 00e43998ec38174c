#pragma once

// Receives the events of a cPlayer control and hands them on as plain calls, on the thread that
// pumps the control's messages.

#include <Corvina.h>
#include <comdef.h>
#include <ocidl.h>

#include <atomic>
#include <functional>
#include <string>

namespace corvina::app {

struct ErrorEvent {
    std::wstring function; // that failed, often with the platform function; may be empty
    long number = 0;
    std::wstring description; // may be empty
};

struct PlayerHandlers {
    std::function<void()> donePlay{};
    std::function<void(const ErrorEvent&)> err{};
    std::function<void(PlayEndReason)> ended{};
    std::function<void(PlayState)> stateChanged{};
    std::function<void(long milliseconds)> positionChanged{};
    std::function<void(const std::wstring& file)> nextStarted{};
};

// The sink that the control calls. The connection point and the client share it by counting.
class PlayerEvents final : public IDispatch {
public:
    explicit PlayerEvents(PlayerHandlers handlers);

    // No handler is called any more.
    void silence() { handlers_ = {}; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count,
                                            LCID locale, DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                     DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) override;

private:
    ~PlayerEvents() = default;
    HRESULT dispatch(DISPID member, const DISPPARAMS& arguments) const;
    HRESULT onErr(const DISPPARAMS& arguments) const;

    PlayerHandlers handlers_;
    std::atomic<ULONG> references_{1};
};

using PlayerEventsPtr = _com_ptr_t<_com_IIID<PlayerEvents, &IID_IDispatch>>;

} // namespace corvina::app
