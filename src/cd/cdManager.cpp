#include "cd/cdManager.h"

#include "runtime/Checked.h"
#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"
#include "stream/SeekTarget.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace corvina {
namespace {

constexpr double bytesPerSecond = 176400;

std::int32_t milliseconds(std::int32_t sectors) {
    return roundToInt32(double{bytesPerSector} * sectors / bytesPerSecond * 1000);
}

// Runs one step of several, of which each is tried even if others fail.
template <typename Step>
void tryStep(Step step) {
    try {
        step();
    } catch (const RuntimeError&) {
    }
}

} // namespace

cdManager::cdManager(CdBackends backends) : makers_(std::move(backends)) {
    format_.wFormatTag = WAVE_FORMAT_PCM;
    format_.nChannels = 2;
    format_.nSamplesPerSec = 44100;
    format_.nAvgBytesPerSec = 176400;
    format_.nBlockAlign = 4;
    format_.wBitsPerSample = 16;
}

cdManager::~cdManager() {
    if (backend_)
        backend_->DeInitMe();
}

bool cdManager::InitManager(const bool& disableIoctl) {
    backend_ = nullptr;
    candidates_.clear();
    addBackend(makers_.spti());
    if (!disableIoctl)
        addBackend(makers_.ioctl());
    addBackend(makers_.aspi());
    for (auto& candidate : candidates_) {
        if (candidate->InitMe() == CdStatus::done) {
            backend_ = candidate.get();
            return true;
        }
        candidate.reset();
    }
    return false;
}

void cdManager::addBackend(std::unique_ptr<cCDAccess> backend) {
    candidates_.push_back(std::move(backend));
}

bool cdManager::SelectDevice(std::int32_t index) {
    return backend_ && backend_->SelectDevice(index) == CdStatus::done;
}

std::int32_t cdManager::DeviceCount() {
    return backend_ ? backend_->DeviceCount() : 0;
}

std::wstring cdManager::DeviceName(std::int32_t index) {
    return backend_ ? backend_->DeviceName(index) : std::wstring();
}

std::wstring cdManager::DeviceChar(std::int32_t index) {
    return backend_ ? backend_->DeviceChar(index) : std::wstring();
}

bool cdManager::OpenCD() {
    return backend_ && backend_->OpenCD() == CdStatus::done;
}

bool cdManager::CloseCD() {
    return backend_ && backend_->CloseCD() == CdStatus::done;
}

bool cdManager::IsDiscPresent() {
    return backend_ && backend_->IsDiscPresent();
}

std::unique_ptr<cTOC> cdManager::GetTOC() {
    if (!backend_)
        throwObjectNotSet();
    auto table = std::make_unique<cTOC>();
    if (backend_->GetTOC(table) != CdStatus::done)
        return nullptr;
    return table;
}

// Every step reads the table afresh, four times in all, and a step that fails (the disc was taken
// out in between) is passed over: the drive may have been given another disc since the last step.
std::int32_t cdManager::SelectTrack(std::uint8_t track) {
    std::int32_t tracks = 0;
    tryStep([&] {
        if (const auto table = GetTOC())
            tracks = table->TrackCount() - 1;
    });
    if (track == 0 || track > tracks)
        return SourceResult::outOfRange;
    tryStep([&] { static_cast<void>(startOf(track + 1)); });
    tryStep([&] {
        const auto table = GetTOC();
        const cTOCTrack* entry = table ? table->track(track) : nullptr;
        if (entry)
            track_ = *entry;
    });
    tryStep([&] {
        const std::int32_t next = startOf(track + 1);
        if (track_)
            trackLength_ = subtract32(next, track_->StartLBA());
    });
    sectorOffset_ = 0;
    return SourceResult::done;
}

std::int32_t cdManager::startOf(std::int32_t track) {
    const auto table = GetTOC();
    const cTOCTrack* entry = table ? table->track(track) : nullptr;
    if (!entry)
        throwObjectNotSet();
    return entry->StartLBA();
}

std::int32_t cdManager::OpenSource(const std::wstring&) {
    return SourceResult::notOpen;
}

std::int32_t cdManager::Read(void* buffer, std::int32_t bytes, std::int32_t& bytesRead) {
    if (bytesRead >= bytes)
        return SourceResult::done;
    if (bytesRead < 0 || !buffer)
        throwInvalidCall();
    const auto deliver = [&](std::int32_t count) {
        std::memcpy(static_cast<std::uint8_t*>(buffer) + bytesRead,
                    buffer_.data() + bufferPosition_, static_cast<std::size_t>(count));
        bytesRead += count;
    };
    for (;;) {
        const std::int32_t available = bufferFill_ - bufferPosition_;
        const std::int32_t wanted = bytes - bytesRead;
        if (available >= wanted) {
            deliver(wanted);
            bufferPosition_ += wanted;
            return SourceResult::done;
        }
        // The position stays where it is: the refill resets it. After a failed refill these bytes
        // are delivered again by the next call.
        deliver(available);
        if (!fillBuffer())
            return SourceResult::endOfData;
    }
}

// Deliberate: four sectors are read wherever the track ends, so its last block may reach up to
// three sectors into the next track. Ends of tracks are not trimmed.
bool cdManager::fillBuffer() {
    if (EndOfStream() || !backend_ || !track_)
        return false;
    const std::int32_t lba = add32(track_->StartLBA(), sectorOffset_);
    // A drive may refuse the block, or deliver less of it, and still count as having read it. What
    // it does not deliver is silence, and not the block before once more. A read that fails leaves
    // that block as it is.
    const auto former = buffer_;
    buffer_.fill(0);
    if (backend_->ReadSectorsRAW(lba, sectorsPerRead, buffer_.data()) != CdStatus::done) {
        buffer_ = former;
        return false;
    }
    sectorOffset_ = add32(sectorOffset_, sectorsPerRead);
    bufferPosition_ = 0;
    bufferFill_ = bufferBytes;
    return true;
}

std::int32_t cdManager::SeekTo(std::int32_t value, std::int32_t& mode) {
    // Deliberate: what is left of the block stays in line and comes as silence before the new
    // place.
    buffer_.fill(0);
    // Another mode changes nothing here.
    if (mode != SeekMode::percent && mode != SeekMode::seconds)
        return SourceResult::done;
    const std::optional<std::int32_t> target = seekTarget(
        *this, value, mode,
        // Deliberate: these are seconds taken as sectors, so a percentage lands at 1/75 of its
        // place.
        [&] { return roundToInt32(Duration() / 1000.0 * value / 100.0); },
        [&] { return multiply32(value, sectorsPerSecond); });
    if (!target)
        return SourceResult::outOfRange;
    sectorOffset_ = *target;
    return SourceResult::done;
}

std::int32_t cdManager::Position() {
    return milliseconds(sectorOffset_);
}

std::int32_t cdManager::Duration() {
    return milliseconds(trackLength_);
}

} // namespace corvina
