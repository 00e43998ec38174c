#include "PlayerClient.h"

#include "PlayerCalls.h"

#include <utility>

namespace corvina::app {

namespace {

_COM_SMARTPTR_TYPEDEF(IConnectionPointContainer, __uuidof(IConnectionPointContainer));

} // namespace

PlayerClient::PlayerClient(PlayerHandlers handlers)
    : sink_(new PlayerEvents(std::move(handlers)), false) {
    HRESULT code = player_.CreateInstance(__uuidof(cPlayer), nullptr, CLSCTX_INPROC_SERVER);
    if (FAILED(code))
        _com_issue_error(code);
    const IConnectionPointContainerPtr container(player_.GetInterfacePtr());
    code =
        container ? container->FindConnectionPoint(__uuidof(__cPlayer), &events_) : E_NOINTERFACE;
    if (SUCCEEDED(code))
        code = events_->Advise(sink_, &connection_);
    if (FAILED(code))
        _com_issue_error(code);
    call(player_, &_cPlayer::Init);
}

PlayerClient::~PlayerClient() {
    sink_->silence();
    long ignored = 0;
    player_->DeInit(&ignored);
    events_->Unadvise(connection_);
}

long PlayerClient::open(const std::wstring& file) {
    return call(player_, &_cPlayer::OpenAudioFile, TextArgument(file));
}

long PlayerClient::start(const std::wstring& file, long device) {
    constexpr long bufferSize = 0; // without effect
    return call(player_, &_cPlayer::PlayStart, TextArgument(file), device, bufferSize);
}

long PlayerClient::stop() {
    return call(player_, &_cPlayer::PlayStop);
}

void PlayerClient::abandon() {
    call(player_, &_cPlayer::DeInit);
    call(player_, &_cPlayer::Init);
}

long PlayerClient::pause() {
    return call(player_, &_cPlayer::PlayPause);
}

long PlayerClient::goOn() {
    return call(player_, &_cPlayer::PlayUnPause);
}

void PlayerClient::showAbout() {
    player_->About();
}

FileFormat PlayerClient::format() {
    return {call(player_, &_cPlayer::get_Info_Bitrate),
            call(player_, &_cPlayer::get_Info_BitsPerSample),
            call(player_, &_cPlayer::get_Info_Channels),
            call(player_, &_cPlayer::get_Info_Samplerate),
            call(player_, &_cPlayer::get_Info_Duration)};
}

std::vector<FileTag> PlayerClient::tags(const std::wstring& file) {
    static constexpr std::pair<const wchar_t*, Member<BSTR*>> members[] = {
        {L"Title", &_cPlayer::get_Tag_Title},     {L"Artist", &_cPlayer::get_Tag_Artist},
        {L"Album", &_cPlayer::get_Tag_Album},     {L"Track", &_cPlayer::get_Tag_TrackNumber},
        {L"Year", &_cPlayer::get_Tag_SongYear},   {L"Genre", &_cPlayer::get_Tag_Genre},
        {L"Comment", &_cPlayer::get_Tag_Comment},
    };
    call(player_, &_cPlayer::GetID3Tags, TextArgument(file));
    std::vector<FileTag> result;
    for (const auto& [name, member] : members)
        if (std::wstring value = takeText(call(player_, member)); !value.empty())
            result.push_back({name, std::move(value)});
    return result;
}

std::vector<OutputDevice> PlayerClient::devices() {
    std::vector<OutputDevice> result;
    const long count = call(player_, &_cPlayer::NumOfAudioDevices, static_cast<long>(AUDIOOUT));
    for (long index = 0; index < count; ++index) {
        AudioDeviceDetails details{};
        const long failed = call(player_, &_cPlayer::GetDetailsDevice, index,
                                 static_cast<long>(AUDIOOUT), &details);
        OutputDevice device{index, takeText(details.DeviceName), details.DeviceChannels};
        SysFreeString(details.DeviceDriver);
        if (!failed)
            result.push_back(std::move(device));
    }
    return result;
}

std::wstring PlayerClient::timeText(long seconds) {
    return takeText(call(player_, &_cPlayer::GetSecondsAsTimeString, seconds));
}

std::wstring PlayerClient::errorText(long result) {
    return takeText(call(player_, &_cPlayer::ErrorTextOut, result));
}

} // namespace corvina::app
