#include "sources/DecWAV.h"

#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "stream/FileName.h"
#include "stream/SeekTarget.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace corvina {
namespace {

constexpr std::int32_t smallestFormat = 16;
// A record and all the extra bytes that its cbSize can count.
constexpr std::int32_t largestFormat =
    std::int32_t{sizeof(WAVEFORMATEX)} + std::numeric_limits<WORD>::max();

// Bytes of data from which on a read is cut exactly at the end of the data. The number is
// deliberate: it has no meaning of its own, but hosts see by it how the last read of a file ends,
// so it stays.
constexpr std::int32_t largeData = 58'375'640;

} // namespace

const WAVEFORMATEX* DecWAV::WFXPointer() {
    return formatBytes_.empty() ? nullptr
                                : reinterpret_cast<const WAVEFORMATEX*>(formatBytes_.data());
}

std::int32_t DecWAV::OpenSource(const std::wstring& source) {
    if (!access_.exists(source))
        return SourceResult::notOpen;
    const WaveChunks chunks = findChunks(source);
    const RiffChunk& format = chunks.format;
    const RiffChunk& data = chunks.data;
    if (data.offset == 0 || format.offset == 0 || format.size < smallestFormat ||
        format.size > largestFormat)
        return SourceResult::notOpen;

    // The file of an earlier open is replaced, not closed first; it is closed with this source.
    if (file_.isOpen())
        replaced_.push_back(std::move(file_));
    file_ = access_.openForReading(source);
    if (!file_.isOpen())
        return SourceResult::notOpen;

    std::vector<std::uint8_t> bytes;
    const bool formatRead = readFormat(format, bytes);
    const std::int32_t length = lengthInFile(data);
    if (!formatRead || !goTo(data.offset)) {
        file_.close();
        return SourceResult::notOpen;
    }
    data_ = {.offset = data.offset, .size = length};
    formatBytes_ = std::move(bytes);
    std::memcpy(&format_, formatBytes_.data(), sizeof format_);
    compressed_ = CompressedWave(*WFXPointer(), data_);
    soughtFrame_.reset();
    trueRate_ = compressed_.rateInsteadOfRecord(access_, file_, framesCountedByWriter(source));
    if (compressed_.isMpeg()) // whose frames may have been looked up
        goTo(data_.offset);
    return SourceResult::done;
}

// The chunk in which the writer of compressed sound counted its frames; 0 if it need not be asked.
std::int64_t DecWAV::framesCountedByWriter(const std::wstring& path) const {
    if (!compressed_.isMpeg())
        return 0;
    const RiffChunk fact = findWaveChunk(path, "fact", mmio_);
    std::uint32_t frames = 0;
    const bool read = fact.offset != 0 && fact.size >= static_cast<std::int32_t>(sizeof frames) &&
                      goTo(fact.offset) &&
                      access_.read(file_, &frames, sizeof frames) == std::int32_t{sizeof frames};
    return read ? frames : 0;
}

WaveChunks DecWAV::findChunks(const std::wstring& path) const {
    WaveChunks chunks;
    const bool fitsAnsi = fileName(path).fitsAnsi;
    if (fitsAnsi) {
        chunks.data = findWaveChunk(path, "data", mmio_);
        chunks.format = findWaveChunk(path, "fmt ", mmio_);
        if (chunks.data.offset != 0 && chunks.format.offset != 0)
            return chunks;
    }
    const FileRecord file = access_.openForReading(path);
    if (!file.isOpen())
        return {};
    const std::optional<WaveChunks> read = readWaveChunks(access_, file);
    // About a RIFF file with a length the system's functions have the last word, if they take its
    // name.
    return read && (read->is64 || read->isOpenEnded || !fitsAnsi) ? *read : chunks;
}

// The data's length. A writer that could not go back to the header has left a length there that no
// file reaches: then the data ends with the file. Moves the position.
std::int32_t DecWAV::lengthInFile(const RiffChunk& data) const noexcept {
    const auto size = static_cast<std::uint32_t>(data.size);
    if (size < leastUnknownLength)
        return data.size;
    const std::int32_t position = access_.setPosition(file_, 0, MoveMethod::fromEnd);
    // Beyond 2 GB the position does not fit and comes out negative.
    const std::int32_t end = position < 0 ? std::numeric_limits<std::int32_t>::max() : position;
    return std::max(std::int32_t{0}, end - data.offset);
}

bool DecWAV::goTo(std::int32_t position) const noexcept {
    return access_.setPosition(file_, position, MoveMethod::fromBeginning) == position;
}

