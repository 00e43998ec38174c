// Cue sheets of disc images.

#include "fuzz/FuzzTarget.h"

#include <cstdio>
#include <cstring>
#include <io.h>
#include <memory>

extern "C" {
#include "disc_image.h"

// disc_image.c is compiled to open and close its files by these.
std::FILE* fuzz_fopen(const char* path, const char* mode);
int fuzz_fclose(std::FILE* file);
}

namespace corvina::fuzz {
namespace {

int openFiles = 0;

// Files that are never closed really: the sheet, and one for all images, of five sectors.
std::FILE* sheetFile() {
    static std::FILE* const file = std::tmpfile();
    return file;
}
std::FILE* imageFile() {
    static std::FILE* const file = [] {
        std::FILE* const made = std::tmpfile();
        const Bytes sectors(5 * SECTOR_BYTES, 1);
        require(made && std::fwrite(sectors.data(), 1, sectors.size(), made) == sectors.size(),
                "a temporary file can be made");
        return made;
    }();
    return file;
}

void fillSheet(std::span<const std::uint8_t> content) {
    std::FILE* const file = sheetFile();
    require(file != nullptr, "a temporary file can be made");
    std::rewind(file);
    std::fwrite(content.data(), 1, content.size(), file);
    std::fflush(file);
    _chsize(_fileno(file), static_cast<long>(content.size()));
}

void useSheet(std::span<const std::uint8_t> input) {
    fillSheet(input);
    // On the heap, so that one entry too many is found.
    const auto disc = std::make_unique<disc_image>();
    char why[64];
    if (!disc_open(disc.get(), "/folder/sheet.cue", why, sizeof why)) {
        require(std::memchr(why, 0, sizeof why) != nullptr, "the reason is a text");
        require(openFiles == 0, "every file is closed in the end");
        return;
    }
    require(disc->track_count >= 1 && disc->track_count <= MAX_TRACKS, "a disc has tracks");
    Bytes sector(SECTOR_BYTES);
    for (const std::int32_t lba : {-150, -1, 0, 1, 4, 5, 74, 100000, 2147483647}) {
        (void)disc_track_at(disc.get(), lba);
        (void)disc_read(disc.get(), lba, sector.data());
    }
    disc_close(disc.get());
    require(openFiles == 0, "every file is closed in the end");
}

Bytes text(const char* sheet) {
    return {sheet, sheet + std::strlen(sheet)};
}

std::vector<Bytes> sheetSeeds() {
    return {text("FILE \"a.bin\" BINARY\n  TRACK 01 AUDIO\n    FLAGS DCP PRE 4CH\n"
                 "    INDEX 01 00:00:00\n  TRACK 02 MODE1/2352\n    INDEX 00 00:00:01\n"
                 "    INDEX 01 00:00:02\n"),
            text("REM x\nFILE \"a.bin\" BINARY\r\nTRACK 1 AUDIO\r\nINDEX 01 0:0:0\r\n"
                 "FILE \"/b.bin\" BINARY\r\nTRACK 2 AUDIO\r\nINDEX 01 0:0:0\r\nPREGAP 1\r\n")};
}

const FuzzTarget cueSheet{"cue_sheet", &useSheet, &sheetSeeds, 1024};

} // namespace

std::FILE* openForFuzzing(const char* path) {
    const bool isSheet = std::strcmp(path, "Z:/folder/sheet.cue") == 0;
    std::FILE* const file = isSheet ? sheetFile() : imageFile();
    std::rewind(file);
    ++openFiles;
    return file;
}

void closeForFuzzing() {
    --openFiles;
}

} // namespace corvina::fuzz

std::FILE* fuzz_fopen(const char* path, const char*) {
    return corvina::fuzz::openForFuzzing(path);
}

int fuzz_fclose(std::FILE*) {
    corvina::fuzz::closeForFuzzing();
    return 0;
}
