// What the registered player's members return: before, during and after a playback, and for files
// of each kind.

#include "Support.h"
#include "support/TempFolder.h"
#include "support/WavBytes.h"

#include <string>
#include <utility>
#include <vector>

using namespace corvina;
using namespace corvina::test;

namespace {

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

// ----- the opened file

TEST_F(PlayerMembers, the_information_is_the_opened_files) {
    struct Shape {
        DWORD rate;
        WORD channels;
        WORD bits;
    };
    int files = 0; // an open one cannot be written again
    for (const Shape& shape : {Shape{22050, 1, 8}, Shape{48000, 2, 16}, Shape{96000, 1, 24}}) {
        const Bytes content =
            plainWav(pcm(shape.rate, shape.channels, shape.bits), noise(shape.rate));
        ASSERT_EQ(0, open(folder_.write(std::to_wstring(++files) + L".wav", content)));
        const long bytesPerSecond = static_cast<long>(shape.rate) * shape.channels * shape.bits / 8;
        EXPECT_EQ(static_cast<long>(shape.rate), of<long>(&_cPlayer::get_Info_Samplerate));
        EXPECT_EQ(shape.channels, of<short>(&_cPlayer::get_Info_Channels));
        EXPECT_EQ(shape.bits, of<long>(&_cPlayer::get_Info_BitsPerSample));
        EXPECT_EQ(bytesPerSecond * 8, of<long>(&_cPlayer::get_Info_Bitrate));
        EXPECT_NEAR(static_cast<double>(shape.rate) / bytesPerSecond,
                    of<double>(&_cPlayer::get_Info_Duration), 0.0006);
    }
}

TEST_F(PlayerMembers, the_information_of_a_compressed_file_is_its_own) {
    ASSERT_EQ(0, open(media(L"tune.mp3")));
    EXPECT_NEAR(128000, of<long>(&_cPlayer::get_Info_Bitrate), 1000);
    EXPECT_EQ(44100, of<long>(&_cPlayer::get_Info_Samplerate));
    EXPECT_EQ(2, of<short>(&_cPlayer::get_Info_Channels));
    EXPECT_EQ(16, of<long>(&_cPlayer::get_Info_BitsPerSample));
    EXPECT_NEAR(3.0, of<double>(&_cPlayer::get_Info_Duration), 0.1);
}

TEST_F(PlayerMembers, every_tag_text_is_read_from_the_opened_file) {
    const std::vector<std::wstring> all{L"Small Tune", L"Test Bench",        L"Media", L"2024",
                                        L"Other",      L"made at test time", L"3"};
    for (const wchar_t* name : {L"tune.mp3", L"tune.wma"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
        ASSERT_EQ(0, open(media(name)));
        EXPECT_EQ(std::vector<std::wstring>(7), tags()) << "before they were asked for";
        EXPECT_EQ(0, readTags(media(name)));
        EXPECT_EQ(all, tags());
        readTags(L"none");
    }
}

TEST_F(PlayerMembers, reading_the_tags_replaces_every_text_that_was_there) {
    const auto putAll = [&] {
        const Bstr old(L"old");
        player_->put_Tag_Title(old.get());
        player_->put_Tag_Artist(old.get());
        player_->put_Tag_Album(old.get());
        player_->put_Tag_SongYear(old.get());
        player_->put_Tag_Genre(old.get());
        player_->put_Tag_Comment(old.get());
        player_->put_Tag_TrackNumber(old.get());
        EXPECT_EQ(std::vector<std::wstring>(7, L"old"), tags());
    };
    putAll();
    ASSERT_EQ(0, open(media(L"tune.mp3")));
    EXPECT_EQ(0, readTags(media(L"tune.mp3")));
    EXPECT_EQ(L"Small Tune", tags().front());
    EXPECT_EQ(L"3", tags().back());
    putAll();
    ASSERT_EQ(0, open(tone(100)));
    EXPECT_EQ(0, readTags(L"tone.wav"));
    EXPECT_EQ(std::vector<std::wstring>(7), tags()) << "a kind of file without tags";
}

// The system takes no longer path than 259 characters.
TEST_F(PlayerMembers, files_with_names_of_128_to_259_characters_are_opened) {
    const Bytes content = plainWav(pcm(8000, 1, 8), noise(100));
    const std::size_t before = folder_.path().size() + 1;
    for (std::size_t length = 128; length <= 259; ++length) {
        const std::wstring path =
            folder_.write(std::wstring(length - before - 4, L'n') + L".wav", content);
        ASSERT_EQ(length, path.size());
        ASSERT_EQ(0, open(path)) << length;
        ASSERT_EQ(8000, of<long>(&_cPlayer::get_Info_Samplerate)) << length;
    }
}

// ----- texts and numbers

TEST_F(PlayerMembers, the_controls_own_error_numbers_have_texts_and_others_none) {
    EXPECT_EQ(L"Control already playing, use the PlayStop function to stop playing.",
              errorText(-201));
    EXPECT_NE(L"", errorText(-202));
    EXPECT_NE(errorText(-201), errorText(-202));
    for (const long number : {-203L, -1L, 0L, 1L, 5L})
        EXPECT_EQ(L"", errorText(number)) << number;
}

TEST_F(PlayerMembers, devices_are_counted_as_the_system_does) {
    const auto count = [&](long direction) {
        EXPECT_EQ(S_OK, player_->NumOfAudioDevices(direction, &result_));
        return result_;
    };
    EXPECT_EQ(static_cast<long>(::waveOutGetNumDevs()), count(AUDIOOUT));
    EXPECT_EQ(static_cast<long>(::waveInGetNumDevs()), count(AUDIOIN));
    EXPECT_EQ(static_cast<long>(::waveOutGetNumDevs()), count(7)) << "any other direction";
}

// ----- states

TEST_F(PlayerMembers, DonePlay_is_true_but_from_the_start_to_the_end_of_a_playback) {
    EXPECT_TRUE(truthOf(&_cPlayer::DonePlay));
    ASSERT_EQ(0, start(tone(shortSound)));
    EXPECT_FALSE(truthOf(&_cPlayer::DonePlay));
    dispatchWaitingMessages();
    EXPECT_FALSE(truthOf(&_cPlayer::DonePlay));
    ASSERT_TRUE(playsOut());
    EXPECT_TRUE(truthOf(&_cPlayer::DonePlay));
}

// All of the sound is queued, and the source at its end.
TEST_F(PlayerMembers, while_the_last_buffers_play_the_control_still_plays) {
    const std::wstring file = tone(shortSound);
    ASSERT_EQ(0, start(file));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayPause));
    dispatchWaitingMessages();
    EXPECT_TRUE(truthOf(&_cPlayer::IsPlaying));
    EXPECT_TRUE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_FALSE(truthOf(&_cPlayer::DonePlay));
    EXPECT_NE(0, of<long>(&_cPlayer::get_AudioDataOut));
    EXPECT_EQ(-201, start(file));
    EXPECT_EQ(0, seek(0));
    EXPECT_EQ(44100, of<long>(&_cPlayer::get_Info_Samplerate));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayUnPause));
    EXPECT_FALSE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_TRUE(playsOut());
}

