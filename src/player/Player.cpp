#include "player/Player.h"

#include "runtime/RuntimeError.h"

namespace corvina {

Player::Player(PlayerEvents& events, cCallback*, const PlayerPlatform& platform)
    : events_(events), platform_(platform) {}
Player::~Player() {
    Shutdown();
}
std::int32_t Player::Init(HWND, ISubclass&) {
    return 0;
}
std::int32_t Player::DeInit() {
    return 0;
}
void Player::Shutdown() noexcept {}
std::int32_t Player::HandleMessage(HWND, UINT, WPARAM, LPARAM) noexcept {
    return 0;
}
void Player::WindowDestroyed() noexcept {}
std::int32_t Player::OpenAudioFile(const std::wstring&) {
    return 1;
}
std::int32_t Player::PlayStart(const std::wstring&, std::int32_t, std::int32_t) {
    return 1;
}
std::int32_t Player::PlayStop() {
    return 0;
}
std::int32_t Player::PlayPause() {
    return 0;
}
std::int32_t Player::PlayUnPause() {
    return 0;
}
bool Player::IsPausedOut() const noexcept {
    return false;
}
bool Player::DonePlay() const noexcept {
    return true;
}
bool Player::IsPlaying() const noexcept {
    return false;
}
std::int32_t Player::AudioDataOut() const noexcept {
    return 0;
}
std::int32_t Player::GetID3Tags(const std::wstring&) {
    return 0;
}
std::int32_t Player::Info_Bitrate() const {
    throwObjectNotSet();
}
std::int32_t Player::Info_BitsPerSample() const {
    throwObjectNotSet();
}
std::int16_t Player::Info_Channels() const {
    throwObjectNotSet();
}
double Player::Info_Duration() const {
    throwObjectNotSet();
}
std::int32_t Player::Info_Samplerate() const {
    throwObjectNotSet();
}
std::int32_t Player::PositionGet() const {
    return 0;
}
std::int32_t Player::PositionSet(std::int32_t) {
    return 0;
}
std::wstring Player::GetSecondsAsTimeString(std::int32_t) const {
    return {};
}
std::wstring Player::ErrorTextOut(std::int32_t) const {
    return {};
}
std::int32_t Player::NumOfAudioDevices(std::int32_t) const {
    return 0;
}
std::int32_t Player::GetDetailsDevice(std::int32_t, std::int32_t, AudioDevice&) const {
    return 0;
}

} // namespace corvina
