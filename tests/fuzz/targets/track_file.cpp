// The files that Windows shows for the tracks of a disc, and the tables they are looked up in.

#include "cd/DriveTable.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFiles.h"
#include "runtime/RuntimeError.h"
#include "sources/DecCDA.h"
#include "support/FakeBackend.h"
#include "support/TrackFile.h"

#include <cstring>

namespace corvina::fuzz {
namespace {

void useTrackFile(std::span<const std::uint8_t> input) {
    const MemoryFiles disk(input);
    test::FakeBackends machine;
    const std::int32_t tracks[] = {0, 1000, 20000, 20150, 330000};
    test::FakeDisc disc;
    for (std::uint8_t number = 1; number <= 5; ++number)
        disc.entries.push_back({number == 5 ? leadOutNumber : number, tracks[number - 1]});
    machine.machine.drives = {disc, disc};
    DecCDA source(MemoryFiles::files(), machine.makers());
    const std::int32_t result = source.OpenSource(L"D:\\Track01.cda");
    require(result == 0 || result == 1 || result == 4, "opened, no track file or no such track");
    if (result != 0)
        return;
    Bytes buffer(3000);
    std::int32_t got = 0;
    std::int32_t mode = 0;
    require(source.SeekTo(50, mode) == 0, "an open track can be positioned");
    (void)source.Read(buffer.data(), 3000, got);
    require(got >= 0 && got <= 3000, "a read returns no more than was asked for");
    require(source.Duration() > 0, "an open track has a length");
    source.CloseSource();
}

std::vector<Bytes> trackSeeds() {
    return {test::trackFile(test::msfOf(150), test::msfOf(1000 - 150)),
            test::trackFile(test::msfOf(1150), test::msfOf(19000 - 150)),
            test::trackFile(test::msfOf(1150), test::msfOf(19000)), Bytes(44)};
}

void useTable(std::span<const std::uint8_t> input) {
    CDROM_TOC record{};
    std::memcpy(&record, input.data(), std::min(input.size(), sizeof record));
    for (const AddressForm form : {AddressForm::lba, AddressForm::msf}) {
        const std::unique_ptr<cTOC> table = driveTable(record, form);
        const std::int32_t count = table->TrackCount();
        require(count == record.LastTrack + 1, "an entry for each track and for the end");
        for (std::int32_t index = 1; index <= count; ++index) {
            const cTOCTrack* const track = table->track(index);
            require(track != nullptr, "each index has an entry");
            const std::uint8_t number = track->TrackNumber();
            require(number == 0 || number == index || (number == leadOutNumber && index == count),
                    "an entry stands in the place of its number");
            if (form == AddressForm::msf)
                require(track->StartLBA() <= 256 * 4500, "an address is that of a disc");
        }
    }
}

std::vector<Bytes> tableSeeds() {
    Bytes table(804);
    table[2] = 1;
    table[3] = 2;
    for (std::uint8_t number = 1; number <= 3; ++number) {
        const std::size_t at = 4 + 8 * (number - std::size_t{1});
        table[at + 1] = 0x14;
        table[at + 2] = number == 3 ? leadOutNumber : number;
        table[at + 6] = number;
    }
    return {table, Bytes(804)};
}

const FuzzTarget trackFile{"track_file", &useTrackFile, &trackSeeds, 64};
const FuzzTarget table{"table_of_contents", &useTable, &tableSeeds, 804};

} // namespace
} // namespace corvina::fuzz
