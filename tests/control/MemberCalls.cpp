#include "MemberCalls.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace corvina::test {
namespace {

// What a type without its reference is on the stack.
VARTYPE simpleType(ITypeInfo* info, const TYPEDESC& type) {
    if (type.vt == VT_PTR) // an interface
        return VT_DISPATCH;
    if (type.vt != VT_USERDEFINED)
        return type.vt;
    ComPtr<ITypeInfo> named;
    TYPEATTR* attributes = nullptr;
    VARTYPE result = VT_I4; // of enumerations and colours
    if (SUCCEEDED(info->GetRefTypeInfo(type.hreftype, named.put())) &&
        SUCCEEDED(named->GetTypeAttr(&attributes))) {
        if (attributes->typekind == TKIND_RECORD)
            result = VT_RECORD;
        else if (attributes->typekind == TKIND_DISPATCH || attributes->typekind == TKIND_INTERFACE)
            result = VT_DISPATCH;
        named->ReleaseTypeAttr(attributes);
    }
    return result;
}

MemberParameter parameterOf(ITypeInfo* info, const ELEMDESC& element) {
    const bool result = (element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
    const TYPEDESC& type = element.tdesc;
    if (type.vt != VT_PTR)
        return {simpleType(info, type), false};
    const VARTYPE target = simpleType(info, *type.lptdesc);
    return {target, result};
}

Variant valueFor(VARTYPE type, const MemberValues& values) {
    Variant value;
    switch (type) {
    case VT_BSTR:
        return Variant(values.text);
    case VT_BOOL:
        V_BOOL(&value) = values.number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
        break;
    case VT_R4:
        V_R4(&value) = values.fraction;
        break;
    case VT_I2:
        V_I2(&value) = static_cast<SHORT>(values.number);
        break;
    case VT_DISPATCH:
        V_DISPATCH(&value) = values.object;
        if (values.object)
            values.object->AddRef();
        break;
    default:
        V_I4(&value) = values.number;
        type = VT_I4;
        break;
    }
    V_VT(&value) = type;
    return value;
}

void giveBack(VARTYPE type, const void* written) {
    void* pointer = nullptr;
    std::memcpy(&pointer, written, sizeof pointer);
    if (type == VT_BSTR)
        ::SysFreeString(static_cast<BSTR>(pointer));
    else if (type == VT_DISPATCH && pointer)
        static_cast<IUnknown*>(pointer)->Release();
}

} // namespace

std::string Member::text() const {
    const std::string word = kind == INVOKE_PROPERTYGET   ? "get "
                             : kind == INVOKE_PROPERTYPUT ? "put "
                             : kind == INVOKE_FUNC        ? ""
                                                          : "putref ";
    return word + std::string(name.begin(), name.end());
}

std::vector<Member> membersOf(ITypeInfo* info) {
    std::vector<Member> members;
    TYPEATTR* attributes = nullptr;
    if (FAILED(info->GetTypeAttr(&attributes)))
        return members;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(info->GetFuncDesc(i, &function)))
            continue;
        Member member{.name = nameOf(info, function->memid),
                      .id = function->memid,
                      .kind = function->invkind,
                      .slot = static_cast<std::size_t>(function->oVft),
                      .parameters = {}};
        for (int k = 0; k < function->cParams; ++k)
            member.parameters.push_back(parameterOf(info, function->lprgelemdescParam[k]));
        members.push_back(std::move(member));
        info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(attributes);
    return members;
}

HRESULT callEarly(IUnknown* vtable, const Member& member, const MemberValues& values) {
    constexpr std::size_t mostParameters = 8;
    using Space = std::array<std::uint8_t, 512>; // for any result and any record
    const std::size_t count = member.parameters.size();
    if (count > mostParameters)
        return E_INVALIDARG;
    std::vector<Space> spaces(count);
    std::vector<Variant> arguments;
    std::vector<VARTYPE> types;
    std::vector<VARIANTARG*> pointers;
    arguments.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const MemberParameter& parameter = member.parameters[i];
        const bool address = parameter.result || parameter.type == VT_RECORD;
        const auto space = reinterpret_cast<std::intptr_t>(&spaces[i]);
        arguments.push_back(address ? Variant(static_cast<long>(values.takesResults ? space : 0))
                                    : valueFor(parameter.type, values));
        types.push_back(V_VT(&arguments.back()));
        pointers.push_back(&arguments.back());
    }
    // Not even for no argument does the system take null pointers.
    types.push_back(VT_EMPTY);
    pointers.push_back(nullptr);
    // Wine refuses VT_HRESULT, which is the same.
    Variant returned;
    const HRESULT called =
        ::DispCallFunc(vtable, member.slot, CC_STDCALL, VT_I4, static_cast<UINT>(count),
                       types.data(), pointers.data(), &returned);
    for (std::size_t i = 0; i < count; ++i)
        if (member.parameters[i].result && SUCCEEDED(V_I4(&returned)))
            giveBack(member.parameters[i].type, &spaces[i]);
    return SUCCEEDED(called) ? V_I4(&returned) : called;
}

HRESULT callLate(IDispatch* control, const Member& member, const MemberValues& values,
                 Variant* result) {
    std::vector<Variant> arguments;
    for (const MemberParameter& parameter : member.parameters) {
        if (parameter.result)
            continue;
        const bool text = parameter.type == VT_BSTR;
        arguments.push_back(!values.wrongTypes ? valueFor(parameter.type, values)
                            : text             ? Variant(4711)
                                               : Variant(L"no number"));
    }
    Variant ignored;
    const bool put = member.kind == INVOKE_PROPERTYPUT || member.kind == INVOKE_PROPERTYPUTREF;
    EXCEPINFO raised{};
    const HRESULT called = callByName(control, member.name.c_str(), static_cast<WORD>(member.kind),
                                      std::move(arguments),
                                      put      ? nullptr
                                      : result ? result
                                               : &ignored,
                                      &raised);
    ::SysFreeString(raised.bstrSource);
    ::SysFreeString(raised.bstrDescription);
    ::SysFreeString(raised.bstrHelpFile);
    return called == DISP_E_EXCEPTION ? raised.scode : called;
}

} // namespace corvina::test
