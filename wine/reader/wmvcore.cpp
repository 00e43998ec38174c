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

} // extern "C"
