#pragma once

// One open file of the system's Media Foundation: its sound, as 16-bit samples of all its channels.
// Pictures are passed over. Times are in units of 100 nanoseconds. One thread at a time.

#include "sources/MediaFoundationLibrary.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace corvina {

class MediaFoundationReader {
public:
    struct Format {
        DWORD rate = 0;
        DWORD channels = 0;
        DWORD channelMask = 0; // the SPEAKER_ bits; 0 if the file has none
    };
    // What one call of the system's reader delivers.
    struct Block {
        std::vector<std::int16_t> samples = {}; // whole frames of all channels
        LONGLONG time = 0;                      // of its start
    };

    // library: started.
    explicit MediaFoundationReader(std::shared_ptr<const MediaFoundationLibrary> library)
        : library_(std::move(library)) {}
    MediaFoundationReader(const MediaFoundationReader&) = delete;
    MediaFoundationReader& operator=(const MediaFoundationReader&) = delete;
    // Waits for the end of a seek.
    ~MediaFoundationReader();

    // False if the system cannot read the file.
    [[nodiscard]] bool open(const std::wstring& path);
    // Selects the first sound of an open file; false if there is none that can be decoded.
    [[nodiscard]] bool selectSound();

    [[nodiscard]] const Format& format() const noexcept { return format_; }
    [[nodiscard]] LONGLONG duration() const;
    // False at the end of the file. A reader that fails, or goes over to another format, is at its
    // end.
    [[nodiscard]] bool read(Block& block);
    // Moves to some place at that time or before.
    [[nodiscard]] bool seek(LONGLONG time);

private:
    [[nodiscard]] bool readFormat(Format& format) const;
    [[nodiscard]] bool copySample(IMFSample& sample, std::vector<std::int16_t>& to) const;

    std::shared_ptr<const MediaFoundationLibrary> library_; // outlives the reader
    ComPtr<IMFSourceReader> reader_;
    Format format_;
    bool seeking_ = false; // a seek was asked for, and nothing has been read since
};

} // namespace corvina
