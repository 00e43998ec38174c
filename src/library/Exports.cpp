// The entry points of the library.

#include "com/Guard.h"
#include "com/Module.h"
#include "library/ClassFactory.h"
#include "library/Registration.h"

#include <cwchar>
#include <olectl.h>

using namespace corvina;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return guarded(IID_IClassFactory, L"Corvina", [&]() -> HRESULT {
        for (const ClassEntry& entry : classTable())
            if (entry.clsid == clsid)
                return makeCom<ClassFactory>(entry)->QueryInterface(iid, result);
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

STDAPI DllCanUnloadNow() {
    return thisModule().inUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
    return guarded(IID_NULL, L"Corvina",
                   [] { return registerLibrary(RegistrationScope::machine); });
}

STDAPI DllUnregisterServer() {
    return guarded(IID_NULL, L"Corvina",
                   [] { return unregisterLibrary(RegistrationScope::machine); });
}

// regsvr32 /i:user registers for the current user alone, who needs no rights of an administrator
// for it; without "user" the call does what DllRegisterServer has done already.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    const auto scope = commandLine && ::_wcsicmp(commandLine, L"user") == 0
                           ? RegistrationScope::currentUser
                           : RegistrationScope::machine;
    return guarded(IID_NULL, L"Corvina",
                   [&] { return install ? registerLibrary(scope) : unregisterLibrary(scope); });
}
