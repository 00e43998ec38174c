#include "library/Registration.h"

#include "com/Module.h"
#include "com/TypeLibrary.h"
#include "control/Verbs.h"
#include "library/ClassTable.h"
#include "library/RegistryChanges.h"
#include "platform/ModulePath.h"

#include <iterator>
#include <oleauto.h>
#include <string>
#include <vector>

#ifndef _MSC_VER
// Missing in the headers of this toolchain.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path,
                                                 OLECHAR* helpFolder);
extern "C" HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID guid, WORD major, WORD minor,
                                                   LCID locale, SYSKIND system);
#endif

namespace corvina {
namespace {

using Text = std::wstring;

constexpr const wchar_t* controlCategory = L"{40FC6ED4-2438-11CF-A3DB-080036F12502}";
constexpr const wchar_t* programmableCategory = L"{40FC6ED5-2438-11CF-A3DB-080036F12502}";

Text textOfGuid(REFGUID guid) {
    wchar_t text[40];
    ::StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
    return text;
}

// What the type library says about itself.
struct Library {
    ComPtr<ITypeLib> library;
    GUID guid{};
    LCID locale = 0;
    WORD major = 0;
    WORD minor = 0;

    HRESULT load() {
        if (const HRESULT loaded = loadModuleTypeLibrary(library); FAILED(loaded))
            return loaded;
        TLIBATTR* attributes = nullptr;
        if (const HRESULT got = library->GetLibAttr(&attributes); FAILED(got))
            return got;
        guid = attributes->guid;
        locale = attributes->lcid;
        major = attributes->wMajorVerNum;
        minor = attributes->wMinorVerNum;
        library->ReleaseTLibAttr(attributes);
        return S_OK;
    }
    [[nodiscard]] Text version() const {
        return std::to_wstring(major) + L"." + std::to_wstring(minor);
    }
};

Text classKey(const ClassEntry& entry) {
    return L"CLSID\\" + textOfGuid(entry.clsid);
}

Text versionedProgId(const ClassEntry& entry, const Library& library) {
    return Text(entry.progId) + L"." + std::to_wstring(library.major);
}

// Name, flags of its menu item (none), attributes.
Text verbText(const Verb& verb) {
    return Text(verb.name) + L",0," + std::to_wstring(verb.attributes);
}

std::vector<RegistryValue> valuesOf(const ClassEntry& entry, const Library& library,
                                    const Text& path) {
    const Text key = classKey(entry), clsid = textOfGuid(entry.clsid), generic = entry.progId;
    const Text versioned = versionedProgId(entry, library);
    std::vector<RegistryValue> values{
        {key, nullptr, entry.description},
        {key + L"\\InprocServer32", nullptr, path},
        {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {key + L"\\ProgID", nullptr, versioned},
        {key + L"\\VersionIndependentProgID", nullptr, generic},
        {key + L"\\TypeLib", nullptr, textOfGuid(library.guid)},
        {key + L"\\Version", nullptr, library.version()},
        {key + L"\\Programmable", nullptr, L""},
        {key + L"\\Implemented Categories\\" + programmableCategory, nullptr, L""},
        {generic, nullptr, entry.description},
        {generic + L"\\CLSID", nullptr, clsid},
        {generic + L"\\CurVer", nullptr, versioned},
        {versioned, nullptr, entry.description},
        {versioned + L"\\CLSID", nullptr, clsid},
    };
    if (entry.control) {
        const std::vector<RegistryValue> control{
            {key + L"\\Control", nullptr, L""},
            {key + L"\\Implemented Categories\\" + controlCategory, nullptr, L""},
            {key + L"\\MiscStatus", nullptr, L"0"},
            {key + L"\\MiscStatus\\1", nullptr, std::to_wstring(miscStatus(*entry.control))},
            {key + L"\\ToolboxBitmap32", nullptr,
             path + L", " + std::to_wstring(entry.toolboxBitmap)},
        };
        values.insert(values.end(), control.begin(), control.end());
        for (const Verb& verb : controlVerbs())
            if (verb.name)
                values.push_back(
                    {key + L"\\Verb\\" + std::to_wstring(verb.number), nullptr, verbText(verb)});
    }
    return values;
}

HRESULT registerTypeLibrary(const Library& library, RegistrationScope scope, Text path) {
    // Headers differ in the constness that each of the two declares.
    return scope == RegistrationScope::machine
               ? ::RegisterTypeLib(library.library.get(), path.data(), nullptr)
               : ::RegisterTypeLibForUser(library.library.get(), path.data(), nullptr);
}

Text typeLibraryKey(const Library& library) {
    return L"TypeLib\\" + textOfGuid(library.guid) + L"\\" + library.version();
}

HRESULT unregisterTypeLibrary(const Library& library, RegistrationScope scope) {
    if (!RegistryChanges(scope).has(typeLibraryKey(library)))
        return S_OK;
    const auto unregister =
        scope == RegistrationScope::machine ? &::UnRegisterTypeLib : &::UnRegisterTypeLibForUser;
    return unregister(library.guid, library.major, library.minor, library.locale, SYS_WIN32);
}

HRESULT writeClasses(const Library& library, const Text& path, RegistryChanges& changes) {
    for (const ClassEntry& entry : classTable())
        for (const RegistryValue& value : valuesOf(entry, library, path))
            if (const HRESULT written = changes.write(value); FAILED(written))
                return written;
    return S_OK;
}

} // namespace

HRESULT registerLibrary(RegistrationScope scope) {
    Library library;
    if (const HRESULT loaded = library.load(); FAILED(loaded))
        return loaded;
    const Text path = modulePath(thisModule().handle());
    RegistryChanges changes(scope);
    HRESULT registered = writeClasses(library, path, changes);
    if (SUCCEEDED(registered)) {
        // Of a library that was registered before only these values can have been others.
        const Text key = typeLibraryKey(library);
        const bool registeredBefore = changes.has(key);
        if (registeredBefore)
            for (const Text& below : {key, key + L"\\0\\win32", key + L"\\HELPDIR"})
                changes.remember(below, nullptr);
        registered = registerTypeLibrary(library, scope, path);
        if (FAILED(registered) && !registeredBefore)
            static_cast<void>(unregisterTypeLibrary(library, scope));
    }
    if (FAILED(registered))
        changes.takeBack();
    return registered;
}

HRESULT unregisterLibrary(RegistrationScope scope) {
    Library library;
    if (const HRESULT loaded = library.load(); FAILED(loaded))
        return loaded;
    HRESULT first = unregisterTypeLibrary(library, scope);
    const RegistryChanges classes(scope);
    for (const ClassEntry& entry : classTable())
        for (const Text& key :
             {classKey(entry), Text(entry.progId), versionedProgId(entry, library)})
            if (const HRESULT removed = classes.remove(key); FAILED(removed) && SUCCEEDED(first))
                first = removed;
    return first;
}

} // namespace corvina
