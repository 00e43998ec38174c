#include "support/PlayerHost.h"

#include "Unicode.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace corvina::test {

namespace {

_COM_SMARTPTR_TYPEDEF(IConnectionPointContainer, __uuidof(IConnectionPointContainer));

void require(HRESULT code, const char* what) {
    if (FAILED(code))
        throw std::runtime_error(what);
}

template <typename Value, typename Call>
Value ask(Call call) {
    Value value{};
    require(call(&value), "the control refused a call");
    return value;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const LoggedEvent& event) {
    using app::toUtf8;
    out << toUtf8(event.name);
    if (event.name == L"Err")
        out << "(\"" << toUtf8(event.function) << "\", " << event.number << ", \""
            << toUtf8(event.description) << "\")";
    return out;
}

std::vector<LoggedEvent> endOfPlayback() {
    return {{L"Err", L"StopPlayAudio:waveOutReset", 5, L"5"}, {L"DonePlay", {}, 0, {}}};
}

PlayerHost::PlayerHost(OnEvent onEvent)
    : onEvent_(std::move(onEvent)),
      sink_(
          new app::PlayerEvents({[this] {
                                     log({L"DonePlay", {}, 0, {}});
                                 },
                                 [this](const app::ErrorEvent& event) {
                                     log({L"Err", event.function, event.number, event.description});
                                 }})) {
    require(player_.CreateInstance(__uuidof(cPlayer), nullptr, CLSCTX_INPROC_SERVER),
            "the control is not registered");
    const IConnectionPointContainerPtr container(control());
    require(container->FindConnectionPoint(__uuidof(__cPlayer), &point_), "no event source");
    require(point_->Advise(sink_, &connection_), "no connection");
    ask<long>([&](long* result) { return player_->Init(result); });
}

PlayerHost::~PlayerHost() {
    sink_->silence();
    if (player_) {
        long ignored = 0;
        player_->DeInit(&ignored);
    }
    if (point_)
        point_->Unadvise(connection_);
    sink_->Release();
}

long PlayerHost::start(const std::wstring& file, long device) {
    _bstr_t name(file.c_str());
    return ask<long>(
        [&](long* result) { return player_->PlayStart(name.GetBSTR(), device, 0, result); });
}

long PlayerHost::stop() {
    return ask<long>([&](long* result) { return player_->PlayStop(result); });
}

long PlayerHost::pause() {
    return ask<long>([&](long* result) { return player_->PlayPause(result); });
}

long PlayerHost::goOn() {
    return ask<long>([&](long* result) { return player_->PlayUnPause(result); });
}

long PlayerHost::seek(long seconds) {
    return ask<long>([&](long* result) { return player_->PositionSet(seconds, result); });
}

long PlayerHost::position() {
    return ask<long>([&](long* result) { return player_->PositionGet(result); });
}

double PlayerHost::duration() {
    return ask<double>([&](double* result) { return player_->get_Info_Duration(result); });
}

bool PlayerHost::isPlaying() {
    return ask<VARIANT_BOOL>([&](VARIANT_BOOL* result) { return player_->IsPlaying(result); }) !=
           VARIANT_FALSE;
}

void PlayerHost::release() {
    point_ = nullptr;
    player_ = nullptr;
}

std::size_t PlayerHost::donePlays() const {
    return static_cast<std::size_t>(
        std::count(events_.begin(), events_.end(), LoggedEvent{L"DonePlay", {}, 0, {}}));
}

bool PlayerHost::waitForDone(std::size_t times, std::chrono::milliseconds deadline) {
    return pumpUntil([&] { return donePlays() >= times; }, deadline);
}

void PlayerHost::log(const LoggedEvent& event) {
    events_.push_back(event);
    if (onEvent_)
        onEvent_(LoggedEvent(event));
}

} // namespace corvina::test
