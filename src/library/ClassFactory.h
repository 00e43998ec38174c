#pragma once

// Makes the objects of one class of the table. Controls can be aggregated.

#include "com/Implements.h"
#include "library/ClassTable.h"

namespace corvina {

class ClassFactory final : public Implements<IClassFactory> {
public:
    explicit ClassFactory(const ClassEntry& entry) noexcept : entry_(entry) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

private:
    const ClassEntry& entry_;
};

} // namespace corvina
