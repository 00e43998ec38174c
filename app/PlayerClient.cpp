#include "PlayerClient.h"

#include <cmath>
#include <tuple>
#include <type_traits>
#include <utility>

namespace corvina::app {

namespace {

_COM_SMARTPTR_TYPEDEF(IConnectionPointContainer, __uuidof(IConnectionPointContainer));

// An interface member whose last parameter receives its result.
template <typename... Parameters>
using Member = HRESULT (STDMETHODCALLTYPE _cPlayer::*)(Parameters...);

template <typename... Parameters>
using ResultOf = std::remove_pointer_t<
    std::tuple_element_t<sizeof...(Parameters) - 1, std::tuple<Parameters...>>>;

[[noreturn]] void throwWithErrorInformation(HRESULT code) {
    IErrorInfo* information = nullptr;
    if (GetErrorInfo(0, &information) != S_OK)
        information = nullptr;
    throw _com_error(code, information);
}

// Calls a member of the control and returns its result; a failed call throws with the control's own
// error information.
template <typename... Parameters, typename... Arguments>
ResultOf<Parameters...> call(const _cPlayerPtr& player, Member<Parameters...> member,
                             Arguments&&... arguments) {
    _cPlayer* const control = player.GetInterfacePtr();
    ResultOf<Parameters...> result{};
    const HRESULT code = (control->*member)(std::forward<Arguments>(arguments)..., &result);
    if (FAILED(code))
        throwWithErrorInformation(code);
    return result;
}

std::wstring takeText(BSTR text) {
    std::wstring copy(text ? text : L"", SysStringLen(text));
    SysFreeString(text);
    return copy;
}

// A text as an argument, with any character in it.
class TextArgument {
public:
    explicit TextArgument(const std::wstring& text)
        : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
        if (!text_)
            _com_issue_error(E_OUTOFMEMORY);
    }
    ~TextArgument() { SysFreeString(text_); }
    TextArgument(const TextArgument&) = delete;
    TextArgument& operator=(const TextArgument&) = delete;
    operator BSTR() const noexcept { return text_; }

private:
    BSTR text_;
};

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

bool PlayerClient::isPlaying() {
    return call(player_, &_cPlayer::IsPlaying) != VARIANT_FALSE;
}

bool PlayerClient::isPaused() {
    return call(player_, &_cPlayer::IsPausedOut) != VARIANT_FALSE;
}

long PlayerClient::positionSeconds() {
    return call(player_, &_cPlayer::PositionGet);
}

void PlayerClient::seek(long seconds) {
    call(player_, &_cPlayer::PositionSet, seconds);
}

long PlayerClient::audioData() {
    return call(player_, &_cPlayer::get_AudioDataOut);
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

// What the decoder knows stands in where the tags of all formats are not to be had.
std::vector<FileTag> PlayerClient::tags(const std::wstring& file) {
    static constexpr struct {
        const wchar_t* label;
        const wchar_t* tag;
        Member<BSTR*> otherwise;
    } members[] = {
        {L"Title", L"TITLE", &_cPlayer::get_Tag_Title},
        {L"Artist", L"ARTIST", &_cPlayer::get_Tag_Artist},
        {L"Album", L"ALBUM", &_cPlayer::get_Tag_Album},
        {L"Track", L"TRACKNUMBER", &_cPlayer::get_Tag_TrackNumber},
        {L"Year", L"DATE", &_cPlayer::get_Tag_SongYear},
        {L"Genre", L"GENRE", &_cPlayer::get_Tag_Genre},
        {L"Comment", L"COMMENT", &_cPlayer::get_Tag_Comment},
    };
    call(player_, &_cPlayer::GetID3Tags, TextArgument(file));
    std::vector<FileTag> result;
    for (const auto& [label, tag, otherwise] : members) {
        std::wstring value = takeText(call(player_, &_cPlayer::get_TagText, TextArgument(tag)));
        if (value.empty())
            value = takeText(call(player_, otherwise));
        if (!value.empty())
            result.push_back({label, std::move(value)});
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
