#include "stream/WaveChunks.h"
#include "support/WavBytes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace corvina::test {
namespace {

constexpr std::int32_t lastPosition = 0x7FFFFFFF;
constexpr std::uint32_t unknown = 0xFFFFFFFF;

// One file in memory: what it holds at its beginning, and a second part far behind.
struct FakeFile {
    Bytes head;
    std::int64_t tailPosition = 0;
    Bytes tail = {};
    std::int64_t position = 0;
};
FakeFile file;

DWORD WINAPI moveTo(HANDLE, LONG distance, PLONG, DWORD) {
    file.position = distance;
    return static_cast<DWORD>(distance);
}

BOOL WINAPI readOn(HANDLE, LPVOID to, DWORD bytes, LPDWORD got, LPOVERLAPPED) {
    const bool inTail = !file.tail.empty() && file.position >= file.tailPosition;
    const Bytes& part = inTail ? file.tail : file.head;
    const auto at = static_cast<std::size_t>(file.position - (inTail ? file.tailPosition : 0));
    const std::size_t count = at < part.size() ? std::min<std::size_t>(bytes, part.size() - at) : 0;
    std::copy_n(part.begin() + static_cast<std::ptrdiff_t>(std::min(at, part.size())), count,
                static_cast<std::uint8_t*>(to));
    *got = static_cast<DWORD>(count);
    return TRUE;
}

BOOL WINAPI leaveOpen(HANDLE) {
    return TRUE;
}

const FileApi api{.closeHandle = &leaveOpen, .readFile = &readOn, .setFilePointer = &moveTo};

std::optional<WaveChunks> chunksOf(FakeFile content) {
    file = std::move(content);
    FileRecord record;
    record.handle = FileHandle(api, reinterpret_cast<HANDLE>(&file));
    return readWaveChunks(FileAccess(api), record);
}

std::optional<WaveChunks> chunksOf(const Bytes& bytes) {
    return chunksOf(FakeFile{.head = bytes});
}

Bytes named(std::string_view id, Bytes bytes) {
    std::copy(id.begin(), id.end(), bytes.begin());
    return bytes;
}

// The chunk that holds the lengths of the forms RF64 and BW64.
Bytes longLengths(std::uint64_t data) {
    Bytes bytes(28);
    for (std::size_t index = 0; index < 8; ++index)
        bytes[8 + index] = static_cast<std::uint8_t>(data >> (8 * index));
    return bytes;
}

Bytes longForm(std::uint64_t lengthOfData, std::uint32_t inTheChunk = unknown) {
    return named("RF64", WavBytes()
                             .chunk("ds64", longLengths(lengthOfData))
                             .format(pcm(8000, 1, 8))
                             .chunk("data", noise(10), inTheChunk)
                             .bytes("WAVE", unknown));
}
constexpr std::int32_t dataOfLongForm = 12 + 8 + 28 + 8 + 16 + 8;

Bytes emptyChunks(int count, WavBytes first = {}) {
    for (int made = 0; made < count; ++made)
        first.chunk("junk", {});
    return first.format(pcm(8000, 1, 8)).chunk("data", noise(10)).bytes();
}

TEST(WaveChunks, are_the_format_and_the_samples) {
    const auto chunks = chunksOf(plainWav(pcm(44100, 2, 16), noise(1000)));
    ASSERT_TRUE(chunks);
    EXPECT_FALSE(chunks->is64);
    EXPECT_FALSE(chunks->isOpenEnded);
    EXPECT_EQ(chunks->format.offset, 20);
    EXPECT_EQ(chunks->format.size, 16);
    EXPECT_EQ(chunks->data.offset, 44);
    EXPECT_EQ(chunks->data.size, 1000);
}

TEST(WaveChunks, may_stand_behind_others_and_in_any_order) {
    const auto chunks = chunksOf(WavBytes()
                                     .chunk("LIST", noise(33))
                                     .chunk("data", noise(11))
                                     .chunk("fact", noise(4))
                                     .format(pcm(8000, 1, 8))
                                     .bytes());
    ASSERT_TRUE(chunks);
    EXPECT_EQ(chunks->data.offset, 12 + 8 + 34 + 8);
    EXPECT_EQ(chunks->data.size, 11);
    EXPECT_EQ(chunks->format.offset, chunks->data.offset + 12 + 8 + 4 + 8);
}

TEST(WaveChunks, are_both_needed) {
    EXPECT_FALSE(chunksOf(WavBytes().format(pcm(8000, 1, 8)).bytes()));
    EXPECT_FALSE(chunksOf(WavBytes().chunk("data", noise(10)).bytes()));
    EXPECT_FALSE(chunksOf(WavBytes().bytes()));
}

TEST(WaveChunks, are_those_of_a_wave_file_alone) {
    const WavBytes body = WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(10));
    EXPECT_FALSE(chunksOf(body.bytes("AVI ")));
    EXPECT_FALSE(chunksOf(named("RIFX", body.bytes())));
    EXPECT_FALSE(chunksOf(Bytes{}));
    const Bytes whole = body.bytes();
    EXPECT_FALSE(chunksOf(Bytes(whole.begin(), whole.begin() + 11)));
}

