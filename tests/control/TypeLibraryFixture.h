#pragma once

// The type library of the registered file, described in lines of text.

#include "Support.h"

#include <map>
#include <string>
#include <vector>

namespace corvina::test {

// The published spellings are ASCII. A comparison that fails shows the lines that differ: the test
// framework makes a list of them from texts whose line ends are written as \n.
struct Lines : std::vector<std::wstring> {
    using vector::vector;

    friend void PrintTo(const Lines& lines, std::ostream* stream) {
        const char* separator = "\"";
        for (const std::wstring& line : lines) {
            *stream << separator << std::string(line.begin(), line.end());
            separator = "\\n";
        }
        *stream << '"';
    }
};

inline std::wstring nameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    Bstr name;
    info->GetDocumentation(member, name.put(), nullptr, nullptr, nullptr);
    return textOf(name.get());
}

inline std::wstring helpOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    Bstr help;
    info->GetDocumentation(member, nullptr, help.put(), nullptr, nullptr);
    return textOf(help.get());
}

inline std::wstring typeText(ITypeInfo* info, const TYPEDESC& type) {
    static const std::map<VARTYPE, std::wstring> names{
        {VT_I2, L"short"},  {VT_I4, L"long"},        {VT_R4, L"float"},        {VT_R8, L"double"},
        {VT_BSTR, L"BSTR"}, {VT_BOOL, L"bool"},      {VT_HRESULT, L"HRESULT"}, {VT_VOID, L"void"},
        {VT_UI4, L"ulong"}, {VT_DISPATCH, L"object"}};
    if (type.vt == VT_PTR)
        return typeText(info, *type.lptdesc) + L"*";
    if (type.vt == VT_SAFEARRAY)
        return L"array of " + typeText(info, *type.lptdesc);
    if (type.vt == VT_USERDEFINED) {
        ComPtr<ITypeInfo> named;
        return SUCCEEDED(info->GetRefTypeInfo(type.hreftype, named.put())) ? nameOf(named.get())
                                                                           : L"?";
    }
    const auto known = names.find(type.vt);
    return known == names.end() ? std::to_wstring(type.vt) : known->second;
}

// "id kind Name(direction type name, ...)" with the result among the parameters.
inline std::wstring functionLine(ITypeInfo* info, const FUNCDESC& function) {
    BSTR names[16]{};
    UINT count = 0;
    info->GetNames(function.memid, names, 16, &count);
    std::wstring line = std::to_wstring(function.memid);
    line += function.invkind == INVOKE_PROPERTYGET      ? L" get "
            : function.invkind == INVOKE_PROPERTYPUT    ? L" put "
            : function.invkind == INVOKE_PROPERTYPUTREF ? L" putref "
                                                        : L" ";
    line += textOf(names[0]) + L"(";
    for (int i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        const USHORT flags = parameter.paramdesc.wParamFlags;
        line += i > 0 ? L", " : L"";
        const auto nameIndex = static_cast<UINT>(i) + 1;
        if (flags & PARAMFLAG_FRETVAL)
            line += L"-> " + typeText(info, *parameter.tdesc.lptdesc);
        else
            line += std::wstring((flags & PARAMFLAG_FOUT) ? L"inout " : L"") +
                    typeText(info, parameter.tdesc) +
                    (nameIndex < count &&
                             !(function.invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF))
                         ? L" " + textOf(names[nameIndex])
                         : L"");
    }
    for (UINT i = 0; i < count; ++i)
        ::SysFreeString(names[i]);
    return line + L")";
}

class TypeLibrary : public ApartmentTest {
protected:
    void SetUp() override {
        ApartmentTest::SetUp();
        ASSERT_EQ(S_OK, ::LoadTypeLibEx(libraryPath().c_str(), REGKIND_NONE, library.put()));
    }
    void TearDown() override {
        library.reset();
        ApartmentTest::TearDown();
    }

    ComPtr<ITypeInfo> find(const wchar_t* name) {
        for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
            ComPtr<ITypeInfo> info;
            if (SUCCEEDED(library->GetTypeInfo(i, info.put())) && nameOf(info.get()) == name)
                return info;
        }
        ADD_FAILURE() << "nothing of that exact name";
        return {};
    }

    // The interface with its results as parameters: the vtable half of a dual interface.
    ComPtr<ITypeInfo> vtable(const wchar_t* name) {
        ComPtr<ITypeInfo> info = find(name);
        HREFTYPE half = 0;
        ComPtr<ITypeInfo> table;
        if (info && SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &half)))
            info->GetRefTypeInfo(half, table.put());
        return table ? table : info;
    }

    Lines functions(ITypeInfo* info) {
        Lines lines;
        each(info,
             [&](const FUNCDESC& function) { lines.push_back(functionLine(info, function)); });
        return lines;
    }

    template <typename Visit>
    void each(ITypeInfo* info, Visit visit) {
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
        for (UINT i = 0; i < attributes->cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            ASSERT_EQ(S_OK, info->GetFuncDesc(i, &function));
            visit(*function);
            info->ReleaseFuncDesc(function);
        }
        info->ReleaseTypeAttr(attributes);
    }

    // "Name = value" for an enumeration, "type Name" for a record.
    Lines members(const wchar_t* name) {
        Lines lines;
        const ComPtr<ITypeInfo> info = find(name);
        TYPEATTR* attributes = nullptr;
        if (!info || FAILED(info->GetTypeAttr(&attributes)))
            return lines;
        for (UINT i = 0; i < attributes->cVars; ++i) {
            VARDESC* variable = nullptr;
            info->GetVarDesc(i, &variable);
            const std::wstring member = nameOf(info.get(), variable->memid);
            lines.push_back(variable->varkind == VAR_CONST
                                ? member + L" = " + std::to_wstring(V_I4(variable->lpvarValue))
                                : typeText(info.get(), variable->elemdescVar.tdesc) + L" " +
                                      member);
            info->ReleaseVarDesc(variable);
        }
        info->ReleaseTypeAttr(attributes);
        return lines;
    }

    // "flags Interface" of a class.
    Lines implemented(const wchar_t* name) {
        Lines lines;
        const ComPtr<ITypeInfo> info = find(name);
        TYPEATTR* attributes = nullptr;
        if (!info || FAILED(info->GetTypeAttr(&attributes)))
            return lines;
        for (UINT i = 0; i < attributes->cImplTypes; ++i) {
            HREFTYPE reference = 0;
            INT flags = 0;
            ComPtr<ITypeInfo> type;
            info->GetRefTypeOfImplType(i, &reference);
            info->GetRefTypeInfo(reference, type.put());
            info->GetImplTypeFlags(i, &flags);
            lines.push_back(std::wstring(flags & IMPLTYPEFLAG_FDEFAULT ? L"default " : L"") +
                            (flags & IMPLTYPEFLAG_FSOURCE ? L"source " : L"") + nameOf(type.get()));
        }
        info->ReleaseTypeAttr(attributes);
        return lines;
    }

    ComPtr<ITypeLib> library;
};

} // namespace corvina::test
