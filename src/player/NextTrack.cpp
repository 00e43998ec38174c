#include "player/NextTrack.h"

#include "platform/ErrorBoxes.h"
#include "player/PlayerEvents.h"
#include "player/SourceList.h"
#include "runtime/RuntimeError.h"
#include "stream/FileListing.h"

#include <utility>

namespace corvina {

std::wstring NextTrack::file() const {
    const TrackQueue::Track fed = fed_.lock();
    return options_.nextFile.empty() && fed ? fed->file() : options_.nextFile;
}

TrackQueue::Track NextTrack::takeNext() {
    const std::wstring file = std::exchange(options_.nextFile, {});
    TrackQueue::Track track;
    try {
        track = file.empty() ? nullptr : open(file);
    } catch (const RuntimeError& error) {
        failures_.push_back({error.number(), error.text()});
    }
    if (track)
        fed_ = track;
    return track;
}

TrackQueue::Track NextTrack::open(const std::wstring& file) {
    const auto failed = [this](const wchar_t* description) -> TrackQueue::Track {
        failures_.push_back({1, description});
        return nullptr;
    };
    if (!isFileListed(file, platform_.files))
        return failed(L"File doen't exist");
    SourceList sources;
    for (std::unique_ptr<cSoundSTRM>& source : platform_.makeSources())
        sources.add(std::move(source));
    std::shared_ptr<cSoundSTRM> source = sources.findForFile(file);
    if (!source)
        return failed(L"Format not supported");
    const NoErrorBoxes quiet;
    // Another source may read what the first one refuses.
    while (source->OpenSource(file) != SourceResult::done) {
        source = sources.findNextForFile(file, source);
        if (!source)
            return failed(L"Could not open file");
    }
    auto track = std::make_shared<PlayedTrack>(file, std::move(source), platform_.acm, observer_);
    return track->begin() ? track : failed(L"Can't init conversion");
}

void NextTrack::giveBack(const TrackQueue::Track& track) {
    // A file that was set meanwhile follows in its place.
    if (options_.nextFile.empty())
        options_.nextFile = track->file();
    fed_.reset();
}

void NextTrack::nextHeard(const TrackQueue::Track& track) {
    if (fed_.lock() == track)
        fed_.reset();
    heard_ = track;
}

void NextTrack::reportFailures() {
    for (const Failure& failure : std::exchange(failures_, {}))
        events_.Err(L"NextFile", failure.number, failure.description);
}

} // namespace corvina