TEST_F(PlayerMembers, a_start_while_paused_is_refused_and_leaves_the_pause) {
    const std::wstring file = tone(40 * 8000);
    ASSERT_EQ(0, start(file));
    dispatchWaitingMessages();
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayPause));
    EXPECT_EQ(-201, start(file));
    EXPECT_EQ(-201, start(L"none.wav")) << "before the file is looked for";
    EXPECT_TRUE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_TRUE(truthOf(&_cPlayer::IsPlaying));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayStop));
    EXPECT_TRUE(playsOut());
}

TEST_F(PlayerMembers, after_the_end_the_device_is_closed_and_the_control_says_so) {
    const std::wstring file = tone(shortSound);
    ASSERT_EQ(0, start(file));
    ASSERT_TRUE(playsOut());
    dispatchWaitingMessages();
    EXPECT_EQ(MMSYSERR_INVALHANDLE, static_cast<MMRESULT>(of<long>(&_cPlayer::PlayPause)));
    EXPECT_EQ(MMSYSERR_INVALHANDLE, static_cast<MMRESULT>(of<long>(&_cPlayer::PlayUnPause)));
    EXPECT_FALSE(truthOf(&_cPlayer::IsPausedOut));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayStop));
    EXPECT_EQ(0, seek(0));
    EXPECT_EQ(0, seek(1000)) << "out of range is not reported";
    EXPECT_FALSE(truthOf(&_cPlayer::IsPlaying));
    EXPECT_TRUE(truthOf(&_cPlayer::DonePlay));
    EXPECT_NE(0, of<long>(&_cPlayer::get_AudioDataOut)) << "the last block stays";
    EXPECT_EQ(0, start(file));
    EXPECT_TRUE(playsOut());
}

} // namespace
