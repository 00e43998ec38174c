#include "player/cPlayer.h"

#include "com/Bstr.h"
#include "control/AboutBox.h"
#include "player/PlayerGlyph.h"
#include "runtime/BitReversal.h"

namespace corvina {
namespace {

VARIANT_BOOL boolean(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

} // namespace

// A fixed size in the container's own units, whatever those are: an icon's size in twips.
constinit const ControlClass playerClass{.clsid = CLSID_cPlayer,
                                         .primary = IID__cPlayer,
                                         .events = DIID___cPlayer,
                                         .progId = L"Corvina.cPlayer",
                                         .description = L"Corvina audio player",
                                         .naturalPixels = {512, 512},
                                         .fixedUnits = {512, 512},
                                         .visibleAtRunTime = false};

cPlayer::cPlayer(IUnknown* outer)
    : Control(playerClass, outer), player_(*this, this), followed_(object(), *this) {
    // A host creates the player first, so the player prepares the table of the graph's spectrum.
    fillBitReversalTable();
}

cPlayer::~cPlayer() {
    followed_.disconnect();
    ole().disconnect();
    player_.shutdown();
}

void* cPlayer::findInterface(REFIID iid) noexcept {
    void* found = Control::findInterface(iid);
    return found ? found : followed_.find(iid);
}

HRESULT cPlayer::getTag(TagMember tag, BSTR* result) noexcept {
    return enterReturning(result, [&] { return Bstr(player_.tagTexts().*tag).detach(); });
}

HRESULT cPlayer::putTag(TagMember tag, BSTR value) noexcept {
    return enter([&] { player_.tagTexts().*tag = textOf(value); });
}

HRESULT cPlayer::get_Tag_Title(BSTR* result) {
    return getTag(&TagTexts::title, result);
}
HRESULT cPlayer::put_Tag_Title(BSTR value) {
    return putTag(&TagTexts::title, value);
}
HRESULT cPlayer::get_Tag_Album(BSTR* result) {
    return getTag(&TagTexts::album, result);
}
HRESULT cPlayer::put_Tag_Album(BSTR value) {
    return putTag(&TagTexts::album, value);
}
HRESULT cPlayer::get_Tag_Artist(BSTR* result) {
    return getTag(&TagTexts::artist, result);
}
HRESULT cPlayer::put_Tag_Artist(BSTR value) {
    return putTag(&TagTexts::artist, value);
}
HRESULT cPlayer::get_Tag_SongYear(BSTR* result) {
    return getTag(&TagTexts::songYear, result);
}
HRESULT cPlayer::put_Tag_SongYear(BSTR value) {
    return putTag(&TagTexts::songYear, value);
}
HRESULT cPlayer::get_Tag_Genre(BSTR* result) {
    return getTag(&TagTexts::genre, result);
}
HRESULT cPlayer::put_Tag_Genre(BSTR value) {
    return putTag(&TagTexts::genre, value);
}
HRESULT cPlayer::get_Tag_Comment(BSTR* result) {
    return getTag(&TagTexts::comment, result);
}
HRESULT cPlayer::put_Tag_Comment(BSTR value) {
    return putTag(&TagTexts::comment, value);
}
HRESULT cPlayer::get_Tag_TrackNumber(BSTR* result) {
    return getTag(&TagTexts::trackNumber, result);
}
HRESULT cPlayer::put_Tag_TrackNumber(BSTR value) {
    return putTag(&TagTexts::trackNumber, value);
}

HRESULT cPlayer::get_Info_Bitrate(long* result) {
    return enterReturning(result, [&] { return player_.Info_Bitrate(); });
}

HRESULT cPlayer::get_Info_BitsPerSample(long* result) {
    return enterReturning(result, [&] { return player_.Info_BitsPerSample(); });
}

HRESULT cPlayer::get_Info_Channels(short* result) {
    return enterReturning(result, [&] { return player_.Info_Channels(); });
}

HRESULT cPlayer::get_Info_Duration(double* result) {
    return enterReturning(result, [&] { return player_.Info_Duration(); });
}

HRESULT cPlayer::get_Info_Samplerate(long* result) {
    return enterReturning(result, [&] { return player_.Info_Samplerate(); });
}

HRESULT cPlayer::ErrorTextOut(long lErrNum, BSTR* result) {
    return enterReturning(result, [&] { return Bstr(player_.ErrorTextOut(lErrNum)).detach(); });
}

HRESULT cPlayer::PlayPause(long* result) {
    return enterReturning(result, [&] { return player_.PlayPause(); });
}

HRESULT cPlayer::PlayUnPause(long* result) {
    return enterReturning(result, [&] { return player_.PlayUnPause(); });
}

HRESULT cPlayer::IsPausedOut(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.IsPausedOut()); });
}