// False if the file ends before the chunk does. Codecs look for the extra bytes that the record
// counts even if the chunk is shorter, so as many zeros follow it.
bool DecWAV::readFormat(const RiffChunk& chunk, std::vector<std::uint8_t>& bytes) const {
    bytes.resize(static_cast<std::size_t>(std::max(chunk.size, std::int32_t{sizeof format_})));
    if (!goTo(chunk.offset) || access_.read(file_, bytes.data(), chunk.size) != chunk.size)
        return false;
    WAVEFORMATEX record;
    std::memcpy(&record, bytes.data(), sizeof record);
    bytes.resize(std::max(bytes.size(), sizeof record + record.cbSize));
    return true;
}

std::int32_t DecWAV::CloseSource() {
    file_.close();
    replaced_.clear();
    soughtFrame_.reset();
    return SourceResult::done;
}

bool DecWAV::EndOfStream() {
    return access_.position(file_) >= endOfData();
}

std::int32_t DecWAV::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    if (!file_.isOpen())
        return SourceResult::notOpen;
    soughtFrame_.reset();
    const std::int32_t position = access_.position(file_);
    const std::int32_t end = endOfData();
    if (position > end) {
        bytesRead = 0;
        return SourceResult::endOfData;
    }
    // The doubled limit is meant: a smaller file is read past its data chunk, whatever follows it,
    // as long as no more than half of the request lies there. So its last buffer is served whole
    // instead of ending in the middle, and the next read finds the position past the end.
    // Large data may end at the last position that there is.
    const bool cut = data_.size >= largeData
                         ? std::int64_t{position} + bytes > end
                         : add32(position, bytes) > subtract32(multiply32(2, end), position);
    bytesRead = access_.read(file_, buffer, cut ? end - position : bytes);
    return cut ? SourceResult::endOfData : SourceResult::done;
}

std::int32_t DecWAV::SeekTo(std::int32_t value, std::int32_t& mode) {
    if (!file_.isOpen())
        return SourceResult::done;
    const std::optional<std::int32_t> target = seekTarget(
        *this, value, mode, [&] { return roundToInt32(value / 100.0 * data_.size); },
        [&] { return bytesBefore(value); });
    if (!target)
        return SourceResult::outOfRange;
    const std::int32_t beyondBlock = value == 0 ? 0 : remainder32(*target, format_.nBlockAlign);
    goTo(add32(data_.offset, *target - beyondBlock));
    soughtFrame_ = frameAt(value, mode, *target - beyondBlock);
    return SourceResult::done;
}

std::int32_t DecWAV::bytesBefore(std::int32_t seconds) const {
    return trueRate_ ? roundToInt32(*trueRate_ * seconds) : multiply32(bytesPerSecond(), seconds);
}

// The frame of compressed sound that a seek meant.
std::optional<std::int64_t> DecWAV::frameAt(std::int32_t value, std::int32_t mode,
                                            std::int32_t byteOffset) const {
    if (!compressed_.isKnown())
        return std::nullopt;
    if (byteOffset == 0)
        return 0;
    return mode == SeekMode::seconds ? std::int64_t{value} * format_.nSamplesPerSec
                                     : compressed_.frameOfBlockAt(byteOffset);
}

LeadIn DecWAV::goToLeadIn() {
    const std::optional<std::int64_t> frame = std::exchange(soughtFrame_, std::nullopt);
    if (!frame)
        return {};
    const std::int32_t position = access_.position(file_);
    const std::optional<CompressedWave::Place> place = compressed_.placeOf(*frame, access_, file_);
    // A place that cannot be looked up is where the record's rate says.
    goTo(place ? place->offset : position);
    return place ? place->leadIn : LeadIn{};
}

std::int32_t DecWAV::SampleRate() {
    return static_cast<std::int32_t>(format_.nSamplesPerSec);
}

std::int16_t DecWAV::Channels() {
    return static_cast<std::int16_t>(format_.nChannels);
}

// Some compressed formats store 0.
std::int16_t DecWAV::BitsPerSample() {
    return format_.wBitsPerSample == 0 ? std::int16_t{16}
                                       : static_cast<std::int16_t>(format_.wBitsPerSample);
}

std::int32_t DecWAV::Bitrate() {
    return multiply32(bytesPerSecond(), 8);
}

std::int32_t DecWAV::Position() {
    return milliseconds(subtract32(access_.position(file_), data_.offset));
}

std::int32_t DecWAV::Duration() {
    return milliseconds(data_.size);
}

std::int32_t DecWAV::milliseconds(std::int32_t bytes) const {
    return roundToInt32(divide(bytes, trueRate_.value_or(bytesPerSecond())) * 1000);
}

std::int32_t DecWAV::bytesPerSecond() const noexcept {
    return static_cast<std::int32_t>(format_.nAvgBytesPerSec);
}

std::int32_t DecWAV::endOfData() const {
    return add32(data_.offset, data_.size);
}

} // namespace corvina
