#pragma once

// The table of contents of a disc: an entry for each track and, last, one for the lead-out, which
// closes the last track. Entries have the number of their track, so tracks are 1 to TrackCount - 1
// and a track is as long as from its start to the next entry's.
//
// An index or a track number outside the table gives nothing and changes nothing.

#include <array>
#include <cstdint>
#include <vector>

namespace corvina {

// A descriptor as drives return it: a reserved byte, ADR and CTL, the track number, a reserved
// byte, the start address, most significant byte first.
using TrackDescriptor = std::array<std::uint8_t, 8>;

inline constexpr std::uint8_t leadOutNumber = 170;

class cTOCTrack {
public:
    [[nodiscard]] bool IsAudio() const noexcept { return !isDataControl(CTL()); }
    [[nodiscard]] std::int32_t StartLBA() const noexcept;
    [[nodiscard]] std::uint8_t TrackNumber() const noexcept { return descriptor_[2]; }
    [[nodiscard]] std::uint8_t ADR() const noexcept;
    [[nodiscard]] std::uint8_t CTL() const noexcept;

    void SetDescriptor(const TrackDescriptor& descriptor) noexcept { descriptor_ = descriptor; }

private:
    [[nodiscard]] static bool isDataControl(std::uint8_t control) noexcept;

    TrackDescriptor descriptor_{};
};

class cTOC {
public:
    [[nodiscard]] std::int32_t TrackCount() const noexcept;
    // Makes the table anew with that many empty entries; a negative count raises Subscript out of
    // range.
    void TrackCount(std::int32_t count);

    // The entry of that index, from 1; null outside the table.
    [[nodiscard]] const cTOCTrack* track(std::int32_t number) const noexcept;

    // Files a descriptor under its track number, the lead-out's in the last place.
    void StoreEntry(const TrackDescriptor& descriptor) noexcept;

private:
    [[nodiscard]] bool holds(std::int32_t index) const noexcept;

    std::vector<cTOCTrack> entries_;
};

} // namespace corvina
