// The formats in words of files with samples, by headers alone.

#include "sources/FormatOfFile.h"

#include "support/TagBytes.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace corvina::test {
namespace {

class FormatOfSamples : public testing::Test {
protected:
    std::wstring of(const Bytes& bytes) { return formatOfFile(folder_.write(L"a file", bytes)); }
    TempFolder folder_;
};

Bytes extensible(WORD bits, std::uint32_t subFormat) {
    WAVEFORMATEX record = pcm(44100, 2, bits);
    record.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    record.cbSize = 22;
    const Bytes extra = joined({littleNumber(bits, 2), littleNumber(3), littleNumber(subFormat),
                                Bytes{0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71}});
    return WavBytes().format(record, 18, extra).chunk("data", Bytes(8)).bytes();
}

Bytes waveOf(WORD tag, WORD bits) {
    WAVEFORMATEX record = pcm(44100, 2, bits);
    record.wFormatTag = tag;
    return plainWav(record, Bytes(8));
}

TEST_F(FormatOfSamples, a_width_is_named_from_1_to_64_bits) {
    EXPECT_EQ(withBits(L"A", 0), L"A");
    EXPECT_EQ(withBits(L"A", 1), L"A, 1 bits");
    EXPECT_EQ(withBits(L"A", 64), L"A, 64 bits");
    EXPECT_EQ(withBits(L"A", 65), L"A");
}

TEST_F(FormatOfSamples, wave_names_its_codec_by_the_tag_of_the_record) {
    const std::pair<WORD, const wchar_t*> codecs[] = {
        {WAVE_FORMAT_PCM, L"WAV, 32 bits"},
        {WAVE_FORMAT_IEEE_FLOAT, L"WAV, 32 bits floating point"},
        {WAVE_FORMAT_ADPCM, L"WAV, MS-ADPCM"},
        {WAVE_FORMAT_IMA_ADPCM, L"WAV, IMA-ADPCM"},
        {WAVE_FORMAT_ALAW, L"WAV, A-law"},
        {WAVE_FORMAT_MULAW, L"WAV, mu-law"},
        {WAVE_FORMAT_GSM610, L"WAV, GSM 6.10"},
        {WAVE_FORMAT_MPEG, L"WAV, MP2"},
        {WAVE_FORMAT_MPEGLAYER3, L"WAV, MP3"},
        {0x7777, L"WAV"}};
    for (const auto& [tag, words] : codecs)
        EXPECT_EQ(of(waveOf(tag, 32)), words) << tag;
    EXPECT_EQ(of(waveOf(WAVE_FORMAT_IEEE_FLOAT, 0)), L"WAV, floating point");
}

TEST_F(FormatOfSamples, an_extensible_record_is_what_the_first_two_bytes_of_its_identifier_say) {
    EXPECT_EQ(of(extensible(24, WAVE_FORMAT_PCM)), L"WAV, 24 bits");
    EXPECT_EQ(of(extensible(32, WAVE_FORMAT_IEEE_FLOAT)), L"WAV, 32 bits floating point");
    EXPECT_EQ(of(extensible(24, 0x770000 | WAVE_FORMAT_PCM)), L"WAV, 24 bits");
}

TEST_F(FormatOfSamples, the_long_forms_of_wave_are_named_and_no_other_form_is) {
    Bytes file = plainWav(pcm(44100, 2, 16), Bytes(8));
    for (const auto& [form, words] :
         {std::pair{"RIFF", L"WAV, 16 bits"}, std::pair{"RF64", L"RF64, 16 bits"},
          std::pair{"BW64", L"BW64, 16 bits"}, std::pair{"XXXX", L""}, std::pair{"RIFX", L""}}) {
        std::copy_n(form, 4, file.begin());
        EXPECT_EQ(of(file), words) << form;
    }
}

TEST_F(FormatOfSamples, wave64_has_its_record_in_the_first_chunk) {
    const auto file = [](std::string_view chunk, WORD bits) {
        const WAVEFORMATEX record = pcm(44100, 2, bits);
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&record);
        return joined({bytesOf("riff\x2E\x91\xCF\x11"), Bytes(32), bytesOf(chunk), Bytes(20),
                       Bytes(bytes, bytes + 16), Bytes(100)});
    };
    EXPECT_EQ(of(file("fmt ", 16)), L"Wave64, 16 bits");
    EXPECT_EQ(of(file("fmt ", 24)), L"Wave64, 24 bits");
    EXPECT_EQ(of(file("junk", 24)), L"Wave64");
}

