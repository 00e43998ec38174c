// The formats in words of files with compressed sound, by headers alone.

#include "sources/FormatOfFile.h"

#include "support/TagBytes.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class FormatOfCompressed : public testing::Test {
protected:
    std::wstring of(const Bytes& bytes) { return formatOfFile(folder_.write(L"a file", bytes)); }
    TempFolder folder_;
};

// The stream information of FLAC, with that width.
Bytes flacInformation(std::uint32_t bits) {
    return joined({Bytes(10, 0xEE),
                   bigNumber((std::uint64_t{44100} << 44) | (std::uint64_t{1} << 41) |
                                 (std::uint64_t{bits - 1} << 36) | 1000,
                             8),
                   Bytes(16)});
}

TEST_F(FormatOfCompressed, flac_has_its_width_in_its_stream_information) {
    for (const std::uint32_t bits : {8u, 16u, 20u, 24u, 32u}) {
        const std::wstring words = L", " + std::to_wstring(bits) + L" bits";
        EXPECT_EQ(of(joined({bytesOf("fLaC"), Bytes{0, 0, 0, 34}, flacInformation(bits)})),
                  L"FLAC" + words);
        EXPECT_EQ(
            of(oggPage(0, joined({Bytes{0x7F}, bytesOf("FLAC"), Bytes{1, 0, 0, 1}, bytesOf("fLaC"),
                                  Bytes{0, 0, 0, 34}, flacInformation(bits)}))),
            L"Ogg FLAC" + words);
    }
}

TEST_F(FormatOfCompressed, ogg_names_its_first_packet) {
    EXPECT_EQ(of(oggPage(0, bytesOf("\x01vorbis 1234567890"))), L"Ogg Vorbis");
    EXPECT_EQ(of(oggPage(0, bytesOf("OpusHead1234567890"))), L"Ogg Opus");
    EXPECT_EQ(of(oggPage(0, bytesOf("Speex   1234567890"))), L"Ogg Speex");
    EXPECT_EQ(of(oggPage(0, bytesOf("something else"))), L"Ogg");
}

TEST_F(FormatOfCompressed, ape_up_to_version_3979_has_its_width_in_its_flags) {
    const auto old = [](std::uint32_t version, std::uint32_t flags) {
        return joined({bytesOf("MAC "), littleNumber(version, 2), littleNumber(2000, 2),
                       littleNumber(flags, 2), Bytes(2, 0xFF), Bytes(40, 0xFF)});
    };
    for (const std::uint32_t version : {3800u, 3970u, 3979u}) {
        EXPECT_EQ(of(old(version, 0)), L"Monkey's Audio, 16 bits");
        EXPECT_EQ(of(old(version, 1)), L"Monkey's Audio, 8 bits");
        EXPECT_EQ(of(old(version, 8)), L"Monkey's Audio, 24 bits");
        EXPECT_EQ(of(old(version, 0xFFF6)), L"Monkey's Audio, 16 bits");
        EXPECT_EQ(of(old(version, 2 + 8 + 32)), L"Monkey's Audio, 24 bits");
    }
}

TEST_F(FormatOfCompressed, ape_from_version_3980_on_has_its_width_behind_its_descriptor) {
    for (const std::uint32_t version : {3980u, 3981u, 3990u})
        for (const std::uint32_t descriptor : {52u, 60u})
            EXPECT_EQ(of(joined({bytesOf("MAC "), littleNumber(version), littleNumber(descriptor),
                                 Bytes(descriptor - 12), Bytes(16, 0xEE), littleNumber(24, 2),
                                 littleNumber(2, 2), littleNumber(44100)})),
                      L"Monkey's Audio, 24 bits");
}

// A track whose description begins with that name.
Bytes track(std::string_view codec, std::uint32_t bits, const Bytes& behind = {}) {
    const Bytes entry =
        mp4Box(codec, joined({Bytes(16), bigNumber(2, 2), bigNumber(bits, 2),
                              Bytes{0x77, 0x77, 0, 0}, bigNumber(44100u << 16), behind}));
    const Bytes table = mp4Box("stsd", joined({Bytes(4), bigNumber(1), entry}));
    return mp4Box("trak", mp4Box("mdia", mp4Box("minf", mp4Box("stbl", table))));
}

Bytes mp4Of(std::initializer_list<Bytes> tracks) {
    return joined({mp4Box("ftyp", bytesOf("M4A \0\0\0\0")), mp4Box("moov", joined(tracks)),
                   mp4Box("mdat", Bytes(64))});
}

