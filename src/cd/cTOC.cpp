#include "cd/cTOC.h"

#include "runtime/OutOfMemory.h"
#include "runtime/RuntimeError.h"

#include <algorithm>

namespace corvina {
namespace {

constexpr std::uint8_t copyPermitted = 0b0010;

// The controls of audio tracks once the copy bit is taken out. The last one holds that bit and so
// never matches; 14 and 15 are audio by way of 12 and 13.
constexpr std::array<std::uint8_t, 7> audioControls = {0b0000, 0b0001, 0b1000, 0b1001,
                                                       0b1100, 0b1101, 0b1111};

} // namespace

std::int32_t cTOCTrack::StartLBA() const noexcept {
    std::uint32_t address = 0;
    for (std::size_t i = 4; i < descriptor_.size(); ++i)
        address = address << 8 | descriptor_[i];
    return static_cast<std::int32_t>(address);
}

std::uint8_t cTOCTrack::ADR() const noexcept {
    return static_cast<std::uint8_t>(descriptor_[1] >> 4);
}

std::uint8_t cTOCTrack::CTL() const noexcept {
    return static_cast<std::uint8_t>(descriptor_[1] & 0x0F);
}

bool cTOCTrack::isDataControl(std::uint8_t control) noexcept {
    const auto withoutCopyBit = static_cast<std::uint8_t>(control & ~copyPermitted);
    return std::find(audioControls.begin(), audioControls.end(), withoutCopyBit) ==
           audioControls.end();
}

std::int32_t cTOC::TrackCount() const noexcept {
    return static_cast<std::int32_t>(entries_.size());
}

void cTOC::TrackCount(std::int32_t count) {
    if (count < 0)
        throwSubscript();
    const auto entries = static_cast<std::size_t>(count);
    if (entries > entries_.max_size())
        throwOutOfMemory();
    entries_ = std::vector<cTOCTrack>(entries);
}

const cTOCTrack* cTOC::track(std::int32_t number) const noexcept {
    return holds(number) ? &entries_[static_cast<std::size_t>(number) - 1] : nullptr;
}

void cTOC::StoreEntry(const TrackDescriptor& descriptor) noexcept {
    const std::uint8_t number = descriptor[2];
    const std::int32_t index = number == leadOutNumber ? TrackCount() : number;
    if (holds(index))
        entries_[static_cast<std::size_t>(index) - 1].SetDescriptor(descriptor);
}

bool cTOC::holds(std::int32_t index) const noexcept {
    return index >= 1 && index <= TrackCount();
}

} // namespace corvina
