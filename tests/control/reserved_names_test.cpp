// No published name is a word that the languages and containers of hosts keep for themselves: a
// member of such a name cannot be called there without quoting it, or is hidden by the container's
// own.

#include "TypeLibraryFixture.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <set>
#include <sstream>

using namespace corvina;
using namespace corvina::test;

namespace {

struct Language {
    const char* name;
    bool anyCase; // whether If and IF are the same word
    const wchar_t* words;
};

constexpr Language languages[] = {
    {"Visual Basic", true,
     L"AddressOf And Any As Attribute Boolean ByRef Byte ByVal Call Case CDate CDec CDbl CByte "
     L"CBool "
     L"CCur CInt CLng Close Const CSng CStr Currency CVar CVErr Date Debug Decimal Declare DefBool "
     L"DefByte DefCur DefDate DefDbl DefInt DefLng DefObj DefSng DefStr DefVar Dim Do Double Each "
     L"Else ElseIf Empty End Enum Eqv Erase Event Exit False For Friend Function Get Global GoSub "
     L"GoTo If Imp Implements In Input Integer Is LBound Len Let Lib Like Line Lock Long Loop LSet "
     L"Me Mod New Next Not Nothing Null Object On Open Option Optional Or ParamArray Preserve "
     L"Print "
     L"Private Property Public Put RaiseEvent ReDim Rem Resume Return RSet Seek Select Set Single "
     L"Static Stop String Sub Then To True Type TypeOf UBound Unlock Until Variant Wend While With "
     L"WithEvents Write Xor"},
    {"Visual Basic .NET", true,
     L"AddHandler AddressOf Alias And AndAlso As Boolean ByRef Byte ByVal Call Case Catch CBool "
     L"CByte "
     L"CChar CDate CDbl CDec Char CInt Class CLng CObj Const Continue CSByte CShort CSng CStr "
     L"CType "
     L"CUInt CULng CUShort Date Decimal Declare Default Delegate Dim DirectCast Do Double Each "
     L"Else "
     L"ElseIf End EndIf Enum Erase Error Event Exit False Finally For Friend Function Get GetType "
     L"GetXMLNamespace Global GoSub GoTo Handles If Implements Imports In Inherits Integer "
     L"Interface "
     L"Is IsNot Let Lib Like Long Loop Me Mod Module MustInherit MustOverride MyBase MyClass "
     L"NameOf "
     L"Namespace Narrowing New Next Not Nothing NotInheritable NotOverridable Object Of On "
     L"Operator "
     L"Option Optional Or OrElse Out Overloads Overridable Overrides ParamArray Partial Private "
     L"Property Protected Public RaiseEvent ReadOnly ReDim REM RemoveHandler Resume Return SByte "
     L"Select Set Shadows Shared Short Single Static Step Stop String Structure Sub SyncLock Then "
     L"Throw To True Try TryCast TypeOf UInteger ULong UShort Using Variant Wend When While "
     L"Widening "
     L"With WithEvents WriteOnly Xor"},
    {"C#", false,
     L"abstract as base bool break byte case catch char checked class const continue decimal "
     L"default "
     L"delegate do double else enum event explicit extern false finally fixed float for foreach "
     L"goto "
     L"if implicit in int interface internal is lock long namespace new null object operator out "
     L"override params private protected public readonly ref return sbyte sealed short sizeof "
     L"stackalloc static string struct switch this throw true try typeof uint ulong unchecked "
     L"unsafe "
     L"ushort using virtual void volatile while"},
    {"Object Pascal", true,
     L"and array as asm begin case class const constructor destructor dispinterface div do downto "
     L"else end except exports file finalization finally for function goto if implementation in "
     L"inherited initialization inline interface is label library mod nil not object of or out "
     L"packed procedure program property raise record repeat resourcestring set shl shr string "
     L"then "
     L"threadvar to try type unit until uses var while with xor"},
    {"JScript", false,
     L"abstract boolean break byte case catch char class const continue debugger default delete do "
     L"double else enum export extends false final finally float for function goto if implements "
     L"import in instanceof int interface long native new null package private protected public "
     L"return short static super switch synchronized this throw throws transient true try typeof "
     L"var void volatile while with"},
};

// The container's object has these in front of the control's own.
constexpr const wchar_t* ofContainers =
    L"Align Anchor Bottom Cancel CausesValidation Container DataBindings DataField DataSource "
    L"Default "
    L"Dock Drag DragIcon DragMode Enabled Height HelpContextID Index Left Move Name Object Parent "
    L"Right SetFocus ShowWhatsThis TabIndex TabStop Tag Text ToolTipText Top Visible "
    L"WhatsThisHelpID Width ZOrder DragDrop DragOver GotFocus LostFocus Validate";

std::set<std::wstring> wordsOf(const wchar_t* text, bool anyCase) {
    std::wistringstream in(text);
    std::set<std::wstring> words;
    for (std::wstring word; in >> word;) {
        if (anyCase)
            std::ranges::transform(word, word.begin(), ::towlower);
        words.insert(word);
    }
    return words;
}

struct Published {
    std::wstring type;
    std::wstring name;
    bool ofControl = false; // a member or an event of a control
};

class ReservedNames : public TypeLibrary {
protected:
    static std::vector<std::wstring> parametersOf(ITypeInfo* info, MEMBERID member) {
        std::array<BSTR, 16> names{};
        UINT count = 0;
        EXPECT_EQ(S_OK,
                  info->GetNames(member, names.data(), static_cast<UINT>(names.size()), &count));
        std::vector<std::wstring> parameters;
        for (UINT i = 0; i < count; ++i) {
            if (i > 0)
                parameters.push_back(textOf(names[i]));
            ::SysFreeString(names[i]);
        }
        return parameters;
    }

