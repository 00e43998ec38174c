#pragma once

// The COM layer of the player control: translates texts, results and events, and forwards
// everything to Player. The library's class table creates the control.

#include "control/Control.h"
#include "player/Player.h"
#include "player/PlayerEvents.h"
#include "stream/SampleFeed.h"

#include "Corvina.h"

namespace corvina {

extern const ControlClass playerClass;

class cPlayer final : public Control<_cPlayer, ISubclass, cCallback>,
                      private PlayerEvents,
                      private SampleProvider {
public:
    explicit cPlayer(IUnknown* outer = nullptr);
    ~cPlayer() override;

    // _cPlayer
    HRESULT STDMETHODCALLTYPE get_Tag_Title(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_Title(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Tag_Album(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_Album(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Tag_Artist(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_Artist(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Tag_SongYear(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_SongYear(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Tag_Genre(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_Genre(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Tag_Comment(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_Comment(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Tag_TrackNumber(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Tag_TrackNumber(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Info_Bitrate(long* result) override;
    HRESULT STDMETHODCALLTYPE get_Info_BitsPerSample(long* result) override;
    HRESULT STDMETHODCALLTYPE get_Info_Channels(short* result) override;
    HRESULT STDMETHODCALLTYPE get_Info_Duration(double* result) override;
    HRESULT STDMETHODCALLTYPE get_Info_Samplerate(long* result) override;
    HRESULT STDMETHODCALLTYPE ErrorTextOut(long lErrNum, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE PlayPause(long* result) override;
    HRESULT STDMETHODCALLTYPE PlayUnPause(long* result) override;
    HRESULT STDMETHODCALLTYPE IsPausedOut(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE DonePlay(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE About() override;
    HRESULT STDMETHODCALLTYPE Init(long* result) override;
    HRESULT STDMETHODCALLTYPE DeInit(long* result) override;
    HRESULT STDMETHODCALLTYPE get_AudioDataOut(long* result) override;
    HRESULT STDMETHODCALLTYPE PlayStop(long* result) override;
    HRESULT STDMETHODCALLTYPE PlayStart(BSTR sAudioFile, long DeviceIndex, long lBufferSize,
                                        long* result) override;
    HRESULT STDMETHODCALLTYPE GetID3Tags(BSTR strFile, long* result) override;
    HRESULT STDMETHODCALLTYPE OpenAudioFile(BSTR strFile, long* result) override;
    HRESULT STDMETHODCALLTYPE PositionGet(long* result) override;
    HRESULT STDMETHODCALLTYPE PositionSet(long lPosition, long* result) override;
    HRESULT STDMETHODCALLTYPE GetSecondsAsTimeString(long Seconds, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE IsPlaying(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE GetDetailsDevice(long DeviceIndex, long iInOut,
                                               AudioDeviceDetails* DeviceDetails,
                                               long* result) override;
    HRESULT STDMETHODCALLTYPE NumOfAudioDevices(long iInOut, long* result) override;
    HRESULT STDMETHODCALLTYPE get_Volume(long* result) override;
    HRESULT STDMETHODCALLTYPE put_Volume(long value) override;
    HRESULT STDMETHODCALLTYPE get_Mute(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_Mute(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_Balance(long* result) override;
    HRESULT STDMETHODCALLTYPE put_Balance(long value) override;
    HRESULT STDMETHODCALLTYPE get_EqualizerGain(long Band, float* result) override;
    HRESULT STDMETHODCALLTYPE put_EqualizerGain(long Band, float value) override;
    HRESULT STDMETHODCALLTYPE get_Looping(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_Looping(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_NextFile(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_NextFile(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_PositionMs(long* result) override;
    HRESULT STDMETHODCALLTYPE put_PositionMs(long value) override;
    HRESULT STDMETHODCALLTYPE get_DurationMs(long* result) override;
    HRESULT STDMETHODCALLTYPE get_State(PlayState* result) override;
    HRESULT STDMETHODCALLTYPE get_PositionInterval(long* result) override;
    HRESULT STDMETHODCALLTYPE put_PositionInterval(long value) override;
    HRESULT STDMETHODCALLTYPE get_Device(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Device(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Recover(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_Recover(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_CleanEnd(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_CleanEnd(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_Level(long Channel, long* result) override;
    HRESULT STDMETHODCALLTYPE get_FormatName(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_Extensions(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_TagText(BSTR Name, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_TagCount(long* result) override;
    HRESULT STDMETHODCALLTYPE get_TagName(long Index, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_Picture(IPictureDisp** result) override;

    // ISubclass
    HRESULT STDMETHODCALLTYPE get_MsgResponse(EMsgResponse* result) override;
    HRESULT STDMETHODCALLTYPE put_MsgResponse(EMsgResponse value) override;
    HRESULT STDMETHODCALLTYPE WindowProc(long hWnd, long iMsg, long wParam, long lParam,
                                         long* result) override;

    // cCallback
    HRESULT STDMETHODCALLTYPE Samples(SAFEARRAY** intSamples, long datalength,
                                      short channels) override;

private:
    using TagMember = std::wstring TagTexts::*;
    HRESULT getTag(TagMember tag, BSTR* result) noexcept;
    HRESULT putTag(TagMember tag, BSTR value) noexcept;
    void fireNumber(DISPID event, std::int32_t number,
                    EventSource::WhenFrozen whenFrozen = EventSource::WhenFrozen::keepAll) noexcept;

    // PlayerEvents
    void Err(const std::wstring& functionName, std::int32_t number,
             const std::wstring& description) noexcept override;
    void DonePlay() noexcept override;
    void Ended(PlayEndReason reason) noexcept override;
    void StateChanged(PlayState state) noexcept override;
    void PositionChanged(std::int32_t milliseconds) noexcept override;
    void NextStarted(const std::wstring& file) noexcept override;
    void hold() noexcept override;
    void letGo() noexcept override;

    // SampleProvider
    bool latestSamples(SampleBlock& block) override { return player_.latestSamples(block); }

    void* findInterface(REFIID iid) noexcept override;

    // ControlHooks
    void draw(HDC dc, const RECT& bounds) override;
    void windowLost() override;

    Player player_;
    FollowedPlayerPart followed_;
};

} // namespace corvina