TEST_F(FormatOfCompressed, mp4_names_the_codec_of_its_first_track_of_sound) {
    EXPECT_EQ(of(mp4Of({track("fLaC", 24)})), L"FLAC, 24 bits");
    EXPECT_EQ(of(mp4Of({track("alac", 16)})), L"Apple Lossless, 16 bits");
    EXPECT_EQ(of(mp4Of({track("Opus", 16)})), L"Opus");
    EXPECT_EQ(of(mp4Of({track(".mp3", 16)})), L"MP4, MP3");
    EXPECT_EQ(of(mp4Of({track("avc1", 16)})), L"MP4");
    EXPECT_EQ(of(mp4Of({track("avc1", 16), track("Opus", 16), track("fLaC", 16)})), L"Opus");
    EXPECT_EQ(of(mp4Of({})), L"MP4");
}

// The descriptors of an "mp4a" track; long lengths take four bytes.
Bytes descriptors(std::uint32_t identifier, std::uint8_t object, bool longLengths) {
    const auto length = [longLengths](std::uint8_t bytes) {
        return longLengths ? Bytes{0x80, 0x80, 0x80, bytes} : Bytes{bytes};
    };
    return mp4Box("esds", joined({Bytes(4), Bytes{3}, length(25), bigNumber(identifier, 2),
                                  Bytes{0}, Bytes{4}, length(17), Bytes{object, 0x15}, Bytes(11)}));
}

TEST_F(FormatOfCompressed, an_mp4a_track_is_what_its_decoder_configuration_says) {
    const std::pair<std::uint8_t, const wchar_t*> objects[] = {
        {0x40, L"AAC"},      {0x66, L"AAC"},      {0x67, L"AAC"}, {0x68, L"AAC"},
        {0x69, L"MP4, MP3"}, {0x6B, L"MP4, MP3"}, {0x6C, L"MP4"}};
    for (const auto& [object, words] : objects)
        for (const bool longLengths : {false, true})
            // What else has such a value is not looked at.
            for (const std::uint32_t identifier : {0u, 0x4040u})
                EXPECT_EQ(
                    of(mp4Of({track("mp4a", 16, descriptors(identifier, object, longLengths))})),
                    words)
                    << int{object};
    EXPECT_EQ(of(mp4Of({track("mp4a", 16)})), L"MP4");
    EXPECT_EQ(of(mp4Of({track("mp4a", 16, mp4Box("esds", Bytes{0, 0, 0, 0, 4}))})), L"MP4");
}

