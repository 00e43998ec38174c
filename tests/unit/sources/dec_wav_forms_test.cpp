// The WAV source: lengths that streaming writers leave, the 64-bit forms, and names of every kind.

#include "WavFixture.h"

namespace corvina::test {
namespace {

// 16-bit stereo with the declared length of data.
Bytes declaring(std::uint32_t length, const Bytes& data) {
    return WavBytes().format(pcm(44100, 2, 16)).chunk("data", data, length).bytes();
}

template <typename Number>
void append(Bytes& bytes, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

// A file of the form RF64 or BW64, whose lengths stand in a chunk of their own.
Bytes longForm(const char* form, const Bytes& data, std::uint64_t length) {
    Bytes lengths;
    append(lengths, std::uint64_t{0});
    append(lengths, length);
    append(lengths, std::uint64_t{0});
    append(lengths, std::uint32_t{0});
    Bytes file = WavBytes()
                     .chunk("ds64", lengths)
                     .format(pcm(44100, 2, 16))
                     .chunk("data", data, 0xFFFFFFFFu)
                     .bytes("WAVE", 0xFFFFFFFFu);
    std::copy_n(form, 4, file.begin());
    return file;
}

Bytes everything(DecWAV& source) {
    Bytes all;
    Bytes buffer(1000);
    std::int32_t got = 0;
    std::int32_t result = 0;
    while (result == 0) {
        result = source.Read(buffer.data(), 1000, got);
        all.insert(all.end(), buffer.begin(), buffer.begin() + std::max(got, 0));
    }
    return all;
}

TEST_F(DecWAVTest, a_length_that_no_file_reaches_means_to_the_end_of_the_file) {
    for (const std::uint32_t length :
         {0x7FFFF000u, 0x7FFFFFDBu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFDBu, 0xFFFFFFFFu}) {
        ASSERT_EQ(open(declaring(length, noise(176400))), 0) << length;
        EXPECT_EQ(wav_.Duration(), 1000);
        EXPECT_FALSE(wav_.EndOfStream());
        EXPECT_EQ(everything(wav_), noise(176400));
        EXPECT_TRUE(wav_.EndOfStream());
        EXPECT_EQ(seek(50, 0), 0);
        EXPECT_EQ(wav_.Position(), 500);
    }
}

TEST_F(DecWAVTest, a_length_of_0_is_empty) {
    ASSERT_EQ(open(declaring(0, noise(1000))), 0);
    EXPECT_TRUE(wav_.EndOfStream());
    std::int32_t got = 7;
    EXPECT_EQ(read(100, got), 5);
    EXPECT_EQ(got, 0);
}

TEST_F(DecWAVTest, a_length_that_a_cut_file_once_had_stays_its_length) {
    ASSERT_EQ(open(declaring(1764000, noise(176400))), 0);
    EXPECT_EQ(wav_.Duration(), 10000);
}

TEST_F(DecWAVTest, rf64_and_bw64_files_play) {
    for (const char* form : {"RF64", "BW64"}) {
        ASSERT_EQ(open(longForm(form, noise(176400), 176400)), 0) << form;
        EXPECT_EQ(wav_.Duration(), 1000);
        EXPECT_EQ(wav_.WFXPointer()->nChannels, 2);
        EXPECT_EQ(everything(wav_), noise(176400));
    }
}

TEST_F(DecWAVTest, rf64_lengths_that_no_file_reaches_mean_to_the_end) {
    for (const std::uint64_t length :
         {0xFFFFFFFFFFFFFFFFull, 0x7FFFFFFFFFFFFFFFull, 0x100000000ull, 0x80000000ull}) {
        ASSERT_EQ(open(longForm("RF64", noise(176400), length)), 0);
        EXPECT_EQ(wav_.Duration(), 1000);
    }
}

TEST_F(DecWAVTest, rf64_files_beyond_2_gb_end_where_positions_do) {
    const Bytes head = longForm("RF64", {}, 0x90000000u);
    const std::wstring path = folder_.write(L"large.wav", head);
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER size{};
    size.QuadPart = 0x90001000;
    ASSERT_TRUE(::SetFilePointerEx(file, size, nullptr, FILE_BEGIN) && ::SetEndOfFile(file));
    ::CloseHandle(file);
    ASSERT_EQ(wav_.OpenSource(path), 0);
    const std::int32_t seconds = wav_.Duration() / 1000;
    ASSERT_EQ(seek(seconds, 1), 0);
    std::int32_t got = 0;
    std::int32_t result = 0;
    std::int32_t all = 0;
    for (int reads = 0; result == 0 && reads < 10; ++reads) {
        result = read(100'000, got);
        all += got;
    }
    EXPECT_EQ(result, 5);
    EXPECT_EQ(all, 0x7FFFFFFF - static_cast<std::int32_t>(head.size()) - seconds * 176400);
    EXPECT_TRUE(wav_.EndOfStream());
}

TEST_F(DecWAVTest, a_riff_file_that_the_system_refuses_is_not_read_in_another_way) {
    fileFaults.arm("mmioDescend", 1);
    EXPECT_EQ(open(plainWav(pcm(44100, 2, 16), noise(100))), 1);
}

TEST_F(DecWAVTest, rf64_files_cut_anywhere_return_1_or_play) {
    const Bytes whole = longForm("RF64", noise(100), 100);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        if (open(cut) == 0) {
            EXPECT_LE(everything(wav_).size(), 100u);
        }
    }
    wav_.CloseSource();
    EXPECT_EQ(openFiles, 0);
}

TEST_F(DecWAVTest, a_name_that_the_code_page_lacks_plays) {
    const std::wstring path =
        folder_.write(L"\x4E00\x0416.wav", plainWav(pcm(44100, 2, 16), noise(4000)));
    ASSERT_EQ(wav_.OpenSource(path), 0);
    EXPECT_EQ(everything(wav_), noise(4000));
}

TEST_F(DecWAVTest, the_name_of_a_device_is_no_file) {
    for (const wchar_t* name : {L"AUX.wav", L"C:\\music\\nul.wav", L"com1.wav"})
        EXPECT_EQ(wav_.OpenSource(name), 1);
}

} // namespace
} // namespace corvina::test
