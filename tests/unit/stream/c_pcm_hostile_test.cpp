// Lying sources, lying codecs and failing calls, with every block of memory guarded.

#include "stream/cPCM.h"

#include "platform/MemoryProbe.h"
#include "runtime/RuntimeError.h"
#include "support/FakeAcm.h"
#include "support/MemorySource.h"
#include "support/SampleObserver.h"

#include <gtest/gtest.h>
#include <numeric>

namespace corvina {
namespace {

using namespace test;

class HostileConverter : public testing::Test {
protected:
    void SetUp() override { fakeAcm.reset(); }
    void TearDown() override { EXPECT_EQ(fakeAcm.openStreams, 0); }

    // Starts, pulls to the end (there must be one), seeks back, pulls again and closes.
    void useAll(MemorySource& source, std::int32_t block = 800) {
        cPCM converter(fakeAcmApi);
        if (!converter.InitConversion(source, &observer_, false))
            return;
        pullToTheEnd(converter, block);
        source.position = 0;
        converter.ResetACM();
        pullToTheEnd(converter, block);
        converter.CloseConverter();
        EXPECT_EQ(fakeAcm.openStreams, 0);
    }

    void pullToTheEnd(cPCM& converter, std::int32_t block) {
        Bytes buffer(static_cast<std::size_t>(block));
        std::int32_t got = block;
        heard_ = 0;
        for (int pulls = 0; got == block; ++pulls) {
            ASSERT_LT(pulls, 10'000) << "the stream has no end";
            ASSERT_TRUE(converter.GetSamples(buffer.data(), block, got));
            ASSERT_GE(got, 0);
            ASSERT_LE(got, block);
            heard_ += got;
        }
        EXPECT_TRUE(converter.EndOfStream());
    }

    // With a codec that reads so many bytes, of a source buffer that has this length.
    void useWithReadsUpTo(MemorySource& source, DWORD (*end)(DWORD length)) {
        int sum = 0;
        fakeAcm.conversion = [&sum, end](ACMSTREAMHEADER& header) -> MMRESULT {
            sum = std::accumulate(header.pbSrc, header.pbSrc + end(header.cbSrcLength), sum);
            header.cbSrcLengthUsed = header.cbSrcLength;
            header.cbDstLengthUsed = header.cbDstLength;
            return 0;
        };
        useAll(source);
        EXPECT_NE(sum, 0);
    }

    SampleObserver observer_;
    std::int64_t heard_ = 0;
};

TEST_F(HostileConverter, a_source_that_delivers_nothing_for_ever_ends_the_stream) {
    MemorySource source(pcm(8000, 1, 16), {});
    source.respond = [](void*, std::int32_t, std::int32_t& got) {
        got = 0;
        return SourceResult::done;
    };
    useAll(source);
    EXPECT_LT(source.asked.size(), 1000u);
}

TEST_F(HostileConverter, a_source_that_pauses_for_a_few_reads_goes_on) {
    MemorySource source(pcm(8000, 1, 16), {});
    int reads = 0;
    source.respond = [&](void*, std::int32_t, std::int32_t& got) {
        got = ++reads % 20 == 0 ? 100 : 0;
        return reads < 400 ? SourceResult::done : SourceResult::endOfData;
    };
    cPCM converter(fakeAcmApi);
    ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
    pullToTheEnd(converter, 800);
    EXPECT_EQ(heard_, 2000);
}

TEST_F(HostileConverter, counts_that_no_read_can_have_are_not_believed) {
    for (const std::int32_t count : {-1, -2147483647 - 1, 2147483647, 8001}) {
        MemorySource source(pcm(8000, 1, 16), {});
        int reads = 0;
        source.respond = [&](void*, std::int32_t asked, std::int32_t& got) {
            EXPECT_LE(asked, 8000);
            EXPECT_GE(asked, 0);
            got = count;
            return ++reads < 5 ? SourceResult::done : SourceResult::endOfData;
        };
        useAll(source);
    }
}

TEST_F(HostileConverter, a_source_may_use_all_that_it_was_asked_for_and_no_more) {
    MemorySource source(pcm(8000, 1, 16), {});
    int reads = 0;
    source.respond = [&](void* to, std::int32_t asked, std::int32_t& got) {
        const auto bytes = static_cast<std::size_t>(asked);
        std::memset(to, 1, bytes);
        EXPECT_FALSE(isWritable(static_cast<std::uint8_t*>(to) + bytes, 1));
        got = asked;
        return ++reads < 5 ? SourceResult::done : SourceResult::endOfData;
    };
    useAll(source);
}

TEST_F(HostileConverter, a_codec_that_claims_other_counts_than_it_had_is_not_believed) {
    const DWORD claims[] = {0, 1, 7999, 8000, 8001, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (const DWORD used : claims)
        for (const DWORD produced : claims) {
            fakeAcm.reset();
            fakeAcm.conversion = [=](ACMSTREAMHEADER& header) -> MMRESULT {
                header.cbSrcLengthUsed = used;
                header.cbDstLengthUsed = produced;
                return 0;
            };
            // If nothing is used up the source cannot come to its end by itself.
            MemorySource source(pcm(8000, 1, 16), {});
            source.respond = [reads = 0](void*, std::int32_t asked, std::int32_t& got) mutable {
                got = asked;
                return ++reads < 20 ? SourceResult::done : SourceResult::endOfData;
            };
            useAll(source);
        }
}

TEST_F(HostileConverter, a_codec_that_uses_nothing_never_asks_for_less_than_no_bytes) {
    fakeAcm.conversion = [](ACMSTREAMHEADER& header) -> MMRESULT {
        header.cbSrcLengthUsed = header.cbDstLengthUsed = 0;
        return 0;
    };
    MemorySource source(pcm(8000, 1, 16), noise(200'000));
    useAll(source);
    for (const std::int32_t asked : source.asked)
        EXPECT_GE(asked, 0);
}

TEST_F(HostileConverter, a_codec_may_read_a_whole_sample_for_each_block_that_is_too_small_for_one) {
    MemorySource source(pcm(8000, 3, 24), noise(100'000));
    source.format.nBlockAlign = 2;
    useWithReadsUpTo(source, [](DWORD length) { return length / 2 * 9; });
}

TEST_F(HostileConverter,
       a_codec_may_read_a_whole_block_of_compressed_sound_where_it_has_only_begun) {
    MemorySource source(pcm(8000, 1, 8), noise(100'000));
    source.format.wFormatTag = WAVE_FORMAT_ADPCM;
    useWithReadsUpTo(source, [](DWORD length) { return length + 65'535 + 14; });
}

TEST_F(HostileConverter, blocks_that_are_far_too_small_are_refused) {
    MemorySource source(pcm(8000, 1, 16), {});
    source.format.nChannels = 16'000;
    source.format.nBlockAlign = 1;
    cPCM converter(fakeAcmApi);
    EXPECT_FALSE(converter.InitConversion(source, nullptr, false));
}

TEST_F(HostileConverter, a_codec_may_fill_the_output_buffer_to_its_last_byte) {
    for (DWORD bytesPerSecond = 11020; bytesPerSecond < 11032; ++bytesPerSecond) {
        fakeAcm.conversion = [](ACMSTREAMHEADER& header) -> MMRESULT {
            std::memset(header.pbDst, 1, header.cbDstLength);
            header.cbSrcLengthUsed = header.cbSrcLength;
            header.cbDstLengthUsed = header.cbDstLength;
            return 0;
        };
        MemorySource source(pcm(bytesPerSecond, 1, 8), noise(20'000));
        useAll(source);
    }
}

TEST_F(HostileConverter, source_sizes_of_no_bytes_and_near_2_to_the_31_are_survived) {
    for (const DWORD size : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        fakeAcm.sourceSize = [size](DWORD) { return size; };
        MemorySource source(pcm(8000, 1, 16), noise(200));
        useAll(source);
    }
}

TEST_F(HostileConverter, a_source_size_that_grows_at_a_reset_is_survived) {
    int calls = 0;
    fakeAcm.sourceSize = [&calls](DWORD bytes) { return ++calls == 1 ? bytes : 0x7FFFFFFFu; };
    MemorySource source(pcm(8000, 1, 16), noise(20'000));
    useAll(source);
    EXPECT_EQ(heard_, 20'000);
}

TEST_F(HostileConverter, rates_of_any_size_are_survived) {
    for (const DWORD rate : {0u, 1u, 2u, 3u, 0x3FFFFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        MemorySource source(pcm(8000, 1, 8), noise(200));
        source.format.nSamplesPerSec = rate;
        useAll(source);
    }
}

TEST_F(HostileConverter, a_half_second_beyond_64_megabytes_is_refused) {
    MemorySource source(pcm(8000, 1, 8), noise(200));
    source.format.nSamplesPerSec = 128 * 1024 * 1024 + 2;
    cPCM converter(fakeAcmApi);
    EXPECT_FALSE(converter.InitConversion(source, nullptr, false));
}

TEST_F(HostileConverter, no_channels_are_survived) {
    MemorySource source(pcm(8000, 1, 8), noise(200));
    source.format.nChannels = 0;
    useAll(source);
}

TEST_F(HostileConverter, a_destination_that_cannot_be_written_is_counted_as_if_it_had_been) {
    auto* const freed = static_cast<std::uint8_t*>(
        ::VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ::VirtualFree(freed, 0, MEM_RELEASE);
    for (void* const bad : {static_cast<void*>(nullptr), reinterpret_cast<void*>(1),
                            reinterpret_cast<void*>(std::uintptr_t{0xFFFFFFF0u}),
                            static_cast<void*>(freed), reinterpret_cast<void*>(&::GetTickCount)}) {
        MemorySource source(pcm(8000, 1, 16), noise(20'000));
        cPCM converter(fakeAcmApi);
        ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
        std::int32_t got = 0;
        EXPECT_TRUE(converter.GetSamples(bad, 10'000, got));
        EXPECT_EQ(got, 10'000);
        Bytes rest(20'000);
        EXPECT_TRUE(converter.GetSamples(rest.data(), 20'000, got));
        EXPECT_EQ(got, 10'000);
    }
}

TEST_F(HostileConverter, a_block_of_2_gigabytes_ends_with_the_source) {
    MemorySource source(pcm(8000, 1, 16), noise(20'000));
    cPCM converter(fakeAcmApi);
    ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
    Bytes buffer(20'000);
    std::int32_t got = 0;
    EXPECT_TRUE(converter.GetSamples(buffer.data(), 2147483647, got));
    EXPECT_EQ(got, 20'000);
    EXPECT_EQ(buffer, noise(20'000));
}

TEST_F(HostileConverter, a_run_time_error_of_the_source_passes_through_and_the_next_block_comes) {
    MemorySource source(pcm(8000, 1, 16), {});
    int reads = 0;
    source.respond = [&](void* to, std::int32_t asked, std::int32_t& got) -> std::int32_t {
        if (++reads == 2)
            throwOverflow();
        std::memset(to, reads, static_cast<std::size_t>(asked));
        got = asked;
        return SourceResult::done;
    };
    cPCM converter(fakeAcmApi);
    ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
    Bytes buffer(8000);
    std::int32_t got = 0;
    EXPECT_TRUE(converter.GetSamples(buffer.data(), 8000, got));
    EXPECT_THROW(converter.GetSamples(buffer.data(), 8000, got), RuntimeError);
    EXPECT_TRUE(converter.GetSamples(buffer.data(), 8000, got));
    EXPECT_EQ(buffer, Bytes(8000, 3));
}

TEST_F(HostileConverter, any_failure_of_a_codec_ends_leaves_nothing_open_and_the_next_use_works) {
    MemorySource source(pcm(8000, 1, 16), noise(30'000));
    forEachFaultAndPair(fakeAcm.faults, [&] {
        source.position = 0;
        useAll(source);
        EXPECT_EQ(fakeAcm.openStreams, 0);
    });
    source.position = 0;
    fakeAcm.reset();
    useAll(source);
    EXPECT_EQ(heard_, 30'000);
}

TEST_F(HostileConverter, a_codec_that_fails_for_ever_ends_the_stream_early) {
    fakeAcm.faults.arm("acmStreamConvert", 1, Faults::Lasting::forever);
    MemorySource source(pcm(8000, 1, 16), noise(8000 * 100));
    cPCM converter(fakeAcmApi);
    ASSERT_TRUE(converter.InitConversion(source, nullptr, false));
    pullToTheEnd(converter, 800);
    EXPECT_EQ(heard_, 0);
    EXPECT_EQ(fakeAcm.conversions.size(), 64u);
}

} // namespace
} // namespace corvina
