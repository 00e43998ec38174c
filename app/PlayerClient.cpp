#include "PlayerClient.h"

#include "PlayerCalls.h"

#include <string_view>
#include <utility>

namespace corvina::app {

namespace {

_COM_SMARTPTR_TYPEDEF(IConnectionPointContainer, __uuidof(IConnectionPointContainer));

// Of these formats the control says bytes per second in place of bits. AU files without a header
// have no name: they are taken for 8000 Hz mono.
bool countsBytes(const std::wstring& name, const FileFormat& format) {
    for (const std::wstring_view kind : {L"AIFF", L"AU", L"VOC"})
        if (name.starts_with(kind))
            return true;
    return name.empty() && format.sampleRate == 8000 && format.channels == 1;
}

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
    FileFormat format{call(player_, &_cPlayer::get_Info_Bitrate),
                      call(player_, &_cPlayer::get_Info_BitsPerSample),
                      call(player_, &_cPlayer::get_Info_Channels),
                      call(player_, &_cPlayer::get_Info_Samplerate),
                      call(player_, &_cPlayer::get_Info_Duration)};
    if (countsBytes(formatName(), format))
        format.bitrate *= 8;
    return format;
}

// Without the library that reads tags of every format, some decoders know a few of their own.
std::vector<FileTag> PlayerClient::tags(const std::wstring& file) {
    struct Tag {
        const wchar_t* shown;
        const wchar_t* name;
        Member<BSTR*> decoders;
    };
    static constexpr Tag known[] = {
        {L"Title", L"TITLE", &_cPlayer::get_Tag_Title},
        {L"Artist", L"ARTIST", &_cPlayer::get_Tag_Artist},
        {L"Album", L"ALBUM", &_cPlayer::get_Tag_Album},
        {L"Track", L"TRACKNUMBER", &_cPlayer::get_Tag_TrackNumber},
        {L"Year", L"DATE", &_cPlayer::get_Tag_SongYear},
        {L"Genre", L"GENRE", &_cPlayer::get_Tag_Genre},
        {L"Comment", L"COMMENT", &_cPlayer::get_Tag_Comment},
    };
    const bool ofEveryFormat = call(player_, &_cPlayer::get_TagCount) > 0;
    if (!ofEveryFormat)
        call(player_, &_cPlayer::GetID3Tags, TextArgument(file));
    std::vector<FileTag> result;
    for (const Tag& tag : known) {
        std::wstring value =
            takeText(ofEveryFormat ? call(player_, &_cPlayer::get_TagText, TextArgument(tag.name))
                                   : call(player_, tag.decoders));
        if (!value.empty())
            result.push_back({tag.shown, std::move(value)});
    }
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
