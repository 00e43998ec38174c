// The exports of the wrapper. The certificate and the rights are for protected files, which Wine
// does not play.

#include "SyncReader.h"

extern "C" {

HRESULT WINAPI WMCreateSyncReader(IUnknown*, DWORD, IWMSyncReader** reader) {
    if (!reader)
        return E_INVALIDARG;
    *reader = nullptr;
    return corvina::wine::SyncReader::create(reader);
}

HRESULT WINAPI WMCreateSyncReaderPriv(IWMSyncReader** reader) {
    return WMCreateSyncReader(nullptr, 0, reader);
}

// The library stays until the process ends. The compiler's thread library keeps two handles each
// time that it is unloaded, and an open that was given up may still run its code.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    HMODULE self = nullptr;
    if (reason == DLL_PROCESS_ATTACH)
        ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(&DllMain), &self);
    return TRUE;
}

} // extern "C"