    // Types, members and their parameters, events, fields and constants.
    std::vector<Published> published() {
        std::vector<Published> all;
        for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
            ComPtr<ITypeInfo> info;
            EXPECT_EQ(S_OK, library->GetTypeInfo(i, info.put()));
            const std::wstring type = nameOf(info.get());
            const bool ofControl = type.ends_with(L"cPlayer") || type.ends_with(L"cAudioGraph");
            all.push_back({L"Corvina", type, false});
            each(info.get(), [&](const FUNCDESC& function) {
                const std::wstring member = nameOf(info.get(), function.memid);
                all.push_back({type, member, ofControl});
                for (const std::wstring& parameter : parametersOf(info.get(), function.memid))
                    all.push_back({type + L"." + member, parameter, false});
            });
            TYPEATTR* attributes = nullptr;
            EXPECT_EQ(S_OK, info->GetTypeAttr(&attributes));
            for (UINT v = 0; v < attributes->cVars; ++v) {
                VARDESC* variable = nullptr;
                EXPECT_EQ(S_OK, info->GetVarDesc(v, &variable));
                all.push_back({type, nameOf(info.get(), variable->memid), false});
                info->ReleaseVarDesc(variable);
            }
            info->ReleaseTypeAttr(attributes);
        }
        return all;
    }

    // "Type.Name" of those that are among the words.
    static std::set<std::wstring> clashes(const std::vector<Published>& names,
                                          const std::set<std::wstring>& words, bool anyCase) {
        std::set<std::wstring> found;
        for (const Published& one : names) {
            std::wstring word = one.name;
            if (anyCase)
                std::ranges::transform(word, word.begin(), ::towlower);
            if (words.contains(word))
                found.insert(one.type + L"." + one.name);
        }
        return found;
    }
    static Lines linesOf(const std::set<std::wstring>& names) {
        Lines lines;
        lines.insert(lines.end(), names.begin(), names.end());
        return lines;
    }
};

// Published, and harmless: the names of an event's parameters are the handler's own affair, and
// what imports the library into Pascal gives this one another name.
const std::set<std::wstring> known{L"__cPlayer.NextStarted.File"};

TEST_F(ReservedNames, of_no_language_are_published) {
    const std::vector<Published> names = published();
    EXPECT_GT(names.size(), 150u);
    for (const Language& language : languages) {
        SCOPED_TRACE(language.name);
        const auto words = wordsOf(language.words, language.anyCase);
        std::set<std::wstring> found = clashes(names, words, language.anyCase);
        std::erase_if(found, [](const std::wstring& name) { return known.contains(name); });
        EXPECT_EQ(Lines{}, linesOf(found));
    }
}

TEST_F(ReservedNames, of_containers_are_no_members_of_a_control) {
    std::vector<Published> names = published();
    std::erase_if(names, [](const Published& one) { return !one.ofControl; });
    EXPECT_GT(names.size(), 60u);
    EXPECT_EQ(Lines{}, linesOf(clashes(names, wordsOf(ofContainers, true), true)));
}

TEST_F(ReservedNames, would_be_found) {
    const std::vector<Published> names{{L"T", L"Tag", true}, {L"T", L"next", true}};
    EXPECT_EQ(Lines{L"T.Tag"}, linesOf(clashes(names, wordsOf(ofContainers, true), true)));
    EXPECT_EQ(Lines{L"T.next"}, linesOf(clashes(names, wordsOf(languages[0].words, true), true)));
    EXPECT_EQ(Lines{}, linesOf(clashes(names, wordsOf(languages[2].words, false), false)));
}

} // namespace
