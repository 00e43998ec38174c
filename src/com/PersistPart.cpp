#include "com/PersistPart.h"

#include "com/Guard.h"
#include "com/OleControl.h"

namespace corvina {
namespace {

constexpr const wchar_t* contents = L"Contents";

} // namespace

HRESULT PersistPart::GetClassID(CLSID* result) {
    if (!result)
        return E_POINTER;
    *result = control_.controlClass().clsid;
    return S_OK;
}

HRESULT PersistPart::IsDirty() {
    return control_.properties().dirty() ? S_OK : S_FALSE;
}

HRESULT PersistPart::InitNew() {
    const ComPtr<IUnknown> alive(&whole());
    return guarded(IID_IPersistStreamInit, L"", [&] {
        control_.properties().reset();
        control_.stateLoaded();
    });
}

HRESULT PersistPart::Load(IStream* stream) {
    if (!stream)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&whole());
    return guarded(IID_IPersistStreamInit, L"", [&] {
        const HRESULT loaded = control_.properties().load(*stream);
        control_.stateLoaded();
        return loaded;
    });
}

HRESULT PersistPart::Save(IStream* stream, BOOL clearDirty) {
    if (!stream)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&whole());
    const HRESULT saved = control_.properties().save(*stream);
    if (SUCCEEDED(saved) && clearDirty)
        control_.properties().setDirty(false);
    return saved;
}

HRESULT PersistPart::GetSizeMax(ULARGE_INTEGER* size) {
    if (!size)
        return E_POINTER;
    size->QuadPart = control_.properties().streamSize();
    return S_OK;
}

HRESULT PersistPart::InitNew(IStorage* storage) {
    return storage ? InitNew() : E_POINTER;
}

HRESULT PersistPart::Load(IStorage* storage) {
    if (!storage)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&whole());
    ComPtr<IStream> stream;
    const HRESULT opened =
        storage->OpenStream(contents, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.put());
    return FAILED(opened) ? opened : Load(stream.get());
}

HRESULT PersistPart::Save(IStorage* storage, BOOL sameAsLoad) {
    if (!storage)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&whole());
    ComPtr<IStream> stream;
    const HRESULT made = storage->CreateStream(
        contents, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, stream.put());
    return FAILED(made) ? made : Save(stream.get(), sameAsLoad);
}

// No storage is kept between calls, so there is nothing to hand over or to wait for.
HRESULT PersistPart::SaveCompleted(IStorage*) {
    return S_OK;
}

HRESULT PersistPart::HandsOffStorage() {
    return S_OK;
}

HRESULT PersistPart::Load(IPropertyBag* bag, IErrorLog* log) {
    if (!bag)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&whole());
    return guarded(IID_IPersistPropertyBag, L"", [&] {
        const HRESULT loaded = control_.properties().load(*bag, log);
        control_.stateLoaded();
        return loaded;
    });
}

HRESULT PersistPart::Save(IPropertyBag* bag, BOOL clearDirty, BOOL everything) {
    if (!bag)
        return E_POINTER;
    const ComPtr<IUnknown> alive(&whole());
    const HRESULT saved = control_.properties().save(*bag, everything != FALSE);
    if (SUCCEEDED(saved) && clearDirty)
        control_.properties().setDirty(false);
    return saved;
}

} // namespace corvina
