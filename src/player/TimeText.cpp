#include "player/TimeText.h"

namespace corvina {
namespace {

std::wstring twoDigits(std::int32_t number) {
    const std::wstring digits = std::to_wstring(number < 0 ? -number : number);
    return (number < 0 ? L"-" : L"") + std::wstring(digits.size() < 2 ? 1 : 0, L'0') + digits;
}

} // namespace

std::wstring secondsAsTimeText(std::int32_t seconds) {
    const std::int32_t hours = seconds / 3600;
    const std::int32_t minutes = seconds / 60 - hours * 60;
    return std::to_wstring(hours) + L":" + twoDigits(minutes) + L":" + twoDigits(seconds % 60);
}

} // namespace corvina
