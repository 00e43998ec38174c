#include "player/Player.h"

#include "platform/ErrorBoxes.h"
#include "player/ErrorText.h"
#include "player/TimeText.h"
#include "runtime/FirstFailure.h"
#include "runtime/Rounding.h"
#include "runtime/RuntimeError.h"
#include "runtime/Text.h"
#include "stream/FileListing.h"
#include "subclass/MSubclass.h"

#include <array>
#include <utility>

namespace corvina {
namespace {

// The wave messages that Init attaches. Those of wave input belong to recording, which the control
// announces but does not have: they are taken and ignored.
constexpr std::array<std::int32_t, 2> outputMessages{MM_WOM_DONE, MM_WOM_CLOSE};
constexpr std::array<std::int32_t, 2> inputMessages{MM_WIM_DATA, MM_WIM_CLOSE};

// What OpenAudioFile returns. The number of the Err event is 1 for all three: hosts tell them apart
// by the text.
constexpr std::int32_t noSuchFile = 1;
constexpr std::int32_t notSupported = 2;
constexpr std::int32_t couldNotOpen = 3;
constexpr std::int32_t openErrNumber = 1;

// A client that is attached already stays attached: a host may call Init again.
void attachUnlessAttached(ISubclass& client, HWND window, std::int32_t message) {
    try {
        MSubclass::AttachMessage(&client, window, message);
    } catch (const RuntimeError& error) {
        if (error.number() != MSubclass::errorBase + MSubclass::ErrorNumber::alreadyHandled)
            throw;
    }
}

} // namespace

Player::Player(PlayerEvents& events, cCallback* observer, const PlayerPlatform& platform)
    : events_(events), observer_(observer), platform_(platform),
      next_(events, settings_.options(), platform_, observer),
      facts_(platform_.libraries, platform_.files),
      engine_(events, next_, settings_.options(), platform_) {}

Player::~Player() {
    shutdown();
}

std::int32_t Player::Init(HWND window, ISubclass& client) {
    // What the device posts to a window that is no longer subclassed is lost.
    if (window != window_ || &client != client_ || !MSubclass::isSubclassed(window))
        shutdown();
    window_ = window;
    client_ = &client;
    for (const std::int32_t message : outputMessages)
        attachUnlessAttached(client, window, message);
    for (const std::int32_t message : inputMessages)
        attachUnlessAttached(client, window, message);
    for (std::unique_ptr<cSoundSTRM>& source : platform_.makeSources())
        sources_.add(std::move(source));
    engine_.connect(window);
    if (!codecs_)
        codecs_.emplace(platform_.acm);
    return 0;
}

// A source that throws keeps nothing else from being ended.
std::int32_t Player::DeInit() {
    FirstFailure failure;
    if (IsPlaying())
        failure.guard([&] { PlayStop(); });
    if (client_)
        for (const std::int32_t message : outputMessages)
            MSubclass::DetachMessage(client_, window_, message);
    // The device's messages do not arrive any more, so it cannot be closed by them.
    engine_.disconnect();
    codecs_.reset();
    failure.guard([&] { closeCurrentSource(); });
    engine_.reportEnds();
    failure.rethrow();
    return 0;
}

void Player::shutdown() noexcept {
    try {
        closeCurrentSource();
    } catch (...) {
        // The source closes itself when it is opened again or destroyed.
    }
    engine_.disconnect();
    codecs_.reset();
    if (client_) {
        for (const std::int32_t message : outputMessages)
            MSubclass::DetachMessage(client_, window_, message);
        for (const std::int32_t message : inputMessages)
            MSubclass::DetachMessage(client_, window_, message);
    }
    client_ = nullptr;
    window_ = nullptr;
    engine_.reportEnds();
}

void Player::handleMessage(UINT message) noexcept {
    engine_.handleMessage(message);
}

void Player::windowDestroyed() noexcept {
    shutdown();
}

std::int32_t Player::OpenAudioFile(const std::wstring& file) {
    const auto failed = [this](const wchar_t* description, std::int32_t result) {
        events_.Err(L"", openErrNumber, description);
        return result;
    };
    // The text is published with this spelling, and hosts compare it.
    if (!isFileListed(file, platform_.files))
        return failed(L"File doen't exist", noSuchFile);
    closeCurrentSource();
    source_ = sources_.findForFile(file);
    if (!source_)
        return failed(L"Format not supported", notSupported);
    file_ = file;
    const auto opens = [&](SourceList::Source& source) {
        if (engine_.uses(source.get()))
            source = freshSource(source);
        const NoErrorBoxes quiet;
        opened_ = source->OpenSource(file) == SourceResult::done;
        return opened_;
    };
    if (opens(source_))
        return 0;
    for (auto next = source_; (next = sources_.findNextForFile(file, next));)
        if (opens(next)) {
            source_ = next;
            return 0;
        }
    return failed(L"Could not open file", couldNotOpen);
}

// A playback keeps its source and closes it itself.
void Player::closeCurrentSource() {
    next_.forgetHeard();
    facts_.forget();
    opened_ = false;
    const SourceList::Source source = std::exchange(source_, nullptr);
    if (source && !engine_.uses(source.get()))
        source->CloseSource();
}

// One of the same class, in the place of one that plays.
SourceList::Source Player::freshSource(const SourceList::Source& used) {
    std::vector<std::unique_ptr<cSoundSTRM>> made = platform_.makeSources();
    SourceList::Source fresh = std::move(made[sources_.indexOf(used) % made.size()]);
    sources_.replace(used, fresh);
    return fresh;
}

std::int32_t Player::PlayStart(const std::wstring& file, std::int32_t deviceIndex, std::int32_t) {
    if (engine_.playing())
        return PlayerError::alreadyPlaying;
    if (const std::int32_t result = OpenAudioFile(file); result != 0)
        return result;
    const std::wstring& named = settings_.options().device;
    if (deviceIndex == -1 && !named.empty()) {
        deviceIndex = deviceNamed(named);
        if (deviceIndex == -1)
            return MMSYSERR_BADDEVICEID;
    }
    return engine_.start(deviceIndex,
                         std::make_shared<PlayedTrack>(file, source_, platform_.acm, observer_));
}

// -1 if there is no output device of that name now.
std::int32_t Player::deviceNamed(const std::wstring& name) const {
    const std::int32_t count = countAudioDevices(platform_.wave, AudioDirection::output);
    for (std::int32_t i = 0; i < count; ++i)
        try {
            AudioDevice device;
            if (describeAudioDevice(platform_.wave, i, AudioDirection::output, device) == 0 &&
                device.name == name)
                return i;
        } catch (const RuntimeError&) {
            // Nobody can know its name.
        }
    return -1;
}

std::int32_t Player::PlayStop() {
    return engine_.stop();
}
std::int32_t Player::PlayPause() {
    return engine_.pause();
}
std::int32_t Player::PlayUnPause() {
    return engine_.resume();
}
bool Player::IsPausedOut() const noexcept {
    return engine_.paused();
}
bool Player::DonePlay() const noexcept {
    return engine_.done();
}
bool Player::IsPlaying() const noexcept {
    return !engine_.done();
}

std::int32_t Player::AudioDataOut() const noexcept {
    return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(engine_.audioData()));
}