TEST(WaveChunks, of_a_file_whose_length_no_file_reaches_have_an_open_end) {
    const WavBytes body = WavBytes().format(pcm(8000, 1, 8)).chunk("data", noise(10));
    EXPECT_FALSE(chunksOf(body.bytes("WAVE", leastUnknownLength - 1))->isOpenEnded);
    EXPECT_TRUE(chunksOf(body.bytes("WAVE", leastUnknownLength))->isOpenEnded);
    EXPECT_TRUE(chunksOf(body.bytes("WAVE", unknown))->isOpenEnded);
}

TEST(WaveChunks, of_the_64_bit_forms_have_the_length_that_their_own_chunk_says) {
    for (const char* form : {"RF64", "BW64"}) {
        const auto chunks = chunksOf(named(form, longForm(123456)));
        ASSERT_TRUE(chunks) << form;
        EXPECT_TRUE(chunks->is64);
        EXPECT_TRUE(chunks->isOpenEnded);
        EXPECT_EQ(chunks->data.offset, dataOfLongForm);
        EXPECT_EQ(chunks->data.size, 123456);
    }
}

TEST(WaveChunks, of_the_64_bit_forms_keep_a_length_that_fits_its_field) {
    EXPECT_EQ(chunksOf(longForm(123456, 10))->data.size, 10);
    EXPECT_EQ(chunksOf(longForm(123456, unknown - 1))->data.size, lastPosition - dataOfLongForm);
}

TEST(WaveChunks, of_the_64_bit_forms_end_where_positions_of_32_bits_do) {
    constexpr std::int32_t most = lastPosition - dataOfLongForm;
    EXPECT_EQ(chunksOf(longForm(std::uint64_t{most}))->data.size, most);
    for (const std::uint64_t length : {std::uint64_t{most} + 1, 0x100000005ull, ~0ull})
        EXPECT_EQ(chunksOf(longForm(length))->data.size, most) << length;
}

TEST(WaveChunks, of_the_common_form_have_the_length_of_their_field_whatever_it_is) {
    const auto chunks = chunksOf(named("RIFF", longForm(123456)));
    ASSERT_TRUE(chunks);
    EXPECT_FALSE(chunks->is64);
    EXPECT_EQ(chunks->data.size, -1);
}

TEST(WaveChunks, are_found_among_65536) {
    EXPECT_TRUE(chunksOf(emptyChunks(65534)));
    EXPECT_FALSE(chunksOf(emptyChunks(65535)));
}

TEST(WaveChunks, may_lie_at_the_last_positions_of_32_bits_and_not_beyond) {
    const Bytes plain = plainWav(pcm(8000, 1, 8), noise(10));
    const Bytes chunks(plain.begin() + 12, plain.end());
    for (const std::uint32_t size : {0x7FFFFFB0u, 0x7FFFFFFEu, 0x7FFFFFFFu, 0x80000000u, unknown}) {
        const auto found = chunksOf({.head = WavBytes().chunk("junk", {}, size).bytes(),
                                     .tailPosition = 20 + std::int64_t{size},
                                     .tail = chunks});
        EXPECT_EQ(size == 0x7FFFFFB0u, found.has_value()) << size;
        if (found) {
            EXPECT_EQ(found->format.offset, 20 + 0x7FFFFFB0 + 8);
        }
    }
}

} // namespace
} // namespace corvina::test