Bytes chunkOf(std::string_view id, const Bytes& content) {
    return joined({bytesOf(id), bigNumber(content.size()), content, Bytes(content.size() % 2)});
}

// The common chunk behind that many empty ones.
Bytes aiff(std::string_view kind, WORD bits, std::string_view codec = "", int before = 0) {
    const Bytes common = joined({bigNumber(2, 2), bigNumber(100), bigNumber(bits, 2), Bytes(10),
                                 bytesOf(codec), Bytes(codec.empty() ? 0 : 2)});
    Bytes file = joined({bytesOf("FORM"), Bytes(4), bytesOf(kind)});
    for (int chunk = 0; chunk < before; ++chunk)
        for (const std::uint8_t byte : chunkOf("JUNK", {}))
            file.push_back(byte);
    return joined({file, chunkOf("COMM", common)});
}

TEST_F(FormatOfSamples, aiff_names_its_width_or_its_codec) {
    EXPECT_EQ(of(aiff("AIFF", 8)), L"AIFF, 8 bits");
    EXPECT_EQ(of(aiff("AIFF", 24)), L"AIFF, 24 bits");
    const std::pair<const char*, const wchar_t*> codecs[] = {
        {"NONE", L"AIFF-C, 16 bits"},
        {"sowt", L"AIFF-C, 16 bits"},
        {"ulaw", L"AIFF-C, mu-law"},
        {"ULAW", L"AIFF-C, mu-law"},
        {"alaw", L"AIFF-C, A-law"},
        {"ALAW", L"AIFF-C, A-law"},
        {"ima4", L"AIFF-C, IMA-ADPCM"},
        {"GSM ", L"AIFF-C, GSM 6.10"},
        {"fl32", L"AIFF-C, 32 bits floating point"},
        {"FL32", L"AIFF-C, 32 bits floating point"},
        {"fl64", L"AIFF-C, 64 bits floating point"},
        {"FL64", L"AIFF-C, 64 bits floating point"}};
    for (const auto& [codec, words] : codecs)
        EXPECT_EQ(of(aiff("AIFC", 16, codec)), words) << codec;
}

TEST_F(FormatOfSamples, aiff_steps_over_other_chunks_also_of_odd_length) {
    const Bytes form = joined({bytesOf("FORM"), Bytes(4), bytesOf("AIFF")});
    const Bytes plain = aiff("AIFF", 16);
    const Bytes common(plain.begin() + 12, plain.end());
    for (const std::size_t size : {0u, 1u, 2u, 7u, 5000u})
        EXPECT_EQ(of(joined({form, chunkOf("NAME", Bytes(size)), common})), L"AIFF, 16 bits")
            << size;
}

TEST_F(FormatOfSamples, the_thousandth_chunk_of_aiff_is_looked_at) {
    EXPECT_EQ(of(aiff("AIFF", 16, "", 999)), L"AIFF, 16 bits");
}

TEST_F(FormatOfSamples, no_chunk_of_aiff_behind_a_thousand_is_looked_at) {
    EXPECT_EQ(of(aiff("AIFF", 16, "", 1000)), L"AIFF");
}

