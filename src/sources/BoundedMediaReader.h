#pragma once

// One open file of the system's Media Foundation, read on a thread of its own, because a damaged
// file may keep the system's reader for ever (Wine's waits for sound that never comes). A call that
// takes longer than the limit is given up: then the file is at its end, and the thread is left
// behind with the reader and its share of the library. The file stays open until the reader comes
// back.
//
// Blocks are read some at a time, because each turn of the threads costs as much as a part of a
// block.

#include "platform/BoundedThread.h"
#include "sources/MediaFoundationReader.h"

namespace corvina {

class BoundedMediaReader {
public:
    using Format = MediaFoundationReader::Format;
    using Block = MediaFoundationReader::Block;
    enum class Opened { yes, unreadable, withoutSound };

    // library: started.
    BoundedMediaReader(std::shared_ptr<const MediaFoundationLibrary> library, DWORD milliseconds);

    // Once. A file that takes longer is unreadable.
    [[nodiscard]] Opened open(const std::wstring& path);
    [[nodiscard]] const Format& format() const noexcept { return format_; }
    [[nodiscard]] LONGLONG duration() const noexcept { return duration_; }
    // False at the end of the file, see MediaFoundationReader. What the block held before is lost.
    [[nodiscard]] bool read(Block& block);
    // Moves to some place at that time or before.
    [[nodiscard]] bool seek(LONGLONG time);

private:
    struct Work;
    [[nodiscard]] bool fetchBlocks();

    std::shared_ptr<Work> work_; // the thread's while a job runs
    BoundedThread thread_;
    Format format_;
    LONGLONG duration_ = 0;
    std::size_t fetch_;    // samples that are fetched next
    std::size_t next_ = 0; // of the blocks that were fetched
    bool lost_ = false;    // the reader did not come back
};

} // namespace corvina
