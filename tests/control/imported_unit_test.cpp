// The Pascal unit of examples/pascal agrees with the type library as it is built now: the same
// GUIDs, values, records, members in the same order, types and identifiers. If not, import it anew
// (tools/try-pascal).

#include "PascalUnit.h"
#include "TypeLibraryFixture.h"

using namespace corvina;
using namespace corvina::test;

namespace {

const wchar_t* const unitFile = L"..\\..\\..\\examples\\pascal\\Corvina_1_0_TLB.pas";
const wchar_t* const interfaces[] = {L"cCallback", L"ISubclass", L"_GSubclass",
                                     L"IEncoder",  L"_cPlayer",  L"_cAudioGraph"};
const wchar_t* const eventInterfaces[] = {L"__cPlayer", L"__cAudioGraph"};

std::string plain(const std::wstring& text) {
    return {text.begin(), text.end()};
}

// The importer puts a line under a name that Pascal keeps for itself.
std::string pascalName(const std::wstring& name) {
    return name == L"File" ? "File_" : plain(name);
}

std::string pascalType(ITypeInfo* info, const TYPEDESC& type) {
    static const std::map<VARTYPE, std::string> names{
        {VT_I2, "Smallint"},        {VT_I4, "Integer"},          {VT_R4, "Single"},
        {VT_R8, "Double"},          {VT_BSTR, "WideString"},     {VT_BOOL, "WordBool"},
        {VT_DISPATCH, "IDispatch"}, {VT_SAFEARRAY, "PSafeArray"}};
    if (type.vt == VT_USERDEFINED)
        return plain(typeText(info, type));
    // An interface is a reference in Pascal: it has one star less.
    if (type.vt == VT_PTR)
        return pascalType(info, *type.lptdesc);
    const auto known = names.find(type.vt);
    return known == names.end() ? "?" + std::to_string(type.vt) : known->second;
}

std::string guidText(const GUID& guid) {
    wchar_t text[40]{};
    ::StringFromGUID2(guid, text, 40);
    return plain(text);
}

struct Parameters {
    std::string named;
    std::string types;
    std::string result;
};

Parameters parametersOf(ITypeInfo* info, const FUNCDESC& function) {
    BSTR names[16]{};
    UINT count = 0;
    info->GetNames(function.memid, names, 16, &count);
    Parameters parameters;
    for (int i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        const std::string type = pascalType(info, parameter.tdesc);
        const USHORT flags = parameter.paramdesc.wParamFlags;
        if (flags & PARAMFLAG_FRETVAL) {
            parameters.result = " " + type;
            continue;
        }
        const bool byReference = (flags & PARAMFLAG_FOUT) != 0;
        const auto nameIndex = static_cast<UINT>(i) + 1;
        const std::string separator = parameters.types.empty() ? "" : ", ";
        parameters.named += separator + (byReference ? "var " : "") + type + " " +
                            (nameIndex < count ? pascalName(textOf(names[nameIndex])) : "");
        parameters.types += separator + type;
    }
    for (UINT i = 0; i < count; ++i)
        ::SysFreeString(names[i]);
    return parameters;
}

std::string pascalMember(ITypeInfo* info, const FUNCDESC& function) {
    const Parameters parameters = parametersOf(info, function);
    const std::string name = plain(nameOf(info, function.memid));
    switch (function.invkind) {
    case INVOKE_PROPERTYGET:
        return "get " + name + "(" + parameters.types + ")" + parameters.result;
    case INVOKE_PROPERTYPUT:
        return "put " + name + "(" + parameters.types + ")";
    case INVOKE_PROPERTYPUTREF:
        return "putref " + name + "(" + parameters.types + ")";
    default:
        return name + "(" + parameters.named + ")" + parameters.result;
    }
}

class ImportedUnit : public TypeLibrary {
protected:
    PascalUnit::Lines membersOf(ITypeInfo* info) {
        PascalUnit::Lines lines;
        each(info,
             [&](const FUNCDESC& function) { lines.push_back(pascalMember(info, function)); });
        return lines;
    }
    std::map<std::string, long> identifiersOf(ITypeInfo* info) {
        std::map<std::string, long> ids;
        each(info, [&](const FUNCDESC& function) {
            ids[plain(nameOf(info, function.memid))] = function.memid;
        });
        return ids;
    }
    // The names of the library's types of this kind.
    std::vector<std::wstring> namesOf(TYPEKIND kind) {
        std::vector<std::wstring> names;
        for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
            TYPEKIND own = TKIND_MAX;
            ComPtr<ITypeInfo> info;
            if (SUCCEEDED(library->GetTypeInfoType(i, &own)) && own == kind &&
                SUCCEEDED(library->GetTypeInfo(i, info.put())))
                names.push_back(nameOf(info.get()));
        }
        return names;
    }
    GUID guidOf(const std::wstring& name) {
        TYPEATTR* attributes = nullptr;
        const ComPtr<ITypeInfo> info = find(name.c_str());
        if (!info || FAILED(info->GetTypeAttr(&attributes)))
            return GUID_NULL;
        const GUID guid = attributes->guid;
        info->ReleaseTypeAttr(attributes);
        return guid;
    }

