#pragma once

// The virtual CD drives of the test environment, as a test program puts discs into them and breaks them
// (wine/virtual-drive/drive.h has the words), and discs made of deterministic sectors.

#include "support/WavBytes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corvina::test {

struct DiscTrack {
    bool audio = true;
    std::int32_t sectors = 0;
};

// A BIN/CUE image in the folder of the drives, deleted with the object. Audio sectors are those of
// one signal from end to end, no sample of which is 0; data sectors have their header.
class DiscImage {
public:
    explicit DiscImage(std::vector<DiscTrack> tracks);
    ~DiscImage();
    DiscImage(const DiscImage&) = delete;
    DiscImage& operator=(const DiscImage&) = delete;

    // The cue sheet as the drive's description names it.
    [[nodiscard]] const std::string& cue() const noexcept { return cue_; }
    [[nodiscard]] std::int32_t start(int track) const; // LBA; the lead-out's behind the last
    [[nodiscard]] std::int32_t sectors(int track) const;
    [[nodiscard]] int tracks() const noexcept { return static_cast<int>(tracks_.size()); }
    // The bytes of sectors; those of the lead-out are 0.
    [[nodiscard]] Bytes bytes(std::int32_t lba, std::int32_t sectors) const;
    // What a track file for it holds.
    [[nodiscard]] Bytes trackFileOf(int track) const;

private:
    std::vector<DiscTrack> tracks_;
    Bytes data_;
    std::string cue_;
};

class VirtualDrive {
public:
    // The test environment has that drive.
    [[nodiscard]] static bool exists(char letter);

    // Takes the drive over, empty, and leaves it so.
    explicit VirtualDrive(char letter);
    ~VirtualDrive();
    VirtualDrive(const VirtualDrive&) = delete;
    VirtualDrive& operator=(const VirtualDrive&) = delete;

    // From now on these lines describe the drive.
    void set(std::vector<std::string> lines);
    // Puts a disc in, with its track files in the drive's root.
    void load(const DiscImage& disc, std::vector<std::string> lines = {});
    // The requests since the description was last set.
    [[nodiscard]] std::vector<std::string> requests() const;

    [[nodiscard]] std::wstring trackPath(int track) const;
    // The folder of the track files as Unix has it.
    [[nodiscard]] std::string unixRoot() const;

private:
    void describe(const std::string& text) const;
    void makeWineForgetTheDisc() const;
    void removeTrackFiles();

    char letter_;
    std::string place_; // the lines that never change
    std::string logPath_;
    std::vector<std::wstring> trackFiles_;
};

} // namespace corvina::test
