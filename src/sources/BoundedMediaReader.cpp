#include "sources/BoundedMediaReader.h"

#include <algorithm>
#include <new>

namespace corvina {
namespace {

// Sound that is fetched at a time, in samples of all channels: little at first, so that nobody
// waits for more than was asked for, and then twice as much each time.
constexpr std::size_t firstFetch = 4 * 1024;
constexpr std::size_t largestFetch = 32 * 1024;

} // namespace

struct BoundedMediaReader::Work {
    std::unique_ptr<MediaFoundationReader> reader;
    std::vector<Block> blocks = {}; // the first `count` of them are filled
    std::size_t count = 0;
    bool ended = false;
    bool sought = false;
    Opened opened = Opened::unreadable;
    LONGLONG duration = 0;

    void open(const std::wstring& path) {
        if (!reader->open(path))
            return;
        opened = Opened::withoutSound;
        if (!reader->selectSound())
            return;
        duration = reader->duration();
        opened = Opened::yes;
        readBlocks(1); // a file is not open before its first block is there
    }

    // Reads as many blocks as hold so many samples.
    void readBlocks(std::size_t samples) {
        count = 0;
        for (std::size_t read = 0; read < samples && !ended;) {
            if (count == blocks.size())
                blocks.emplace_back();
            ended = !reader->read(blocks[count]);
            if (!ended)
                read += blocks[count++].samples.size();
        }
    }

    void seek(LONGLONG time) {
        sought = reader->seek(time);
        if (sought) {
            count = 0;
            ended = false;
        }
    }
};

BoundedMediaReader::BoundedMediaReader(std::shared_ptr<const MediaFoundationLibrary> library,
                                       DWORD milliseconds)
    : work_(std::make_shared<Work>(
          Work{.reader = std::make_unique<MediaFoundationReader>(std::move(library))})),
      thread_(milliseconds, [work = work_] { work->reader.reset(); }), fetch_(firstFetch) {}

BoundedMediaReader::Opened BoundedMediaReader::open(const std::wstring& path) {
    try {
        lost_ = !thread_.run([work = work_, path] { work->open(path); });
    } catch (const std::bad_alloc&) {
        return Opened::unreadable;
    }
    if (lost_)
        return Opened::unreadable;
    format_ = work_->reader->format();
    duration_ = work_->duration;
    return work_->opened;
}

bool BoundedMediaReader::fetchBlocks() {
    if (work_->ended)
        return false;
    next_ = 0;
    lost_ = !thread_.run([work = work_, samples = fetch_] { work->readBlocks(samples); });
    fetch_ = std::min(fetch_ * 2, largestFetch);
    return !lost_ && work_->count > 0;
}

bool BoundedMediaReader::read(Block& block) {
    if (lost_ || (next_ == work_->count && !fetchBlocks()))
        return false;
    std::swap(block, work_->blocks[next_++]);
    return true;
}

bool BoundedMediaReader::seek(LONGLONG time) {
    if (lost_)
        return false;
    lost_ = !thread_.run([work = work_, time] { work->seek(time); });
    if (lost_ || !work_->sought)
        return false;
    next_ = 0;
    fetch_ = firstFetch;
    return true;
}

} // namespace corvina
