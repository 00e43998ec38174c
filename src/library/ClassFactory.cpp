#include "library/ClassFactory.h"

#include "com/Guard.h"

namespace corvina {

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    // An outer object can hold nothing but the inner unknown.
    if (outer && (!entry_.control || iid != IID_IUnknown))
        return CLASS_E_NOAGGREGATION;
    return guarded(IID_IClassFactory, entry_.progId, [&] {
        const auto object = ComPtr<IUnknown>::adopt(entry_.create(outer));
        return object->QueryInterface(iid, result);
    });
}

HRESULT ClassFactory::LockServer(BOOL lock) {
    if (lock)
        thisModule().lock();
    else
        thisModule().unlock();
    return S_OK;
}

} // namespace corvina
