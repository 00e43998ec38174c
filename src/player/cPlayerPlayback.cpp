// The members of the player control that host programs of today expect of a player, and its events.

#include "com/Bstr.h"
#include "player/cPlayer.h"

#include <new>

namespace corvina {
namespace {

enum Event : DISPID {
    donePlayEvent = 1,
    errEvent = 2,
    endedEvent = 3,
    stateChangedEvent = 4,
    positionChangedEvent = 5,
    nextStartedEvent = 6
};

VARIANT_BOOL boolean(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

} // namespace

HRESULT cPlayer::get_Volume(long* result) {
    return enterReturning(result, [&] { return player_.settings().options().sound.volume; });
}

HRESULT cPlayer::put_Volume(long value) {
    return enter([&] {
        player_.settings().setVolume(value);
        player_.soundChanged();
    });
}

HRESULT cPlayer::get_Mute(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.settings().options().sound.mute); });
}

HRESULT cPlayer::put_Mute(VARIANT_BOOL value) {
    return enter([&] {
        player_.settings().setMute(value != VARIANT_FALSE);
        player_.soundChanged();
    });
}

HRESULT cPlayer::get_Balance(long* result) {
    return enterReturning(result, [&] { return player_.settings().options().sound.balance; });
}

HRESULT cPlayer::put_Balance(long value) {
    return enter([&] {
        player_.settings().setBalance(value);
        player_.soundChanged();
    });
}

HRESULT cPlayer::get_EqualizerGain(long Band, float* result) {
    return enterReturning(result, [&] { return player_.settings().bandGain(Band); });
}

HRESULT cPlayer::put_EqualizerGain(long Band, float value) {
    return enter([&] {
        player_.settings().setBandGain(Band, value);
        player_.soundChanged();
    });
}

HRESULT cPlayer::get_Looping(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.settings().options().loops); });
}

HRESULT cPlayer::put_Looping(VARIANT_BOOL value) {
    return enter([&] { player_.settings().options().loops = value != VARIANT_FALSE; });
}

HRESULT cPlayer::get_NextFile(BSTR* result) {
    return enterReturning(result, [&] { return Bstr(player_.NextFile()).detach(); });
}

HRESULT cPlayer::put_NextFile(BSTR value) {
    return enter([&] { player_.settings().options().nextFile = textOf(value); });
}

HRESULT cPlayer::get_PositionMs(long* result) {
    return enterReturning(result, [&] { return player_.PositionMs(); });
}

HRESULT cPlayer::put_PositionMs(long value) {
    return enter([&] { player_.setPositionMs(value); });
}

HRESULT cPlayer::get_DurationMs(long* result) {
    return enterReturning(result, [&] { return player_.DurationMs(); });
}

HRESULT cPlayer::get_State(PlayState* result) {
    return enterReturning(result, [&] { return player_.State(); });
}

HRESULT cPlayer::get_PositionInterval(long* result) {
    return enterReturning(result, [&] { return player_.settings().options().positionInterval; });
}

HRESULT cPlayer::put_PositionInterval(long value) {
    return enter([&] {
        player_.settings().setPositionInterval(value);
        player_.intervalChanged();
    });
}

HRESULT cPlayer::get_Device(BSTR* result) {
    return enterReturning(result,
                          [&] { return Bstr(player_.settings().options().device).detach(); });
}

HRESULT cPlayer::put_Device(BSTR value) {
    return enter([&] { player_.settings().options().device = textOf(value); });
}

HRESULT cPlayer::get_Recover(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.settings().options().recovers); });
}

HRESULT cPlayer::put_Recover(VARIANT_BOOL value) {
    return enter([&] { player_.settings().options().recovers = value != VARIANT_FALSE; });
}

HRESULT cPlayer::get_CleanEnd(VARIANT_BOOL* result) {
    return enterReturning(result, [&] { return boolean(player_.settings().options().cleanEnd); });
}

HRESULT cPlayer::put_CleanEnd(VARIANT_BOOL value) {
    return enter([&] { player_.settings().options().cleanEnd = value != VARIANT_FALSE; });
}

HRESULT cPlayer::get_Level(long Channel, long* result) {
    return enterReturning(result, [&] { return player_.Level(Channel); });
}

HRESULT cPlayer::get_FormatName(BSTR* result) {
    return enterReturning(result, [&] { return Bstr(player_.facts().formatName()).detach(); });
}

HRESULT cPlayer::get_Extensions(BSTR* result) {
    return enterReturning(result, [&] { return Bstr(player_.Extensions()).detach(); });
}

HRESULT cPlayer::get_TagText(BSTR Name, BSTR* result) {
    return enterReturning(result,
                          [&] { return Bstr(player_.facts().tagText(textOf(Name))).detach(); });
}

HRESULT cPlayer::get_TagCount(long* result) {
    return enterReturning(result, [&] { return player_.facts().tagCount(); });
}

HRESULT cPlayer::get_TagName(long Index, BSTR* result) {
    return enterReturning(result, [&] { return Bstr(player_.facts().tagName(Index)).detach(); });
}

HRESULT cPlayer::get_Picture(IPictureDisp** result) {
    return enterReturning(result, [&] { return player_.facts().picture().detach(); });
}

void cPlayer::Err(const std::wstring& functionName, std::int32_t number,
                  const std::wstring& description) noexcept {
    try {
        ole().events().fire(errEvent,
                            {functionName, EventSource::ByReference{number}, description});
    } catch (const std::bad_alloc&) {
        // Without memory for its arguments the event is lost.
    }
}

void cPlayer::DonePlay() noexcept {
    ole().events().fire(donePlayEvent, {});
}

void cPlayer::Ended(PlayEndReason reason) noexcept {
    fireNumber(endedEvent, reason);
}

void cPlayer::StateChanged(PlayState state) noexcept {
    fireNumber(stateChangedEvent, state);
}

void cPlayer::PositionChanged(std::int32_t milliseconds) noexcept {
    // Of a time in which a host holds its events back only the last position is of use.
    fireNumber(positionChangedEvent, milliseconds, EventSource::WhenFrozen::keepLatest);
}

void cPlayer::NextStarted(const std::wstring& file) noexcept {
    try {
        ole().events().fire(nextStartedEvent, {file});
    } catch (const std::bad_alloc&) {
        // Without memory for its argument the event is lost.
    }
}

void cPlayer::fireNumber(DISPID event, std::int32_t number,
                         EventSource::WhenFrozen whenFrozen) noexcept {
    try {
        ole().events().fire(event, {number}, whenFrozen);
    } catch (const std::bad_alloc&) {
        // Without memory for its argument the event is lost.
    }
}

void cPlayer::hold() noexcept {
    static_cast<Dispatch<_cPlayer>*>(this)->AddRef();
}

void cPlayer::letGo() noexcept {
    static_cast<Dispatch<_cPlayer>*>(this)->Release();
}

} // namespace corvina