TEST_F(FormatOfSamples, au_names_its_encoding_in_either_byte_order) {
    const std::pair<std::uint32_t, const wchar_t*> encodings[] = {
        {0, L"AU"},
        {1, L"AU, mu-law"},
        {2, L"AU, 8 bits"},
        {3, L"AU, 16 bits"},
        {4, L"AU, 24 bits"},
        {5, L"AU, 32 bits"},
        {6, L"AU, 32 bits floating point"},
        {7, L"AU, 64 bits floating point"},
        {8, L"AU"},
        {23, L"AU, G.72x ADPCM"},
        {25, L"AU, G.72x ADPCM"},
        {26, L"AU, G.72x ADPCM"},
        {27, L"AU, A-law"}};
    // The rate behind the encoding is not part of it.
    for (const auto& [encoding, words] : encodings) {
        EXPECT_EQ(of(joined({bytesOf(".snd"), Bytes(8), bigNumber(encoding), bigNumber(44100)})),
                  words)
            << encoding;
        EXPECT_EQ(
            of(joined({bytesOf("dns."), Bytes(8), littleNumber(encoding), littleNumber(44100)})),
            words)
            << encoding;
    }
}

Bytes voc(const Bytes& block) {
    return joined({bytesOf("Creative Voice File\x1A"), littleNumber(26, 2), Bytes(4), block});
}

TEST_F(FormatOfSamples, voc_names_the_codec_of_its_first_block_of_either_kind) {
    const std::pair<std::uint8_t, const wchar_t*> codecs[] = {
        {0, L"VOC, 8 bits"},  {1, L"VOC, ADPCM"}, {3, L"VOC, ADPCM"},
        {4, L"VOC, 16 bits"}, {6, L"VOC, A-law"}, {7, L"VOC, mu-law"}};
    for (const auto& [codec, words] : codecs) {
        EXPECT_EQ(of(voc(joined({Bytes{1, 100, 0, 0, 0xA6, codec}, Bytes(20, 9)}))), words);
        // With reserved bytes that are not 0.
        EXPECT_EQ(
            of(voc(joined({Bytes{9, 100, 0, 0, 0x44, 0xAC, 0, 0, 16, 1, codec, 0}, Bytes(20, 9)}))),
            words);
    }
    EXPECT_EQ(of(voc(Bytes{9, 100, 0, 0, 0x44, 0xAC, 0, 0, 16, 1, 0, 2})), L"VOC, ADPCM");
    for (const std::uint8_t other : Bytes{0, 2, 3, 8, 10})
        EXPECT_EQ(of(voc(joined({Bytes{other}, Bytes(20)}))), L"VOC") << int{other};
}

Bytes caf(std::string_view codec, std::uint32_t flags, std::uint32_t bits) {
    return joined({bytesOf("caff"), Bytes(4), bytesOf("desc"), Bytes(16), bytesOf(codec),
                   bigNumber(flags), bigNumber(4), bigNumber(1), bigNumber(2), bigNumber(bits),
                   Bytes(8, 1)});
}

TEST_F(FormatOfSamples, caf_names_its_width_or_its_codec) {
    EXPECT_EQ(of(caf("lpcm", 0, 16)), L"CAF, 16 bits");
    EXPECT_EQ(of(caf("lpcm", 2, 24)), L"CAF, 24 bits");
    EXPECT_EQ(of(caf("lpcm", 1, 32)), L"CAF, 32 bits floating point");
    EXPECT_EQ(of(caf("lpcm", 3, 64)), L"CAF, 64 bits floating point");
    const std::pair<const char*, const wchar_t*> codecs[] = {
        {"ulaw", L"CAF, mu-law"},         {"alaw", L"CAF, A-law"},  {"ima4", L"CAF, IMA-ADPCM"},
        {"alac", L"CAF, Apple Lossless"}, {"aac ", L"CAF, AAC"},    {".mp3", L"CAF, MP3"},
        {"agsm", L"CAF, GSM 6.10"},       {"xxxx", L"CAF, 16 bits"}};
    for (const auto& [codec, words] : codecs)
        EXPECT_EQ(of(caf(codec, 1, 16)), words) << codec;
    Bytes other = caf("lpcm", 0, 16);
    other[8] = 'x';
    EXPECT_EQ(of(other), L"CAF");
}

} // namespace
} // namespace corvina::test
