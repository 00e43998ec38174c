#include "com/QuickActivatePart.h"

#include "com/OleControl.h"

#include <cstddef>

namespace corvina {

HRESULT QuickActivatePart::QuickActivate(QACONTAINER* container, QACONTROL* control) {
    if (!container || !control)
        return E_POINTER;
    // The record of older containers, Visual Basic's and .NET's among them, ends before these
    // fields.
    constexpr std::size_t shortRecord = offsetof(QACONTAINER, pOleControlSite);
    if (container->cbSize < shortRecord || control->cbSize < sizeof(QACONTROL))
        return E_INVALIDARG;
    const ComPtr<IUnknown> alive(&whole());
    const ULONG size = control->cbSize;
    *control = QACONTROL{};
    control->cbSize = size;

    control_.object().SetClientSite(container->pClientSite);
    if (container->pAdviseSink)
        control_.view().SetAdvise(DVASPECT_CONTENT, 0,
                                  reinterpret_cast<IAdviseSink*>(container->pAdviseSink));
    if (container->pUnkEventSink)
        control_.connections().events().Advise(container->pUnkEventSink, &control->dwEventCookie);
    if (container->pPropertyNotifySink)
        control_.connections().propertyChanges().Advise(container->pPropertyNotifySink,
                                                        &control->dwPropNotifyCookie);
    control_.view().GetViewStatus(&control->dwViewStatus);
    control_.object().GetMiscStatus(DVASPECT_CONTENT, &control->dwMiscStatus);
    return S_OK;
}

HRESULT QuickActivatePart::SetContentExtent(LPSIZEL size) {
    return control_.object().SetExtent(DVASPECT_CONTENT, size);
}

HRESULT QuickActivatePart::GetContentExtent(LPSIZEL size) {
    return control_.object().GetExtent(DVASPECT_CONTENT, size);
}

} // namespace corvina
