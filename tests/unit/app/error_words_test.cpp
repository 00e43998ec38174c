#include "ErrorWords.h"

#include <windows.h>

#include <mmsystem.h>

#include <gtest/gtest.h>
#include <string>

namespace corvina::app {
namespace {

TEST(ErrorWords, are_the_controls_own_for_its_own_failures) {
    EXPECT_EQ(describe({L"", 1, L"Format not supported"}), L"Format not supported (1)");
    EXPECT_EQ(describe({L"InitConversion", 5, L"Can't init conversion"}),
              L"InitConversion: Can't init conversion (5)");
}

TEST(ErrorWords, are_the_devices_for_a_failure_of_the_device) {
    const std::wstring words = describe({L"WindowProcOut:waveOutWrite", MMSYSERR_NODRIVER, L""});
    EXPECT_EQ(words.find(L"waveOutWrite: "), 0u);
    EXPECT_GT(words.size(), std::wstring(L"waveOutWrite: error 6").size());
}

TEST(ErrorWords, fall_back_to_the_number) {
    EXPECT_EQ(describeResult(-4711, L""), L"error -4711");
}

TEST(ErrorWords, know_the_one_event_that_every_playback_ends_with) {
    EXPECT_TRUE(isExpectedAtEnd({L"StopPlayAudio:waveOutReset", 5, L"5"}));
    EXPECT_FALSE(isExpectedAtEnd({L"StopPlayAudio:waveOutReset", 2, L"2"}));
    EXPECT_FALSE(isExpectedAtEnd({L"StopPlayProc:waveOutClose", 5, L"5"}));
}

} // namespace
} // namespace corvina::app