Bytes object(std::uint32_t size) {
    return joined({Bytes(16, 0x77), littleNumber(size, 8), Bytes(size - 24)});
}
Bytes streamProperties(bool sound, std::uint32_t tag) {
    const Bytes properties{0x91, 0x07, 0xDC, 0xB7, 0xB7, 0xA9, 0xCF, 0x11,
                           0x8E, 0xE6, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
    Bytes kind{0x40, 0x9E, 0x69, 0xF8, 0x4D, 0x5B, 0xCF, 0x11,
               0xA8, 0xFD, 0x00, 0x80, 0x5F, 0x5C, 0x44, 0x2B};
    if (!sound)
        kind[0] = 0xC0;
    return joined(
        {properties, littleNumber(96, 8), kind, Bytes(38), littleNumber(tag, 2), Bytes(16, 0xFF)});
}
Bytes windowsMedia(const Bytes& objects) {
    return joined({Bytes{0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11, 0xA6, 0xD9, 0x00, 0xAA,
                         0x00, 0x62, 0xCE, 0x6C},
                   Bytes(14), objects});
}

TEST_F(FormatOfCompressed, windows_media_names_the_codec_of_its_first_stream_of_sound) {
    const std::pair<std::uint32_t, const wchar_t*> codecs[] = {
        {0x000A, L"Windows Media Voice"},
        {0x0055, L"Windows Media, MP3"},
        {0x0160, L"Windows Media Audio"},
        {0x0161, L"Windows Media Audio"},
        {0x0162, L"Windows Media Audio Professional"},
        {0x0163, L"Windows Media Audio Lossless"}};
    for (const auto& [tag, words] : codecs)
        EXPECT_EQ(
            of(windowsMedia(joined({object(24), object(50), streamProperties(false, 0x55),
                                    streamProperties(true, tag), streamProperties(true, 0x55)}))),
            words);
    EXPECT_EQ(of(windowsMedia(streamProperties(false, 0x161))), L"Windows Media");
    EXPECT_EQ(of(windowsMedia({})), L"Windows Media");
}

// A stream of voice behind that many empty objects.
Bytes windowsMediaBehind(int objects) {
    Bytes empty;
    for (int count = 0; count < objects; ++count)
        for (const std::uint8_t byte : object(24))
            empty.push_back(byte);
    return windowsMedia(joined({empty, streamProperties(true, 0x0A)}));
}

TEST_F(FormatOfCompressed, the_thousandth_object_of_windows_media_is_looked_at) {
    EXPECT_EQ(of(windowsMediaBehind(999)), L"Windows Media Voice");
}

TEST_F(FormatOfCompressed, no_object_of_windows_media_behind_a_thousand_is_looked_at) {
    EXPECT_EQ(of(windowsMediaBehind(1000)), L"Windows Media");
}

struct Header {
    Bytes bytes;
    const wchar_t* words;
};

TEST_F(FormatOfCompressed, mpeg_audio_is_known_by_a_header_in_which_nothing_is_impossible) {
    const Header headers[] = {
        {{0xFF, 0xFB, 0x90, 0xC4}, L"MP3"}, // MPEG-1
        {{0xFF, 0xF3, 0x90, 0xC4}, L"MP3"}, // MPEG-2
        {{0xFF, 0xE3, 0x90, 0xC4}, L"MP3"}, // MPEG-2.5
        {{0xFF, 0xEB, 0x90, 0xC4}, L""},    // no version
        {{0xFF, 0xFD, 0x90, 0xC4}, L"MP2"}, {{0xFF, 0xFF, 0x90, 0xC4}, L"MP1"},
        {{0xFF, 0xFB, 0xE8, 0xC4}, L"MP3"}, // the last bit rate and the last sample rate
        {{0xFF, 0xFB, 0xF0, 0xC4}, L""},    // no bit rate
        {{0xFF, 0xFB, 0x9C, 0xC4}, L""},    // no sample rate
        {{0xFF, 0xFB, 0x8C, 0xC4}, L""},    {{0xFF, 0xFB, 0x98, 0xC4}, L"MP3"},
        {{0xFF, 0xDB, 0x90, 0xC4}, L""}, // 10 bits of mark
        {{0xFE, 0xFB, 0x90, 0xC4}, L""}};
    for (const auto& [bytes, words] : headers)
        EXPECT_EQ(of(joined({bytes, Bytes(50)})), words) << testing::PrintToString(bytes);
}

TEST_F(FormatOfCompressed, aac_has_twelve_bits_of_mark_and_one_of_thirteen_sample_rates) {
    const Header headers[] = {
        {{0xFF, 0xF1, 0x50, 0x80}, L"AAC"}, {{0xFF, 0xF9, 0x40, 0x80}, L"AAC"},
        {{0xFF, 0xF1, 0x70, 0x80}, L"AAC"}, // the last rate
        {{0xFF, 0xF1, 0xB0, 0x80}, L"AAC"}, {{0xFF, 0xF1, 0x74, 0x80}, L""},
        {{0xFF, 0xF1, 0x7C, 0x80}, L""},    {{0xFF, 0xE1, 0x50, 0x80}, L""}};
    for (const auto& [bytes, words] : headers)
        EXPECT_EQ(of(joined({bytes, Bytes(50)})), words) << testing::PrintToString(bytes);
}

TEST_F(FormatOfCompressed, mpeg_audio_is_searched_for_behind_a_tag_only) {
    const Bytes layer2{0xFF, 0xFD, 0x90, 0xC4};
    const Bytes tag = id3Tag(Bytes(20));
    for (const std::size_t between : {0u, 1u, 100u, 4092u})
        EXPECT_EQ(of(joined({tag, Bytes(between), layer2})), L"MP2") << between;
    EXPECT_EQ(of(joined({tag, Bytes(100), Bytes{0xFF, 0xFF, 0xFD, 0x90}})), L"MP3")
        << "a header that the file ends in is none, so only the tag speaks";
    EXPECT_EQ(of(joined({tag, Bytes(4093), layer2})), L"MP3") << "out of sight";
    EXPECT_EQ(of(joined({Bytes(1), layer2})), L"");
    EXPECT_EQ(of(joined({layer2, Bytes(100)})), L"MP2");
}

TEST_F(FormatOfCompressed, a_tag_may_have_a_footer_and_up_to_sixteen_may_follow_each_other) {
    const Bytes flac = joined({bytesOf("fLaC"), Bytes{0, 0, 0, 34}, flacInformation(24)});
    Bytes tag = id3Tag(Bytes(300, 0xEE));
    EXPECT_EQ(of(joined({tag, flac})), L"FLAC, 24 bits");
    tag[5] = 0x10;
    const Bytes footer = joined({bytesOf("3DI"), Bytes(7)});
    EXPECT_EQ(of(joined({tag, footer, flac})), L"FLAC, 24 bits");
    tag[5] = 0xEF;
    EXPECT_EQ(of(joined({tag, flac})), L"FLAC, 24 bits");
    for (const int count : {16, 17}) {
        Bytes tags;
        for (int index = 0; index < count; ++index)
            tags = joined({tags, id3Tag(Bytes(5))});
        EXPECT_EQ(of(joined({tags, flac})), count == 16 ? L"FLAC, 24 bits" : L"MP3");
    }
}

} // namespace
} // namespace corvina::test