std::int32_t Player::PositionGet() const {
    cSoundSTRM* const source = currentSource();
    return source ? roundToInt32(source->Info().Position() / 1000.0) : 0;
}

std::int32_t Player::PositionSet(std::int32_t seconds) {
    // What is queued on the device, and what the converter holds, plays out first. A converter that
    // has met the end of the source asks it for nothing more. A position out of range leaves the
    // place as it is and has the same result: hosts' sliders have always run over the end.
    if (cSoundSTRM* const source = currentSource()) {
        const NoErrorBoxes quiet;
        std::int32_t mode = SeekMode::seconds;
        if (source->SeekTo(seconds, mode) == SourceResult::done)
            engine_.sourceMoved(*source, seconds);
    }
    return 0;
}

std::int32_t Player::PositionMs() {
    return engine_.heardMs();
}

void Player::setPositionMs(std::int32_t milliseconds) {
    requireRange(L"PositionMs", milliseconds, 0, DurationMs());
    engine_.jump(milliseconds);
}

std::int32_t Player::Level(std::int32_t channel) {
    requireRange(L"Channel", channel, 1, 2);
    return roundToInt32(100 * engine_.level(channel - 1));
}

std::wstring Player::GetSecondsAsTimeString(std::int32_t seconds) const {
    return secondsAsTimeText(seconds);
}

std::wstring Player::ErrorTextOut(std::int32_t number) const {
    return errorText(number);
}

std::int32_t Player::NumOfAudioDevices(std::int32_t direction) const {
    return countAudioDevices(platform_.wave, direction);
}

std::int32_t Player::GetDetailsDevice(std::int32_t index, std::int32_t direction,
                                      AudioDevice& details) const {
    return describeAudioDevice(platform_.wave, index, direction, details);
}

} // namespace corvina
