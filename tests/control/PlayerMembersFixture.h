#pragma once

// A registered player and short ways to call its members.

#include "Support.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <string>
#include <vector>

namespace corvina::test {

class PlayerMembers : public ApartmentTest {
protected:
    using Text = HRESULT (STDMETHODCALLTYPE _cPlayer::*)(BSTR*);

    void SetUp() override {
        ApartmentTest::SetUp();
        player_ = create<_cPlayer>(CLSID_cPlayer);
        ASSERT_TRUE(player_);
        ASSERT_EQ(S_OK, player_->Init(&result_));
    }
    void TearDown() override {
        player_.reset();
        ApartmentTest::TearDown();
    }

    // The result of a member without arguments.
    template <typename Value>
    Value of(HRESULT (STDMETHODCALLTYPE _cPlayer::*member)(Value*)) {
        Value value{};
        EXPECT_EQ(S_OK, (player_.get()->*member)(&value));
        return value;
    }
    bool truthOf(HRESULT (STDMETHODCALLTYPE _cPlayer::*member)(VARIANT_BOOL*)) {
        const VARIANT_BOOL value = of<VARIANT_BOOL>(member);
        EXPECT_TRUE(value == VARIANT_TRUE || value == VARIANT_FALSE);
        return value == VARIANT_TRUE;
    }
    std::wstring text(Text member) {
        Bstr value;
        EXPECT_EQ(S_OK, (player_.get()->*member)(value.put()));
        return textOf(value.get());
    }
    std::vector<std::wstring> tags() {
        return {text(&_cPlayer::get_Tag_Title),      text(&_cPlayer::get_Tag_Artist),
                text(&_cPlayer::get_Tag_Album),      text(&_cPlayer::get_Tag_SongYear),
                text(&_cPlayer::get_Tag_Genre),      text(&_cPlayer::get_Tag_Comment),
                text(&_cPlayer::get_Tag_TrackNumber)};
    }
    std::wstring errorText(long number) {
        Bstr value;
        EXPECT_EQ(S_OK, player_->ErrorTextOut(number, value.put()));
        return textOf(value.get());
    }

    long open(const std::wstring& file) {
        EXPECT_EQ(S_OK, player_->OpenAudioFile(Bstr(file).get(), &result_));
        return result_;
    }
    long readTags(const std::wstring& file) {
        EXPECT_EQ(S_OK, player_->GetID3Tags(Bstr(file).get(), &result_));
        return result_;
    }
    long start(const std::wstring& file) {
        EXPECT_EQ(S_OK, player_->PlayStart(Bstr(file).get(), -1, 0, &result_));
        return result_;
    }
    long seek(long seconds) {
        EXPECT_EQ(S_OK, player_->PositionSet(seconds, &result_));
        return result_;
    }
    bool playsOut() {
        return pumpUntil([&] { return !truthOf(&_cPlayer::IsPlaying); });
    }
    std::wstring tone(std::size_t bytes) {
        return folder_.write(L"tone.wav", plainWav(pcm(44100, 2, 16), noise(bytes)));
    }
    // The tests run beside the media.
    static std::wstring media(const wchar_t* name) {
        wchar_t whole[MAX_PATH];
        ::GetFullPathNameW((std::wstring(L"..\\..\\media\\") + name).c_str(), MAX_PATH, whole,
                           nullptr);
        return whole;
    }

    // Neither queued for long nor gone at once: three of the eight buffers.
    static constexpr std::size_t shortSound = 3 * 8000;

    TempFolder folder_;
    ComPtr<_cPlayer> player_;
    long result_ = -1;
};

} // namespace corvina::test
