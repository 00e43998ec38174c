// The members of PlayerClient that say how a playback sounds, where it is and what follows it.

#include "PlayerCalls.h"
#include "PlayerClient.h"

namespace corvina::app {

namespace {

_COM_SMARTPTR_TYPEDEF(IDispatch, __uuidof(IDispatch));

} // namespace

PlayState PlayerClient::state() {
    return call(player_, &_cPlayer::get_State);
}

long PlayerClient::positionMs() {
    return call(player_, &_cPlayer::get_PositionMs);
}

long PlayerClient::durationMs() {
    return call(player_, &_cPlayer::get_DurationMs);
}

void PlayerClient::jumpTo(long milliseconds) {
    put(player_, &_cPlayer::put_PositionMs, milliseconds);
}

void PlayerClient::setPositionInterval(long milliseconds) {
    put(player_, &_cPlayer::put_PositionInterval, milliseconds);
}

long PlayerClient::level(long channel) {
    return call(player_, &_cPlayer::get_Level, channel);
}

void PlayerClient::setNextFile(const std::wstring& file) {
    put(player_, &_cPlayer::put_NextFile, TextArgument(file));
}

void PlayerClient::setLooping(bool on) {
    put(player_, &_cPlayer::put_Looping, variantBool(on));
}

void PlayerClient::setDevice(const std::wstring& name) {
    put(player_, &_cPlayer::put_Device, TextArgument(name));
}

void PlayerClient::setRecover(bool on) {
    put(player_, &_cPlayer::put_Recover, variantBool(on));
}

void PlayerClient::setCleanEnd(bool on) {
    put(player_, &_cPlayer::put_CleanEnd, variantBool(on));
}

long PlayerClient::volume() {
    return call(player_, &_cPlayer::get_Volume);
}

void PlayerClient::setVolume(long percent) {
    put(player_, &_cPlayer::put_Volume, percent);
}

bool PlayerClient::mute() {
    return call(player_, &_cPlayer::get_Mute) != VARIANT_FALSE;
}

void PlayerClient::setMute(bool on) {
    put(player_, &_cPlayer::put_Mute, variantBool(on));
}

long PlayerClient::balance() {
    return call(player_, &_cPlayer::get_Balance);
}

void PlayerClient::setBalance(long value) {
    put(player_, &_cPlayer::put_Balance, value);
}

float PlayerClient::equalizerGain(long band) {
    return call(player_, &_cPlayer::get_EqualizerGain, band);
}

void PlayerClient::setEqualizerGain(long band, float decibels) {
    put(player_, &_cPlayer::put_EqualizerGain, band, decibels);
}

std::wstring PlayerClient::formatName() {
    return takeText(call(player_, &_cPlayer::get_FormatName));
}

std::wstring PlayerClient::extensions() {
    return takeText(call(player_, &_cPlayer::get_Extensions));
}

IPicturePtr PlayerClient::cover() {
    // It is the caller's, and an object for scripts; what draws is another interface of it.
    const IDispatchPtr object(call(player_, &_cPlayer::get_Picture), false);
    return IPicturePtr(object);
}

} // namespace corvina::app
