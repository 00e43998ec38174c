#include "control/ControlPart.h"

#include <olectl.h>

namespace corvina {

HRESULT ControlPart::GetControlInfo(CONTROLINFO* info) {
    // No mnemonics.
    return enterFilling(info, [&] { info->cb = sizeof *info; });
}

HRESULT ControlPart::OnMnemonic(MSG*) {
    return S_OK;
}

HRESULT ControlPart::OnAmbientPropertyChange(DISPID property) {
    return enter([&] {
        if (property == DISPID_UNKNOWN || property == DISPID_AMBIENT_USERMODE)
            inPlace_.userModeChanged();
        if (property == DISPID_UNKNOWN || property == DISPID_AMBIENT_BACKCOLOR ||
            property == DISPID_AMBIENT_USERMODE)
            changes_.pictureChanged();
    });
}

HRESULT ControlPart::FreezeEvents(BOOL freeze) {
    return enter([&] {
        if (freeze)
            events_.freeze();
        else
            events_.thaw();
    });
}

} // namespace corvina
