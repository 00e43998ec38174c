#include "ErrorWords.h"

#include <mmsystem.h>

#include <iterator>

namespace corvina::app {

namespace {

std::wstring deviceWords(long result) {
    wchar_t text[MAXERRORLENGTH] = L"";
    if (result < 0 || waveOutGetErrorTextW(static_cast<MMRESULT>(result), text, MAXERRORLENGTH))
        return {};
    return text;
}

std::wstring withNumber(const std::wstring& words, long number) {
    const std::wstring digits = std::to_wstring(number);
    return words.empty() || words == digits ? L"error " + digits : words + L" (" + digits + L")";
}

} // namespace

std::wstring describe(const ErrorEvent& event) {
    // A failure of the device has the platform function's name behind the colon, and no words.
    const std::size_t colon = event.function.find(L':');
    std::wstring words =
        colon == std::wstring::npos ? event.description : deviceWords(event.number);
    if (words.empty())
        words = event.description;
    const std::wstring function =
        event.function.substr(colon == std::wstring::npos ? 0 : colon + 1);
    return (function.empty() ? L"" : function + L": ") + withNumber(words, event.number);
}

std::wstring describe(const _com_error& error) {
    if (error.Error() == REGDB_E_CLASSNOTREG)
        return L"Corvina.ocx is not registered: run regsvr32 Corvina.ocx.";
    const _bstr_t words = error.Description();
    if (words.length() > 0)
        return static_cast<const wchar_t*>(words);
    wchar_t number[32];
    swprintf(number, std::size(number), L"COM error 0x%08lX",
             static_cast<unsigned long>(error.Error()));
    return number;
}

std::wstring describeResult(long result, const std::wstring& controlText) {
    return withNumber(controlText.empty() ? deviceWords(result) : controlText, result);
}

bool isExpectedAtEnd(const ErrorEvent& event) {
    return event.function == L"StopPlayAudio:waveOutReset" && event.number == MMSYSERR_INVALHANDLE;
}

} // namespace corvina::app