HRESULT cPlayer::DonePlay(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.DonePlay()); });
}

HRESULT cPlayer::About() {
    return enter([] { showAboutBox(::GetActiveWindow()); });
}

HRESULT cPlayer::Init(long* result) {
    return enterReturning(result, [&] { return player_.Init(ole().messageWindow(), *this); });
}

HRESULT cPlayer::DeInit(long* result) {
    return enterReturning(result, [&] { return player_.DeInit(); });
}

HRESULT cPlayer::get_AudioDataOut(long* result) {
    return enterReturning(result, [&] { return player_.AudioDataOut(); });
}

HRESULT cPlayer::PlayStop(long* result) {
    return enterReturning(result, [&] { return player_.PlayStop(); });
}

HRESULT cPlayer::PlayStart(BSTR sAudioFile, long DeviceIndex, long lBufferSize, long* result) {
    return enterReturning(
        result, [&] { return player_.PlayStart(textOf(sAudioFile), DeviceIndex, lBufferSize); });
}

HRESULT cPlayer::GetID3Tags(BSTR strFile, long* result) {
    return enterReturning(result, [&] { return player_.GetID3Tags(textOf(strFile)); });
}

HRESULT cPlayer::OpenAudioFile(BSTR strFile, long* result) {
    return enterReturning(result, [&] { return player_.OpenAudioFile(textOf(strFile)); });
}

HRESULT cPlayer::PositionGet(long* result) {
    return enterReturning(result, [&] { return player_.PositionGet(); });
}

HRESULT cPlayer::PositionSet(long lPosition, long* result) {
    return enterReturning(result, [&] { return player_.PositionSet(lPosition); });
}

HRESULT cPlayer::GetSecondsAsTimeString(long Seconds, BSTR* result) {
    return enterReturning(result,
                          [&] { return Bstr(player_.GetSecondsAsTimeString(Seconds)).detach(); });
}

HRESULT cPlayer::IsPlaying(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.IsPlaying()); });
}

HRESULT cPlayer::GetDetailsDevice(long DeviceIndex, long iInOut, AudioDeviceDetails* DeviceDetails,
                                  long* result) {
    if (!DeviceDetails)
        return E_POINTER;
    return enterReturning(result, [&] {
        AudioDevice device;
        const std::int32_t status = player_.GetDetailsDevice(DeviceIndex, iInOut, device);
        Bstr name(device.name), driver(device.driverVersion);
        // The record is the caller's: what it held is freed, and only when nothing can fail any
        // more.
        ::SysFreeString(DeviceDetails->DeviceName);
        ::SysFreeString(DeviceDetails->DeviceDriver);
        *DeviceDetails = {name.detach(), driver.detach(), device.channels, device.formats};
        return status;
    });
}

HRESULT cPlayer::NumOfAudioDevices(long iInOut, long* result) {
    return enterReturning(result, [&] { return player_.NumOfAudioDevices(iInOut); });
}

HRESULT cPlayer::get_MsgResponse(EMsgResponse* result) {
    return enterReturning(result, [] { return emrPreprocess; });
}

// The response is fixed, so that the window's own procedure always runs first.
HRESULT cPlayer::put_MsgResponse(EMsgResponse) {
    return S_OK;
}

HRESULT cPlayer::WindowProc(long, long iMsg, long, long, long* result) {
    return enterReturning(result, [&] {
        player_.handleMessage(static_cast<UINT>(iMsg));
        return 0L;
    });
}

// The player is its converter's observer only because the converter asks for one.
HRESULT cPlayer::Samples(SAFEARRAY**, long, short) {
    return S_OK;
}

void cPlayer::draw(HDC dc, const RECT& bounds) {
    drawPlayerGlyph(dc, bounds, ole().ambientBackground(), !ole().userMode());
}

void cPlayer::windowLost() {
    player_.windowDestroyed();
}

} // namespace corvina
