// The members of Player that describe the opened file.

#include "player/Player.h"
#include "player/WaveLength.h"
#include "runtime/RuntimeError.h"
#include "runtime/Text.h"

#include <algorithm>

namespace corvina {

std::int32_t Player::GetID3Tags(const std::wstring& file) {
    tags_ = {};
    fillTagTexts(tags_, file, openedFile().Tags());
    return 0;
}

// A next file that has begun to be heard is the opened one from then on.
cSoundSTRM* Player::currentSource() const noexcept {
    return next_.heardSource() ? next_.heardSource() : source_.get();
}

cSoundInf& Player::openedFile() const {
    cSoundSTRM* const source = currentSource();
    if (!source)
        throwObjectNotSet();
    return source->Info();
}

std::int32_t Player::Info_Bitrate() const {
    return openedFile().Bitrate();
}
std::int32_t Player::Info_BitsPerSample() const {
    return openedFile().BitsPerSample();
}
std::int16_t Player::Info_Channels() const {
    return openedFile().Channels();
}
double Player::Info_Duration() const {
    return openedFile().Duration() / 1000.0;
}
std::int32_t Player::Info_Samplerate() const {
    return openedFile().SampleRate();
}

std::int32_t Player::DurationMs() {
    if (const TrackQueue::Place place = engine_.heard(); place.track)
        return place.track->durationMs();
    const std::wstring file = describedFile();
    cSoundSTRM* const source = currentSource();
    return file.empty() ? 0 : durationMs(countFrames(file, *source), *source);
}

// Empty if none is open.
std::wstring Player::describedFile() const {
    if (next_.heardSource())
        return next_.heardFile();
    return source_ && opened_ ? file_ : std::wstring();
}

FileFacts& Player::facts() {
    facts_.setFile(describedFile());
    return facts_;
}

std::wstring Player::Extensions() const {
    std::vector<std::wstring> patterns;
    for (const auto& source : platform_.makeSources())
        for (const std::wstring& extension : source->Extensions()) {
            // Some files can be read by more than one source.
            const std::wstring pattern = L"*." + extension;
            if (std::find(patterns.begin(), patterns.end(), pattern) == patterns.end())
                patterns.push_back(pattern);
        }
    return join(patterns, L";");
}

} // namespace corvina
