// The codecs stay loaded exactly as long as somebody wants them.

#include "platform/LoadedCodecs.h"
#include "support/FakeAcm.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class Codecs : public ::testing::Test {
protected:
    void SetUp() override { fakeAcm.reset(); }
};

TEST_F(Codecs, are_opened_at_the_beginning_and_closed_at_the_end) {
    {
        const LoadedCodecs codecs(fakeAcmApi);
        EXPECT_EQ(codecs.count(), 2u);
        EXPECT_EQ(fakeAcm.openDrivers, 2);
    }
    EXPECT_EQ(fakeAcm.openDrivers, 0);
}

TEST_F(Codecs, that_cannot_be_opened_are_passed_over_and_none_leaks_whatever_fails) {
    forEachFaultAndPair(
        fakeAcm.faults,
        [] {
            { const LoadedCodecs codecs(fakeAcmApi); }
            EXPECT_EQ(fakeAcm.openDrivers, 0);
        },
        4);
}

TEST_F(Codecs, behind_one_that_cannot_be_opened_are_opened) {
    fakeAcm.faults.arm("acmDriverOpen", 1);
    const LoadedCodecs codecs(fakeAcmApi);
    EXPECT_EQ(codecs.count(), 1u);
}

TEST_F(Codecs, of_the_system_are_found) {
    const LoadedCodecs codecs(systemAcmApi);
    EXPECT_GE(codecs.count(), 1u) << "PCM is converted by the system itself";
}

TEST_F(Codecs, of_the_system_stay_in_memory_only_while_wanted) {
    ASSERT_EQ(::GetModuleHandleA("msadp32.acm"), nullptr);
    {
        const LoadedCodecs codecs(systemAcmApi);
        EXPECT_NE(::GetModuleHandleA("msadp32.acm"), nullptr);
    }
    EXPECT_EQ(::GetModuleHandleA("msadp32.acm"), nullptr);
}

} // namespace
} // namespace corvina::test
