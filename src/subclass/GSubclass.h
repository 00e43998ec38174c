#pragma once

// The COM layer of the window subclassing: each member forwards to MSubclass. An object has no
// state, so any object can detach what another has attached.

#include "com/Dispatch.h"
#include "com/Implements.h"

#include "Corvina.h"

namespace corvina {

class GSubclass final : public Implements<Dispatch<_GSubclass>, ISupportErrorInfo> {
public:
    HRESULT STDMETHODCALLTYPE AttachMessage(ISubclass** iwp, long hWnd, long iMsg) override;
    HRESULT STDMETHODCALLTYPE DetachMessage(ISubclass** iwp, long hWnd, long iMsg) override;
    HRESULT STDMETHODCALLTYPE get_CurrentMessage(long* result) override;
    HRESULT STDMETHODCALLTYPE CallOldWindowProc(long hWnd, long iMsg, long wParam, long lParam,
                                                long* result) override;

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;
};

} // namespace corvina
