#include "control/PersistPart.h"

namespace corvina {
namespace {

constexpr const wchar_t* contents = L"Contents";

} // namespace

// Properties that could not be loaded are at their initial values, which is a new state too.
template <typename Action>
HRESULT PersistPart::loading(Action load) {
    return enter([&] {
        const HRESULT loaded = load();
        changes_.stateLoaded();
        return loaded;
    });
}

template <typename Action>
HRESULT PersistPart::saving(bool clearDirty, Action save) {
    return enter([&] {
        const HRESULT saved = save();
        if (SUCCEEDED(saved) && clearDirty)
            properties_.setDirty(false);
        return saved;
    });
}

HRESULT PersistPart::GetClassID(CLSID* result) {
    return enterReturning(result, [&] { return clsid_; });
}

HRESULT PersistPart::IsDirty() {
    return properties_.dirty() ? S_OK : S_FALSE;
}

HRESULT PersistPart::InitNew() {
    return loading([&] {
        properties_.reset();
        return S_OK;
    });
}

HRESULT PersistPart::Load(IStream* stream) {
    return stream ? loading([&] { return properties_.load(*stream); }) : E_POINTER;
}

HRESULT PersistPart::Save(IStream* stream, BOOL clearDirty) {
    return stream ? saving(clearDirty != FALSE, [&] { return properties_.save(*stream); })
                  : E_POINTER;
}

HRESULT PersistPart::GetSizeMax(ULARGE_INTEGER* size) {
    return enterFilling(size, [&] { size->QuadPart = properties_.streamSize(); });
}

HRESULT PersistPart::InitNew(IStorage* storage) {
    return storage ? InitNew() : E_POINTER;
}

HRESULT PersistPart::Load(IStorage* storage) {
    if (!storage)
        return E_POINTER;
    return enter([&] {
        ComPtr<IStream> stream;
        const HRESULT opened = storage->OpenStream(
            contents, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.put());
        return FAILED(opened) ? opened : Load(stream.get());
    });
}

HRESULT PersistPart::Save(IStorage* storage, BOOL sameAsLoad) {
    if (!storage)
        return E_POINTER;
    return enter([&] {
        ComPtr<IStream> stream;
        const HRESULT made = storage->CreateStream(
            contents, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, stream.put());
        return FAILED(made) ? made : Save(stream.get(), sameAsLoad);
    });
}

// No storage is kept between calls, so there is nothing to hand over or to wait for.
HRESULT PersistPart::SaveCompleted(IStorage*) {
    return S_OK;
}

HRESULT PersistPart::HandsOffStorage() {
    return S_OK;
}

HRESULT PersistPart::Load(IPropertyBag* bag, IErrorLog* log) {
    return bag ? loading([&] { return properties_.load(*bag, log); }) : E_POINTER;
}

HRESULT PersistPart::Save(IPropertyBag* bag, BOOL clearDirty, BOOL everything) {
    return bag ? saving(clearDirty != FALSE,
                        [&] { return properties_.save(*bag, everything != FALSE); })
               : E_POINTER;
}

} // namespace corvina
