// DecCDA: track files on real paths, discs as tables.

#include "runtime/RuntimeError.h"
#include "sources/DecCDA.h"
#include "support/FakeBackend.h"
#include "support/Limits.h"
#include "support/TrackFile.h"

#include <fstream>
#include <gmock/gmock.h>

namespace corvina {
namespace {

using test::FakeBackends;
using test::FakeDisc;
using test::highest;
using test::lowest;
using test::trackFile;
using testing::ElementsAre;

int filesOpened = 0;
int filesClosed = 0;

HANDLE WINAPI countingCreateFile(LPCSTR name, DWORD access, DWORD share,
                                 LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                                 HANDLE like) {
    ++filesOpened;
    EXPECT_EQ(access, GENERIC_READ);
    EXPECT_EQ(share, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(disposition, static_cast<DWORD>(OPEN_EXISTING));
    return ::CreateFileA(name, access, share, security, disposition, flags, like);
}

BOOL WINAPI countingCloseHandle(HANDLE handle) {
    ++filesClosed;
    return ::CloseHandle(handle);
}

const FileApi& countingFiles() {
    static const FileApi table = [] {
        FileApi result;
        result.createFile = &countingCreateFile;
        result.closeHandle = &countingCloseHandle;
        return result;
    }();
    return table;
}

class TrackSource : public testing::Test {
protected:
    void SetUp() override {
        filesOpened = filesClosed = 0;
        // Tracks of 60, 240 and 180 seconds.
        fakes.machine.drives = {{{{1, 0}, {2, 4500}, {3, 22500}, {170, 36000}}}};
    }
    void TearDown() override { ::DeleteFileW(path); }

    std::int32_t open(const test::Bytes& file) {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()),
                   static_cast<std::streamsize>(file.size()));
        return source().OpenSource(path);
    }
    DecCDA& source() {
        if (!source_)
            source_ = std::make_unique<DecCDA>(countingFiles(), fakes.makers());
        return *source_;
    }

