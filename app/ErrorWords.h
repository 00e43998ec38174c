#pragma once

// What failed, in words for a person at the terminal.

#include "PlayerEvents.h"

#include <comdef.h>

#include <string>

namespace corvina::app {

// Stands for the control's result if the control raised an error instead.
constexpr long comFailure = 99;

[[nodiscard]] std::wstring describe(const _com_error& error);

// "waveOutWrite: The device handle is invalid. (5)"
[[nodiscard]] std::wstring describe(const ErrorEvent& event);

// A result that came without an event: the control's own text, else the wave device's.
[[nodiscard]] std::wstring describeResult(long result, const std::wstring& controlText);

// Every playback ends with this one event before DonePlay: the control resets the device once more
// after closing it and reports the failure of that. It says nothing about the file.
[[nodiscard]] bool isExpectedAtEnd(const ErrorEvent& event);

} // namespace corvina::app
