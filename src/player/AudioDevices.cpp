#include "player/AudioDevices.h"

#include "platform/AnsiText.h"
#include "runtime/RuntimeError.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace corvina {
namespace {

constexpr UINT outCapsBytes = 52;
// The trailing reserved field of the record is left out.
constexpr UINT inCapsBytes = 46;
static_assert(sizeof(WAVEOUTCAPSA) == outCapsBytes);
static_assert(offsetof(WAVEINCAPSA, wReserved1) == inCapsBytes);

// Both kinds of record have these fields under the same names.
template <typename Caps>
AudioDevice describe(const Caps& caps) {
    const auto nameEnd = std::find(std::begin(caps.szPname), std::end(caps.szPname), '\0');
    if (nameEnd == std::end(caps.szPname))
        throwInvalidCall();
    AudioDevice device;
    device.name = fromAnsi(std::string_view(std::begin(caps.szPname), nameEnd));
    device.driverVersion = std::to_wstring(static_cast<std::int32_t>(caps.vDriverVersion));
    device.channels = static_cast<std::int16_t>(caps.wChannels);
    device.formats = static_cast<std::int32_t>(caps.dwFormats);
    return device;
}

} // namespace

std::int32_t countAudioDevices(const WaveApi& wave, std::int32_t direction) {
    return static_cast<std::int32_t>(direction == AudioDirection::input ? wave.inGetNumDevs()
                                                                        : wave.outGetNumDevs());
}

std::int32_t describeAudioDevice(const WaveApi& wave, std::int32_t index, std::int32_t direction,
                                 AudioDevice& device) {
    const auto id = static_cast<UINT_PTR>(index);
    // The record is described whatever the query returned: a host that ignores the result finds
    // empty fields instead of those of the device asked for before.
    if (direction == AudioDirection::output) {
        WAVEOUTCAPSA caps{};
        const MMRESULT result = wave.outGetDevCaps(id, &caps, outCapsBytes);
        device = describe(caps);
        return static_cast<std::int32_t>(result);
    }
    WAVEINCAPSA caps{};
    const MMRESULT result = wave.inGetDevCaps(id, &caps, inCapsBytes);
    device = describe(caps);
    return static_cast<std::int32_t>(result);
}

} // namespace corvina
