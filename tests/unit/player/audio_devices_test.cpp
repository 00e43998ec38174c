// The wave devices as they describe themselves.

#include "player/AudioDevices.h"
#include "support/ErrorNumber.h"

#include <cstring>
#include <gtest/gtest.h>

namespace corvina::test {
namespace {

struct DeviceQuery {
    bool output = false;
    UINT_PTR id = 0;
    UINT bytes = 0;
};
DeviceQuery query;
MMRESULT queryResult = 0;
char deviceName[32];

template <typename Caps>
MMRESULT describeDevice(Caps* caps) {
    if (queryResult != 0)
        return queryResult;
    std::memcpy(caps->szPname, deviceName, sizeof deviceName);
    caps->vDriverVersion = 0x0510;
    caps->dwFormats = 0xFFFFF;
    caps->wChannels = 2;
    return 0;
}

MMRESULT WINAPI outCaps(UINT_PTR id, LPWAVEOUTCAPSA caps, UINT bytes) {
    query = {true, id, bytes};
    return describeDevice(caps);
}
MMRESULT WINAPI inCaps(UINT_PTR id, LPWAVEINCAPSA caps, UINT bytes) {
    query = {false, id, bytes};
    return describeDevice(caps);
}
UINT WINAPI outCount() {
    return 3;
}
UINT WINAPI inCount() {
    return 1;
}

class AudioDevices : public ::testing::Test {
protected:
    AudioDevices() {
        queryResult = 0;
        query = {};
        std::memset(deviceName, 0, sizeof deviceName);
        std::strcpy(deviceName, "Loudspeaker");
        wave.outGetNumDevs = &outCount;
        wave.inGetNumDevs = &inCount;
        wave.outGetDevCaps = &outCaps;
        wave.inGetDevCaps = &inCaps;
    }
    std::int32_t describe(std::int32_t direction, std::int32_t index = 0) {
        return describeAudioDevice(wave, index, direction, device);
    }

    WaveApi wave;
    AudioDevice device;
};

TEST_F(AudioDevices, inputs_are_counted_for_1_and_outputs_for_anything_else) {
    EXPECT_EQ(countAudioDevices(wave, AudioDirection::input), 1);
    for (const std::int32_t direction : {2, 0, 3, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(countAudioDevices(wave, direction), 3) << direction;
}

TEST_F(AudioDevices, outputs_are_described_for_2_and_inputs_for_anything_else) {
    EXPECT_EQ(describe(AudioDirection::output), 0);
    EXPECT_TRUE(query.output);
    for (const std::int32_t direction : {1, 0, 3, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(describe(direction), 0);
        EXPECT_FALSE(query.output) << direction;
    }
}

TEST_F(AudioDevices, the_records_are_passed_with_the_sizes_52_and_46) {
    describe(AudioDirection::output);
    EXPECT_EQ(query.bytes, 52u);
    describe(AudioDirection::input);
    EXPECT_EQ(query.bytes, 46u);
}

TEST_F(AudioDevices, any_index_is_passed_on) {
    for (const std::int32_t index : {0, 5, -1, INT32_MAX, INT32_MIN}) {
        describe(AudioDirection::output, index);
        EXPECT_EQ(query.id, static_cast<UINT_PTR>(index));
    }
}

TEST_F(AudioDevices, the_description_names_driver_channels_and_formats) {
    std::strcpy(deviceName + 12, "behind the end");
    describe(AudioDirection::output);
    EXPECT_EQ(device.name, L"Loudspeaker");
    EXPECT_EQ(device.driverVersion, L"1296");
    EXPECT_EQ(device.channels, 2);
    EXPECT_EQ(device.formats, 0xFFFFF);
}

TEST_F(AudioDevices, a_failed_query_fills_empty_values_over_what_was_there) {
    for (const std::int32_t direction : {AudioDirection::output, AudioDirection::input}) {
        queryResult = 0;
        describe(direction);
        queryResult = MMSYSERR_BADDEVICEID;
        EXPECT_EQ(describe(direction), MMSYSERR_BADDEVICEID);
        EXPECT_EQ(device.name, L"");
        EXPECT_EQ(device.driverVersion, L"0");
        EXPECT_EQ(device.channels, 0);
        EXPECT_EQ(device.formats, 0);
    }
}

TEST_F(AudioDevices, a_name_that_fills_its_field_raises_5) {
    std::memset(deviceName, 'x', sizeof deviceName);
    EXPECT_EQ(errorNumberOf([&] { describe(AudioDirection::output); }), 5);
    EXPECT_EQ(errorNumberOf([&] { describe(AudioDirection::input); }), 5);
    deviceName[31] = '\0';
    EXPECT_EQ(describe(AudioDirection::output), 0);
    EXPECT_EQ(device.name.size(), 31u);
}

TEST(RealAudioDevices, an_index_beyond_the_last_is_refused) {
    AudioDevice device;
    const std::int32_t outputs = countAudioDevices(systemWaveApi, AudioDirection::output);
    EXPECT_EQ(describeAudioDevice(systemWaveApi, outputs, AudioDirection::output, device),
              MMSYSERR_BADDEVICEID);
    EXPECT_EQ(device.name, L"");
    EXPECT_EQ(device.driverVersion, L"0");
}

TEST(RealAudioDevices, each_one_has_a_name_and_channels) {
    for (const std::int32_t direction : {AudioDirection::input, AudioDirection::output}) {
        const std::int32_t count = countAudioDevices(systemWaveApi, direction);
        for (std::int32_t i = 0; i < count; ++i) {
            AudioDevice device;
            EXPECT_EQ(describeAudioDevice(systemWaveApi, i, direction, device), 0);
            EXPECT_NE(device.name, L"");
            EXPECT_GT(device.channels, 0);
        }
    }
}

} // namespace
} // namespace corvina::test
