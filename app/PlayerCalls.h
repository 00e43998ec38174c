#pragma once

// Calls of the player control's interface: results are returned, failures thrown as _com_error with
// the control's own error information.

#include "PlayerClient.h"

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace corvina::app {

// An interface member whose last parameter receives its result.
template <typename... Parameters>
using Member = HRESULT (STDMETHODCALLTYPE _cPlayer::*)(Parameters...);

template <typename... Parameters>
using ResultOf = std::remove_pointer_t<
    std::tuple_element_t<sizeof...(Parameters) - 1, std::tuple<Parameters...>>>;

[[noreturn]] inline void throwWithErrorInformation(HRESULT code) {
    IErrorInfo* information = nullptr;
    if (GetErrorInfo(0, &information) != S_OK)
        information = nullptr;
    throw _com_error(code, information);
}

// Calls a member of the control and returns its result; a failed call throws with the control's own
// error information.
template <typename... Parameters, typename... Arguments>
ResultOf<Parameters...> call(const _cPlayerPtr& player, Member<Parameters...> member,
                             Arguments&&... arguments) {
    _cPlayer* const control = player.GetInterfacePtr();
    ResultOf<Parameters...> result{};
    const HRESULT code = (control->*member)(std::forward<Arguments>(arguments)..., &result);
    if (FAILED(code))
        throwWithErrorInformation(code);
    return result;
}

inline std::wstring takeText(BSTR text) {
    std::wstring copy(text ? text : L"", SysStringLen(text));
    SysFreeString(text);
    return copy;
}

// A text as an argument, with any character in it.
class TextArgument {
public:
    explicit TextArgument(const std::wstring& text)
        : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
        if (!text_)
            _com_issue_error(E_OUTOFMEMORY);
    }
    ~TextArgument() { SysFreeString(text_); }
    TextArgument(const TextArgument&) = delete;
    TextArgument& operator=(const TextArgument&) = delete;
    operator BSTR() const noexcept { return text_; }

private:
    BSTR text_;
};

// Sets a property of the control.
template <typename... Parameters, typename... Arguments>
void put(const _cPlayerPtr& player, Member<Parameters...> member, Arguments&&... arguments) {
    _cPlayer* const control = player.GetInterfacePtr();
    const HRESULT code = (control->*member)(std::forward<Arguments>(arguments)...);
    if (FAILED(code))
        throwWithErrorInformation(code);
}

inline VARIANT_BOOL variantBool(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

} // namespace corvina::app
