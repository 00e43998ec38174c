// Names for screen readers. Every control has one as its text, which is enough for those whose text
// is not shown. The system's annotations serve the others, such as lists with a choice.

#include "window/ChildControls.h"

#include <comdef.h>
#include <initguid.h>

#include <oleacc.h>

namespace corvina::app {

namespace {

_COM_SMARTPTR_TYPEDEF(IAccPropServices, IID_IAccPropServices);

} // namespace

void setAccessibleName(HWND control, const std::wstring& name) {
    setText(control, name);
    IAccPropServicesPtr annotations;
    if (SUCCEEDED(annotations.CreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER)))
        annotations->SetHwndPropStr(control, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                                    PROPID_ACC_NAME, name.c_str());
}

} // namespace corvina::app
