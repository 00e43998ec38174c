// What the registered player's members return for files of each kind and for any number.

#include "PlayerMembersFixture.h"

#include <utility>

using namespace corvina;
using namespace corvina::test;

namespace {

TEST_F(PlayerMembers, before_anything_has_played_there_is_nothing_to_see_or_to_end) {
    EXPECT_EQ(0, of<long>(&_cPlayer::get_AudioDataOut));
    EXPECT_EQ(0, of<long>(&_cPlayer::PositionGet));
    EXPECT_EQ(0, of<long>(&_cPlayer::PlayStop));
    EXPECT_EQ(0, of<long>(&_cPlayer::DeInit));
    EXPECT_EQ(0, of<long>(&_cPlayer::DeInit));
}

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

} // namespace