    const PascalUnit unit{unitFile};
};

TEST_F(ImportedUnit, has_the_members_of_every_interface_in_their_order) {
    for (const wchar_t* const name : interfaces) {
        const PascalUnit::Lines members = membersOf(vtable(name).get());
        EXPECT_FALSE(members.empty());
        EXPECT_EQ(members, unit.interfaceMembers(plain(name))) << plain(name);
    }
}

TEST_F(ImportedUnit, has_the_events) {
    for (const wchar_t* const name : eventInterfaces) {
        const PascalUnit::Lines members = membersOf(find(name).get());
        EXPECT_FALSE(members.empty());
        EXPECT_EQ(members, unit.events(plain(name))) << plain(name);
    }
}

TEST_F(ImportedUnit, has_the_identifiers) {
    for (const wchar_t* const name : interfaces)
        EXPECT_EQ(identifiersOf(vtable(name).get()), unit.dispatchIds(plain(name) + "Disp"))
            << plain(name);
    std::map<std::string, long> events = identifiersOf(find(L"__cPlayer").get());
    EXPECT_EQ(events, unit.dispatchIds("__cPlayer"));
    EXPECT_EQ(identifiersOf(find(L"__cAudioGraph").get()), unit.dispatchIds("__cAudioGraph"));
}

TEST_F(ImportedUnit, has_the_values_of_every_enumeration) {
    const std::vector<std::wstring> names = namesOf(TKIND_ENUM);
    EXPECT_FALSE(names.empty());
    for (const std::wstring& name : names) {
        PascalUnit::Lines values;
        for (const std::wstring& line : members(name.c_str()))
            values.push_back(plain(line));
        EXPECT_EQ(values, unit.enumeration(plain(name))) << plain(name);
    }
}

TEST_F(ImportedUnit, has_the_fields_of_every_record) {
    const std::vector<std::wstring> names = namesOf(TKIND_RECORD);
    EXPECT_FALSE(names.empty());
    for (const std::wstring& name : names) {
        const ComPtr<ITypeInfo> info = find(name.c_str());
        PascalUnit::Lines fields;
        VARDESC* field = nullptr;
        for (UINT i = 0; SUCCEEDED(info->GetVarDesc(i, &field)); ++i) {
            fields.push_back(plain(nameOf(info.get(), field->memid)) + " : " +
                             pascalType(info.get(), field->elemdescVar.tdesc));
            info->ReleaseVarDesc(field);
        }
        EXPECT_FALSE(fields.empty());
        EXPECT_EQ(fields, unit.record(plain(name))) << plain(name);
    }
}

TEST_F(ImportedUnit, has_every_interface_and_class_under_its_guid) {
    for (const wchar_t* const name : interfaces)
        EXPECT_EQ(guidText(guidOf(name)), unit.guid("IID_" + plain(name)));
    for (const wchar_t* const name : eventInterfaces)
        EXPECT_EQ(guidText(guidOf(name)), unit.guid("IID_" + plain(name)));
    const std::vector<std::wstring> classes = namesOf(TKIND_COCLASS);
    EXPECT_EQ(3u, classes.size());
    for (const std::wstring& name : classes)
        EXPECT_EQ(guidText(guidOf(name)), unit.guid("CLASS_" + plain(name)));
    EXPECT_EQ(guidText(LIBID_Corvina), unit.guid("LIBID_Corvina"));
}

// All interfaces of the library are in the lists above.
TEST_F(ImportedUnit, is_compared_whole) {
    std::size_t declared = 0;
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        TYPEKIND kind = TKIND_MAX;
        library->GetTypeInfoType(i, &kind);
        declared += kind == TKIND_DISPATCH || kind == TKIND_INTERFACE ? 1 : 0;
    }
    EXPECT_EQ(std::size(interfaces) + std::size(eventInterfaces), declared);
}

} // namespace
