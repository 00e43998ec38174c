#include "control/QuickActivatePart.h"

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
    return enter([&] {
        const ULONG size = control->cbSize;
        *control = QACONTROL{};
        control->cbSize = size;

        object_.SetClientSite(container->pClientSite);
        if (container->pAdviseSink)
            view_.SetAdvise(DVASPECT_CONTENT, 0,
                            reinterpret_cast<IAdviseSink*>(container->pAdviseSink));
        if (container->pUnkEventSink)
            connections_.events().Advise(container->pUnkEventSink, &control->dwEventCookie);
        if (container->pPropertyNotifySink)
            connections_.propertyChanges().Advise(container->pPropertyNotifySink,
                                                  &control->dwPropNotifyCookie);
        view_.GetViewStatus(&control->dwViewStatus);
        object_.GetMiscStatus(DVASPECT_CONTENT, &control->dwMiscStatus);
    });
}

HRESULT QuickActivatePart::SetContentExtent(LPSIZEL size) {
    return object_.SetExtent(DVASPECT_CONTENT, size);
}

HRESULT QuickActivatePart::GetContentExtent(LPSIZEL size) {
    return object_.GetExtent(DVASPECT_CONTENT, size);
}

} // namespace corvina
