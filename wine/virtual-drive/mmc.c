#include "mmc.h"

#include <string.h>

enum { NOT_READY = 2, MEDIUM_ERROR = 3, ILLEGAL_REQUEST = 5 };

static struct mmc_result good(uint32_t transferred) {
    return (struct mmc_result){.status = MMC_GOOD, .transferred = transferred};
}

static struct mmc_result check(uint8_t key, uint8_t asc, uint8_t ascq) {
    struct mmc_result result = {.status = MMC_CHECK_CONDITION};
    result.sense[0] = 0x70;
    result.sense[2] = key;
    result.sense[7] = MMC_SENSE_BYTES - 8;
    result.sense[12] = asc;
    result.sense[13] = ascq;
    return result;
}

static struct mmc_result no_medium(const struct drive* drive) {
    return check(NOT_READY, 0x3A, drive->tray_open ? 2 : 1);
}

static struct mmc_result transfer(uint8_t* data, uint32_t size, const uint8_t* from,
                                  uint32_t bytes) {
    const uint32_t count = bytes < size ? bytes : size;
    if (count)
        memcpy(data, from, count);
    return good(count);
}

static void put_text(uint8_t* place, size_t width, const char* text) {
    memset(place, ' ', width);
    memcpy(place, text, strnlen(text, width));
}

static struct mmc_result inquiry(const struct drive* drive, const uint8_t* command, uint8_t* data,
                                 uint32_t size) {
    uint8_t reply[36] = {5, 0x80, 5, 2, sizeof(reply) - 5};
    put_text(reply + 8, 8, drive->now.vendor);
    put_text(reply + 16, 16, drive->now.product);
    put_text(reply + 32, 4, drive->now.revision);
    const uint32_t asked = command[4] < sizeof(reply) ? command[4] : sizeof(reply);
    return transfer(data, size, reply, asked);
}

static struct mmc_result start_stop(struct drive* drive, const uint8_t* command) {
    const bool move_tray = command[4] & 2;
    if (move_tray)
        drive->tray_open = !(command[4] & 1);
    return good(0);
}

static void put_address(uint8_t* place, int32_t lba, bool msf) {
    uint32_t value = (uint32_t)lba;
    if (msf) {
        const uint32_t frames = value + 150;
        value = (frames / 4500) << 16 | (frames / 75 % 60) << 8 | frames % 75;
    }
    for (int i = 3; i >= 0; --i, value >>= 8)
        place[i] = (uint8_t)value;
}

static void put_entry(uint8_t* place, uint8_t control, uint8_t number, int32_t lba, bool msf) {
    place[1] = (uint8_t)(0x10 | control);
    place[2] = number;
    put_address(place + 4, lba, msf);
}

static struct mmc_result read_toc(const struct drive* drive, const uint8_t* command, uint8_t* data,
                                  uint32_t size) {
    const uint32_t allocated = (uint32_t)(command[7] << 8 | command[8]);
    const uint32_t space = allocated < size ? allocated : size;
    if (drive->now.toc_bytes)
        return transfer(data, space, drive->now.toc, (uint32_t)drive->now.toc_bytes);
    if (!drive_is_ready(drive))
        return no_medium(drive);
    if (command[2] & 0x0F)
        return check(ILLEGAL_REQUEST, 0x24, 0);
    const struct disc_image* disc = &drive->disc;
    const bool msf = command[1] & 2;
    uint8_t reply[4 + 8 * (MAX_TRACKS + 1)] = {0};
    uint32_t length = 4;
    for (int i = 0; i < disc->track_count; ++i, length += 8)
        put_entry(reply + length, disc->tracks[i].control, disc->tracks[i].number,
                  disc->tracks[i].start, msf);
    put_entry(reply + length, disc->tracks[disc->track_count - 1].control, 0xAA, disc->lead_out,
              msf);
    length += 8;
    reply[0] = (uint8_t)((length - 2) >> 8);
    reply[1] = (uint8_t)(length - 2);
    reply[2] = disc->tracks[0].number;
    reply[3] = disc->tracks[disc->track_count - 1].number;
    return transfer(data, space, reply, length);
}

static struct mmc_result read_cd(struct drive* drive, const uint8_t* command, uint8_t* data,
                                 uint32_t size) {
    const int32_t lba = (int32_t)((uint32_t)command[2] << 24 | (uint32_t)command[3] << 16 |
                                  (uint32_t)command[4] << 8 | command[5]);
    const int32_t sectors = command[6] << 16 | command[7] << 8 | command[8];
    drive_count_read(drive);
    if (!drive_is_ready(drive))
        return no_medium(drive);
    if (lba < 0 || lba >= drive->disc.lead_out + sectors)
        return check(ILLEGAL_REQUEST, 0x21, 0);
    if ((command[9] & 0xF8) != 0xF8 || (uint64_t)sectors * SECTOR_BYTES > size)
        return check(ILLEGAL_REQUEST, 0x24, 0);
    if (drive_read(drive, lba, sectors, data) < sectors)
        return check(MEDIUM_ERROR, 0x11, 5);
    uint32_t bytes = (uint32_t)sectors * SECTOR_BYTES;
    if (drive->now.short_bytes >= 0 && (uint32_t)drive->now.short_bytes < bytes)
        bytes = (uint32_t)drive->now.short_bytes;
    return good(bytes);
}

struct mmc_result mmc_run(struct drive* drive, const uint8_t* command, uint8_t* data,
                          uint32_t size) {
    if (drive->now.has_check && drive->now.check_opcode == command[0])
        return check(drive->now.check_sense[0], drive->now.check_sense[1],
                     drive->now.check_sense[2]);
    switch (command[0]) {
    case MMC_TEST_UNIT_READY:
        return drive_is_ready(drive) ? good(0) : no_medium(drive);
    case MMC_INQUIRY:
        return inquiry(drive, command, data, size);
    case MMC_START_STOP_UNIT:
        return start_stop(drive, command);
    case MMC_READ_TOC:
        return read_toc(drive, command, data, size);
    case MMC_READ_CD:
        return read_cd(drive, command, data, size);
    default:
        return check(ILLEGAL_REQUEST, 0x20, 0);
    }
}
