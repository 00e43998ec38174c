// A file of Media Foundation that is read on a thread of its own, over a stand-in.

#include "StandInMovies.h"
#include "sources/BoundedMediaReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mferror.h>

namespace corvina::test {
namespace {

using testing::ElementsAre;

using Opened = BoundedMediaReader::Opened;

class BoundedMovie : public testing::Test {
protected:
    void SetUp() override {
        movie = {};
        ASSERT_TRUE(library->start());
        reader = std::make_unique<BoundedMediaReader>(library, 10'000);
    }

    // How often the system's reader was called until so many blocks were read.
    std::size_t callsForBlocks(int count) {
        movie.calls = 0;
        BoundedMediaReader::Block block;
        for (int index = 0; index < count; ++index)
            EXPECT_TRUE(reader->read(block)) << index;
        return movie.calls;
    }

    std::shared_ptr<MediaFoundationLibrary> library =
        std::make_shared<MediaFoundationLibrary>(standInMovies);
    std::unique_ptr<BoundedMediaReader> reader;
};

TEST_F(BoundedMovie, has_the_format_and_the_duration_of_the_file) {
    movie.channels = 6;
    movie.setDuration(12'345'678);
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    EXPECT_EQ(reader->format().rate, 44100u);
    EXPECT_EQ(reader->format().channels, 6u);
    EXPECT_EQ(reader->duration(), 12'345'678);
}

TEST_F(BoundedMovie, that_cannot_be_opened_is_told_from_one_without_sound) {
    movie.failing = "MFCreateSourceReaderFromByteStream";
    EXPECT_EQ(reader->open(L"a.m4a"), Opened::unreadable);
    reader = std::make_unique<BoundedMediaReader>(library, 10'000);
    movie.failing = "SelectSound";
    EXPECT_EQ(reader->open(L"a.m4a"), Opened::withoutSound);
}

TEST_F(BoundedMovie, is_read_ahead_a_little_at_first_and_then_twice_as_much_each_time) {
    movie.reads = {samplesRead(1024)};
    movie.repeatsLast = true;
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    EXPECT_EQ(movie.calls, 1u);
    EXPECT_EQ(callsForBlocks(1), 0u);
    for (const int blocks : {4, 8, 16, 32, 32}) {
        EXPECT_EQ(callsForBlocks(1), static_cast<std::size_t>(blocks));
        EXPECT_EQ(callsForBlocks(blocks - 1), 0u);
    }
    ASSERT_TRUE(reader->seek(0));
    EXPECT_EQ(callsForBlocks(1), 4u) << "a place that was sought is heard as soon as the first";
}

TEST_F(BoundedMovie, delivers_every_block_in_order_up_to_the_end) {
    for (std::int16_t index = 0; index < 30; ++index)
        movie.reads.push_back(samplesRead(1000, index, index));
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    BoundedMediaReader::Block block;
    for (std::int16_t index = 0; index < 30; ++index) {
        ASSERT_TRUE(reader->read(block)) << index;
        EXPECT_EQ(block.time, index);
        EXPECT_EQ(block.samples[0], index);
    }
    EXPECT_FALSE(reader->read(block));
    const std::size_t calls = movie.calls;
    EXPECT_FALSE(reader->read(block));
    EXPECT_EQ(movie.calls, calls) << "the end is the end";
}

TEST_F(BoundedMovie, goes_on_behind_its_end_once_it_is_moved) {
    movie.reads = {samplesRead(10, 0, 1)};
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    BoundedMediaReader::Block block;
    ASSERT_TRUE(reader->read(block));
    ASSERT_FALSE(reader->read(block));
    movie.failing = "SetCurrentPosition";
    EXPECT_FALSE(reader->seek(0));
    EXPECT_FALSE(reader->read(block));
    movie.failing = "";
    EXPECT_TRUE(reader->seek(0));
    ASSERT_TRUE(reader->read(block));
    EXPECT_EQ(block.samples[0], 1);
}

TEST_F(BoundedMovie, forgets_what_was_read_ahead_where_it_is_moved) {
    for (std::int16_t index = 0; index < 5; ++index)
        movie.reads.push_back(samplesRead(100, index * 100, index));
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    BoundedMediaReader::Block block;
    ASSERT_TRUE(reader->read(block));
    ASSERT_TRUE(reader->read(block));
    ASSERT_TRUE(reader->seek(400));
    ASSERT_TRUE(reader->read(block));
    EXPECT_EQ(block.samples[0], 4);
    EXPECT_THAT(movie.seeks, ElementsAre(400));
}

TEST_F(BoundedMovie, is_open_once_its_first_block_is_there_however_short_it_is) {
    movie.channels = 1;
    movie.reads = {samplesRead(1), samplesRead(1)};
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    EXPECT_EQ(movie.calls, 1u);
}

TEST_F(BoundedMovie, whose_reader_does_not_come_back_is_at_its_end) {
    const HANDLE gate = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    movie.reads = {samplesRead(10), samplesRead(10)};
    movie.reads[1].before = [gate] { ::WaitForSingleObject(gate, 10'000); };
    reader = std::make_unique<BoundedMediaReader>(library, 300);
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    BoundedMediaReader::Block block;
    ASSERT_TRUE(reader->read(block));
    EXPECT_FALSE(reader->read(block));
    EXPECT_FALSE(reader->seek(0));
    EXPECT_FALSE(reader->read(block));
    EXPECT_EQ(movie.readers, 1);
    ::SetEvent(gate);
    for (int waits = 0; movie.readers > 0 && waits < 500; ++waits)
        ::Sleep(10);
    EXPECT_EQ(movie.readers, 0) << "it is let go of once it comes back";
    ::CloseHandle(gate);
}

// Its end may take long too, and then the thread is left behind with it.
TEST_F(BoundedMovie, is_let_go_of_on_the_thread_that_read_it) {
    movie.reads = {samplesRead(10)};
    DWORD readBy = 0;
    movie.reads[0].before = [&] { readBy = ::GetCurrentThreadId(); };
    ASSERT_EQ(reader->open(L"a.m4a"), Opened::yes);
    reader.reset();
    EXPECT_EQ(movie.readers, 0);
    EXPECT_NE(readBy, ::GetCurrentThreadId());
    EXPECT_EQ(movie.letGoBy, readBy);
}

} // namespace
} // namespace corvina::test