    static constexpr const wchar_t* path = L"Track01.cda";
    FakeBackends fakes;

private:
    std::unique_ptr<DecCDA> source_;
};

const test::Bytes track1 = trackFile({0, 2, 0}, {1, 0, 0});
const test::Bytes track2 = trackFile({1, 2, 0}, {4, 0, 0});

TEST_F(TrackSource, a_valid_file_opens_its_track) {
    EXPECT_EQ(open(track2), 0);
    EXPECT_EQ(source().Duration(), 240000);
    EXPECT_EQ(source().Position(), 0);
}

TEST_F(TrackSource, two_seconds_match_a_track_at_sector_0) {
    EXPECT_EQ(open(track1), 0);
    EXPECT_EQ(source().Duration(), 60000);
}

TEST_F(TrackSource, the_last_track_ends_at_the_lead_out) {
    EXPECT_EQ(open(trackFile({5, 2, 0}, {3, 0, 0})), 0);
    EXPECT_EQ(source().Duration(), 180000);
}

TEST_F(TrackSource, the_file_is_closed_again) {
    open(track1);
    EXPECT_EQ(filesOpened, 1);
    EXPECT_EQ(filesClosed, 1);
}

TEST_F(TrackSource, without_a_backend_returns_4_and_opens_no_file) {
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    EXPECT_EQ(open(track1), 4);
    EXPECT_EQ(filesOpened, 0);
}

TEST_F(TrackSource, without_a_backend_a_deeper_path_returns_4_too) {
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    EXPECT_EQ(source().OpenSource(L"C:\\music\\Track01.cda"), 4);
}

TEST_F(TrackSource, a_deeper_path_returns_1_without_opening_the_file) {
    for (const wchar_t* deep :
         {L"C:\\music\\Track01.cda", L"D:\\\\Track01.cda", L"\\\\.\\D:", L"\\\\", L"a\\b\\c"})
        EXPECT_EQ(source().OpenSource(deep), 1) << deep;
    EXPECT_EQ(filesOpened, 0);
}

TEST_F(TrackSource, one_backslash_is_taken_wherever_it_leads) {
    open(track1);
    EXPECT_EQ(source().OpenSource(L".\\Track01.cda"), 0);
}

TEST_F(TrackSource, slashes_are_not_counted) {
    open(track1);
    EXPECT_EQ(source().OpenSource(L"./././Track01.cda"), 0);
}

TEST_F(TrackSource, a_missing_file_returns_1) {
    EXPECT_EQ(source().OpenSource(L"none.cda"), 1);
    EXPECT_EQ(source().OpenSource(L""), 1);
    EXPECT_EQ(source().OpenSource(L"D:\\none.cda"), 1);
}

TEST_F(TrackSource, a_name_that_no_file_can_have_returns_1) {
    EXPECT_EQ(source().OpenSource(std::wstring(L"Track01.cda\0.cda", 16)), 1);
    EXPECT_EQ(source().OpenSource(std::wstring(40000, L'x')), 1);
}

TEST_F(TrackSource, fewer_than_44_bytes_return_1) {
    EXPECT_EQ(open({}), 1);
    EXPECT_EQ(open(test::Bytes(track1.begin(), track1.end() - 1)), 1);
    EXPECT_EQ(filesClosed, filesOpened);
}

TEST_F(TrackSource, more_than_44_bytes_are_not_looked_at) {
    auto longer = track1;
    longer.push_back('x');
    EXPECT_EQ(open(longer), 0);
}

TEST_F(TrackSource, a_file_of_another_form_returns_1) {
    for (const std::size_t offset : {0u, 3u, 8u, 11u, 12u, 15u}) {
        auto other = track1;
        other[offset] = 'x';
        EXPECT_EQ(open(other), 1) << offset;
    }
    auto wave = track1;
    std::copy_n("WAVE", 4, wave.begin() + 8);
    EXPECT_EQ(open(wave), 1);
}

TEST_F(TrackSource, only_the_two_times_of_the_file_count) {
    auto odd = track2;
    for (const std::size_t offset : {4u, 16u, 20u, 22u, 24u, 28u, 32u, 39u, 43u})
        odd[offset] = 0xFF;
    EXPECT_EQ(open(odd), 0);
    EXPECT_EQ(source().Duration(), 240000);
}

TEST_F(TrackSource, each_single_bit_of_form_or_time_matters_and_no_other) {
    const auto within = [](std::size_t offset, std::size_t begin, std::size_t end) {
        return offset >= begin && offset < end;
    };
    for (std::size_t bit = 0; bit < track2.size() * 8; ++bit) {
        const std::size_t offset = bit / 8;
        auto flipped = track2;
        flipped[offset] = static_cast<std::uint8_t>(flipped[offset] ^ (1u << bit % 8));
        const bool form = within(offset, 0, 4) || within(offset, 8, 16);
        const bool time = within(offset, 36, 39) || within(offset, 40, 43);
        EXPECT_EQ(open(flipped), form ? 1 : time ? 4 : 0) << bit;
    }
    EXPECT_EQ(filesClosed, filesOpened);
}

TEST_F(TrackSource, without_the_disc_returns_4) {
    fakes.machine.tableReadable = [] { return false; };
    EXPECT_EQ(open(track1), 4);
}

TEST_F(TrackSource, a_start_without_its_length_returns_4) {
    EXPECT_EQ(open(trackFile({0, 2, 0}, {1, 0, 1})), 4);
    EXPECT_EQ(open(trackFile({0, 2, 1}, {1, 0, 0})), 4);
}

TEST_F(TrackSource, a_start_from_minute_90_on_lies_before_the_program_area) {
    fakes.machine.drives[0].entries = {{1, -45150}, {170, -45150 + 4500}};
    EXPECT_EQ(open(trackFile({90, 0, 0}, {1, 0, 0})), 0);
    EXPECT_EQ(source().Duration(), 60000);
}

// As a plain count of sectors it would be this track's length.
TEST_F(TrackSource, a_length_from_minute_90_on_is_negative_and_matches_no_track) {
    fakes.machine.drives[0].entries = {{1, 0}, {170, 405000}};
    EXPECT_EQ(open(trackFile({0, 2, 0}, {90, 0, 0})), 4);
}

TEST_F(TrackSource, a_start_with_another_length_is_passed_over_for_a_later_track) {
    fakes.machine.drives[0].entries = {{1, 0}, {2, 4500}, {3, 0}, {170, 9000}};
    EXPECT_EQ(open(trackFile({0, 2, 0}, {2, 0, 0})), 0);
    EXPECT_EQ(source().Duration(), 120000);
}

TEST_F(TrackSource, a_start_with_another_length_is_passed_over_for_a_later_drive) {
    fakes.machine.drives.insert(fakes.machine.drives.begin(), FakeDisc{{{1, 0}, {170, 4501}}});
    EXPECT_EQ(open(track1), 0);
    EXPECT_THAT(fakes.machine.selections, ElementsAre(0, 1));
}

TEST_F(TrackSource, of_two_drives_with_the_same_disc_the_first_plays) {
    fakes.machine.drives.push_back(fakes.machine.drives[0]);
    EXPECT_EQ(open(track1), 0);
    EXPECT_THAT(fakes.machine.selections, ElementsAre(0));
}

TEST_F(TrackSource, a_drive_that_cannot_be_selected_is_passed_over) {
    fakes.machine.drives.push_back(fakes.machine.drives[0]);
    fakes.machine.selectable = [](std::int32_t index) { return index == 1; };
    EXPECT_EQ(open(track1), 0);
    EXPECT_THAT(fakes.machine.selections, ElementsAre(0, 1));
}

TEST_F(TrackSource, a_drive_without_a_table_is_passed_over) {
    fakes.machine.drives.push_back(fakes.machine.drives[0]);
    fakes.machine.tableReadable = [&] { return fakes.machine.selections.back() == 1; };
    EXPECT_EQ(open(track1), 0);
    EXPECT_THAT(fakes.machine.selections, ElementsAre(0, 1));
}

TEST_F(TrackSource, an_empty_drive_is_passed_over) {
    fakes.machine.drives = {{}, {{{170, 0}}}};
    EXPECT_EQ(open(track1), 4);
}

TEST_F(TrackSource, the_lead_out_is_no_track) {
    fakes.machine.drives[0].entries = {{1, 100}, {170, 0}};
    EXPECT_EQ(open(track1), 4);
}

TEST_F(TrackSource, a_disc_without_lead_out_has_no_last_track) {
    fakes.machine.drives[0].entries = {{1, 0}, {2, 4500}, {0, 0}};
    EXPECT_EQ(open(track1), 0);
    EXPECT_EQ(open(track2), 4);
}

TEST_F(TrackSource, a_disc_with_descending_addresses_has_no_track_of_such_a_length) {
    fakes.machine.drives[0].entries = {{1, 4500}, {2, 0}, {170, -150}};
    EXPECT_EQ(open(track1), 4);
    EXPECT_EQ(open(track2), 4);
}

TEST_F(TrackSource, a_disc_with_impossible_addresses_matches_nothing) {
    fakes.machine.drives[0].entries = {{1, lowest}, {2, highest}, {3, lowest}, {170, highest}};
    EXPECT_EQ(open(track1), 4);
    fakes.machine.drives[0].entries = {{1, 0}, {2, lowest}, {3, 0}, {170, highest}};
    EXPECT_EQ(open(track1), 4);
}

TEST_F(TrackSource, a_track_that_has_gone_when_it_is_selected_is_passed_over) {
    fakes.machine.tableReadable = [&] { return fakes.machine.tablesRead == 1; };
    EXPECT_EQ(open(track1), 4);
}

TEST_F(TrackSource, a_data_track_opens_like_any_other) {
    fakes.machine.drives[0].entries[0].control = 4;
    EXPECT_EQ(open(track1), 0);
}

TEST_F(TrackSource, a_failed_open_keeps_the_track_before) {
    ASSERT_EQ(open(track2), 0);
    EXPECT_EQ(open(trackFile({9, 0, 0}, {1, 0, 0})), 4);
    EXPECT_EQ(source().Duration(), 240000);
}

TEST_F(TrackSource, reads_what_the_drive_holds) {
    ASSERT_EQ(open(track2), 0);
    std::int32_t word = 0;
    std::int32_t got = 0;
    EXPECT_EQ(source().Read(&word, 4, got), 0);
    EXPECT_EQ(word, 4500);
    EXPECT_EQ(source().Position(), 53);
    EXPECT_FALSE(source().EndOfStream());
}

TEST_F(TrackSource, seeks_like_the_manager) {
    ASSERT_EQ(open(track2), 0);
    std::int32_t mode = SeekMode::seconds;
    EXPECT_EQ(source().SeekTo(30, mode), 0);
    EXPECT_EQ(source().Position(), 30000);
    EXPECT_EQ(source().SeekTo(241, mode), 3);
}

TEST_F(TrackSource, describes_itself) {
    EXPECT_EQ(&source().Info(), static_cast<cSoundInf*>(&source()));
    EXPECT_THAT(source().Extensions(), ElementsAre(L"cda"));
    EXPECT_TRUE(source().Seekable());
    EXPECT_TRUE(source().Force16Bit());
    EXPECT_EQ(source().SampleRate(), 44100);
    EXPECT_EQ(source().Channels(), 2);
    EXPECT_EQ(source().BitsPerSample(), 16);
    EXPECT_EQ(source().Bitrate(), 1411200);
    EXPECT_EQ(source().WFXPointer()->nBlockAlign, 4);
    EXPECT_EQ(source().CloseSource(), 0);
}

TEST_F(TrackSource, has_one_empty_collection_of_tags) {
    ASSERT_NE(source().Tags(), nullptr);
    EXPECT_EQ(source().Tags()->TagCount(), 0);
    EXPECT_EQ(source().Tags(), source().Tags());
}

TEST_F(TrackSource, offers_the_drives_to_the_host) {
    EXPECT_EQ(source().DeviceCount(), 1);
    EXPECT_EQ(source().DeviceName(0), L"drive 0");
    EXPECT_EQ(source().DeviceChar(0), L"D");
    EXPECT_TRUE(source().SelectDevice(0));
    EXPECT_FALSE(source().SelectDevice(1));
    EXPECT_TRUE(source().DiscPresent());
    EXPECT_TRUE(source().OpenCD());
    EXPECT_TRUE(source().CloseCD());
    EXPECT_EQ(source().toc()->TrackCount(), 4);
}

TEST_F(TrackSource, without_a_backend_the_drives_are_none) {
    fakes.spti = fakes.ioctl = fakes.aspi = 4;
    EXPECT_EQ(source().DeviceCount(), 0);
    EXPECT_EQ(source().DeviceName(0), L"");
    EXPECT_FALSE(source().SelectDevice(0));
    EXPECT_FALSE(source().DiscPresent());
    EXPECT_THROW(static_cast<void>(source().toc()), RuntimeError);
}

} // namespace
} // namespace corvina
