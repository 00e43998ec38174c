#include "cd/CdAddress.h"
#include "cd/DriveTable.h"
#include "cd/cTOC.h"
#include "runtime/RuntimeError.h"
#include "support/Limits.h"

#include <gtest/gtest.h>

namespace corvina {
namespace {

using test::highest;
using test::lowest;

cTOCTrack trackWithByte1(int adrAndControl) {
    cTOCTrack track;
    track.SetDescriptor({0, static_cast<std::uint8_t>(adrAndControl), 1, 0, 0, 0, 0, 0});
    return track;
}

TrackDescriptor descriptor(std::uint8_t number, std::uint8_t lowByteOfStart) {
    return {0, 0x10, number, 0, 0, 0, 0, lowByteOfStart};
}

// A drive's reply with tracks 1 to last, MSF addresses 00:02:00, 00:03:00 and so on.
CDROM_TOC recordOf(int last) {
    CDROM_TOC record{};
    record.FirstTrack = 1;
    record.LastTrack = static_cast<UCHAR>(last);
    for (int i = 0; i <= last && i < MAXIMUM_NUMBER_TRACKS; ++i) {
        record.TrackData[i].TrackNumber = static_cast<UCHAR>(i == last ? leadOutNumber : i + 1);
        record.TrackData[i].Address[2] = static_cast<UCHAR>(i + 2);
    }
    return record;
}

TEST(CdAddress, two_seconds_are_sector_0) {
    EXPECT_EQ(msfToLba(0, 2, 0), 0);
}

TEST(CdAddress, no_time_at_all_is_sector_minus_150) {
    EXPECT_EQ(msfToLba(0, 0, 0), -150);
}

TEST(CdAddress, minute_89_is_the_last_of_the_program_area) {
    EXPECT_EQ(msfToLba(89, 59, 74), 404849);
}

TEST(CdAddress, minute_90_is_in_the_lead_in) {
    EXPECT_EQ(msfToLba(90, 0, 0), -45150);
}

TEST(CdAddress, the_last_time_of_all_is_the_sector_before_no_time) {
    EXPECT_EQ(msfToLba(99, 59, 74), -151);
}

TEST(CdAddress, the_flag_takes_minute_90_for_program_area) {
    EXPECT_EQ(msfToLba(90, 0, 0, true), 404850);
}

TEST(CdAddress, bytes_that_are_no_time_still_convert) {
    EXPECT_EQ(msfToLba(255, 255, 255), 255 * 4500 + 255 * 75 + 255 - 450150);
}

TEST(CdTrack, the_start_is_big_endian) {
    cTOCTrack track;
    track.SetDescriptor({0, 0, 1, 0, 0x00, 0x00, 0x01, 0x2C});
    EXPECT_EQ(track.StartLBA(), 300);
}

TEST(CdTrack, a_start_in_the_lead_in_is_negative) {
    cTOCTrack track;
    track.SetDescriptor({0, 0, 1, 0, 0xFF, 0xFF, 0xFF, 0x6A});
    EXPECT_EQ(track.StartLBA(), -150);
}

TEST(CdTrack, adr_and_control_share_a_byte) {
    EXPECT_EQ(trackWithByte1(0x14).ADR(), 1);
    EXPECT_EQ(trackWithByte1(0x14).CTL(), 4);
}

TEST(CdTrack, the_number_is_the_third_byte) {
    cTOCTrack track;
    track.SetDescriptor(descriptor(99, 0));
    EXPECT_EQ(track.TrackNumber(), 99);
}

TEST(CdTrack, is_data_exactly_with_bit_2_and_without_bit_3) {
    for (int control = 0; control < 16; ++control)
        EXPECT_EQ(trackWithByte1(0x10 | control).IsAudio(), !((control & 4) && !(control & 8)))
            << "control " << control;
}

TEST(CdTrack, controls_with_four_channels_count_as_audio) {
    EXPECT_TRUE(trackWithByte1(0x1C).IsAudio());
}

TEST(CdTrack, the_high_half_of_the_byte_has_no_say) {
    EXPECT_FALSE(trackWithByte1(0x04).IsAudio());
    EXPECT_FALSE(trackWithByte1(0xF4).IsAudio());
    EXPECT_TRUE(trackWithByte1(0xF0).IsAudio());
}

TEST(CdTrack, a_track_without_any_control_is_audio) {
    EXPECT_TRUE(cTOCTrack().IsAudio());
}

TEST(CdTable, is_empty_at_first) {
    const cTOC table;
    EXPECT_EQ(table.TrackCount(), 0);
    EXPECT_EQ(table.track(1), nullptr);
}

TEST(CdTable, new_entries_are_zero) {
    cTOC table;
    table.TrackCount(2);
    EXPECT_EQ(table.track(2)->TrackNumber(), 0);
    EXPECT_EQ(table.track(2)->StartLBA(), 0);
}

TEST(CdTable, files_an_entry_under_its_track_number) {
    cTOC table;
    table.TrackCount(3);
    table.StoreEntry(descriptor(2, 7));
    EXPECT_EQ(table.track(2)->StartLBA(), 7);
    EXPECT_EQ(table.track(1)->StartLBA(), 0);
}

TEST(CdTable, files_the_lead_out_last_whatever_the_count_is) {
    for (const std::int32_t count : {1, 2, 100, 256}) {
        cTOC table;
        table.TrackCount(count);
        table.StoreEntry(descriptor(170, 9));
        EXPECT_EQ(table.track(count)->TrackNumber(), 170) << count;
        EXPECT_EQ(table.track(count)->StartLBA(), 9) << count;
    }
}

TEST(CdTable, writing_the_count_discards_every_entry) {
    cTOC table;
    table.TrackCount(2);
    table.StoreEntry(descriptor(1, 7));
    table.TrackCount(2);
    EXPECT_EQ(table.track(1)->StartLBA(), 0);
}

TEST(CdTable, a_count_of_0_empties_the_table) {
    cTOC table;
    table.TrackCount(2);
    table.TrackCount(0);
    EXPECT_EQ(table.TrackCount(), 0);
    EXPECT_EQ(table.track(1), nullptr);
}

TEST(CdTable, an_index_outside_gives_nothing) {
    cTOC table;
    table.TrackCount(3);
    for (const std::int32_t index : {-1, 0, 4, highest, lowest})
        EXPECT_EQ(table.track(index), nullptr) << index;
}

TEST(CdTable, a_track_number_beyond_the_table_changes_nothing) {
    cTOC table;
    table.TrackCount(2);
    for (const std::uint8_t number : {std::uint8_t{0}, std::uint8_t{3}, std::uint8_t{255}})
        table.StoreEntry(descriptor(number, 5));
    EXPECT_EQ(table.TrackCount(), 2);
    EXPECT_EQ(table.track(1)->StartLBA(), 0);
    EXPECT_EQ(table.track(2)->StartLBA(), 0);
}

TEST(CdTable, a_lead_out_for_an_empty_table_changes_nothing) {
    cTOC table;
    table.StoreEntry(descriptor(170, 5));
    EXPECT_EQ(table.TrackCount(), 0);
}

TEST(CdTable, a_negative_count_is_refused_and_the_table_stays) {
    cTOC table;
    table.TrackCount(2);
    EXPECT_THROW(table.TrackCount(-1), RuntimeError);
    EXPECT_EQ(table.TrackCount(), 2);
}

TEST(CdTable, a_count_beyond_memory_is_refused_and_the_table_stays) {
    cTOC table;
    table.TrackCount(2);
    EXPECT_THROW(table.TrackCount(highest), std::bad_alloc);
    EXPECT_EQ(table.TrackCount(), 2);
}

TEST(DriveTable, twelve_tracks_make_thirteen_entries_with_the_lead_out_last) {
    const auto table = driveTable(recordOf(12), AddressForm::msf);
    EXPECT_EQ(table->TrackCount(), 13);
    EXPECT_EQ(table->track(13)->TrackNumber(), 170);
}

TEST(DriveTable, an_msf_address_becomes_an_lba_in_the_descriptor) {
    const auto table = driveTable(recordOf(2), AddressForm::msf);
    EXPECT_EQ(table->track(1)->StartLBA(), 0);
    EXPECT_EQ(table->track(2)->StartLBA(), 75);
}

TEST(DriveTable, a_lead_in_address_becomes_a_negative_lba) {
    CDROM_TOC record = recordOf(1);
    record.TrackData[0].Address[1] = 90;
    record.TrackData[0].Address[2] = 0;
    EXPECT_EQ(driveTable(record, AddressForm::msf)->track(1)->StartLBA(), -45150);
}

TEST(DriveTable, an_lba_stays_as_it_is) {
    CDROM_TOC record = recordOf(1);
    record.TrackData[0].Address[2] = 1;
    record.TrackData[0].Address[3] = 0x2C;
    EXPECT_EQ(driveTable(record, AddressForm::lba)->track(1)->StartLBA(), 300);
}

TEST(DriveTable, control_and_number_survive_the_conversion) {
    CDROM_TOC record = recordOf(1);
    record.TrackData[0].Adr = 1;
    record.TrackData[0].Control = 4;
    const auto table = driveTable(record, AddressForm::msf);
    EXPECT_EQ(table->track(1)->ADR(), 1);
    EXPECT_FALSE(table->track(1)->IsAudio());
    EXPECT_EQ(table->track(1)->TrackNumber(), 1);
}

TEST(DriveTable, ninety_nine_tracks_fill_the_record) {
    const auto table = driveTable(recordOf(99), AddressForm::msf);
    EXPECT_EQ(table->TrackCount(), 100);
    EXPECT_EQ(table->track(99)->TrackNumber(), 99);
    EXPECT_EQ(table->track(100)->TrackNumber(), 170);
}

TEST(DriveTable, a_last_track_beyond_the_record_reads_no_further) {
    CDROM_TOC record = recordOf(99);
    record.LastTrack = 255;
    const auto table = driveTable(record, AddressForm::msf);
    EXPECT_EQ(table->TrackCount(), 256);
    EXPECT_EQ(table->track(99)->TrackNumber(), 99);
    EXPECT_EQ(table->track(256)->TrackNumber(), 170);
    EXPECT_EQ(table->track(100)->TrackNumber(), 0);
}

TEST(DriveTable, a_disc_that_starts_with_track_3_has_empty_entries_before_it) {
    CDROM_TOC record{};
    record.FirstTrack = 3;
    record.LastTrack = 4;
    for (int i = 0; i < 3; ++i) {
        record.TrackData[i].TrackNumber = static_cast<UCHAR>(i == 2 ? leadOutNumber : i + 3);
        record.TrackData[i].Address[3] = static_cast<UCHAR>(i + 1);
    }
    const auto table = driveTable(record, AddressForm::lba);
    EXPECT_EQ(table->TrackCount(), 5);
    EXPECT_EQ(table->track(1)->TrackNumber(), 0);
    EXPECT_EQ(table->track(3)->StartLBA(), 1);
    EXPECT_EQ(table->track(4)->StartLBA(), 2);
    EXPECT_EQ(table->track(5)->StartLBA(), 3);
}

TEST(DriveTable, a_record_without_lead_out_leaves_the_last_entry_empty) {
    CDROM_TOC record = recordOf(2);
    record.TrackData[2].TrackNumber = 0;
    const auto table = driveTable(record, AddressForm::lba);
    EXPECT_EQ(table->TrackCount(), 3);
    EXPECT_EQ(table->track(3)->TrackNumber(), 0);
}

TEST(DriveTable, an_empty_record_has_one_empty_entry) {
    const auto table = driveTable({}, AddressForm::lba);
    EXPECT_EQ(table->TrackCount(), 1);
    EXPECT_EQ(table->track(1)->TrackNumber(), 0);
}

} // namespace
} // namespace corvina
