// The ring of buffers by itself.

#include "player/WaveRing.h"
#include "support/FakeWave.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class Ring : public ::testing::Test {
protected:
    Ring() {
        fakeWave.reset();
        const WAVEFORMATEX format{};
        fakeWaveApi.outOpen(&device, 0, &format, 0, 0, 0);
        fakeWave.log.clear();
    }

    HWAVEOUT device = nullptr;
    WaveRing ring{{.sampleRate = 44100, .channels = 2, .bits = 16}, {}};
};

TEST_F(Ring, has_eight_buffers_of_8000_silent_bytes_that_know_their_number) {
    for (std::size_t i = 0; i < WaveRing::playedBuffers; ++i) {
        WaveBuffer& buffer = ring.next();
        EXPECT_EQ(buffer.header.dwUser, i);
        EXPECT_EQ(buffer.header.dwBufferLength, 8000u);
        EXPECT_EQ(buffer.header.lpData, reinterpret_cast<char*>(buffer.data.data()));
        EXPECT_EQ(buffer.dataAddress, reinterpret_cast<std::intptr_t>(buffer.header.lpData));
        EXPECT_EQ(buffer.data.size(), 4000u);
        EXPECT_THAT(buffer.data, Each(0));
    }
    EXPECT_EQ(&ring.next(), &ring.first());
}

TEST_F(Ring, has_a_spare_record_that_is_never_prepared) {
    ASSERT_EQ(ring.prepare(fakeWaveApi, device), MMSYSERR_NOERROR);
    EXPECT_EQ(fakeWave.prepared.size(), 8u);
    EXPECT_FALSE(fakeWave.prepared.contains(&ring.spare().header));
    EXPECT_EQ(ring.spare().header.lpData, nullptr);
    ring.unprepare(fakeWaveApi, device);
    EXPECT_TRUE(fakeWave.prepared.empty());
}

TEST_F(Ring, prepares_no_more_buffers_behind_one_that_fails) {
    fakeWave.faults.arm("waveOutPrepareHeader", 2, Faults::Lasting::once, MMSYSERR_NOMEM);
    EXPECT_EQ(ring.prepare(fakeWaveApi, device), static_cast<MMRESULT>(MMSYSERR_NOMEM));
    EXPECT_THAT(fakeWave.log, ElementsAre("Prepare 0", "Prepare 1"));
}

} // namespace
} // namespace corvina::test
