/* A virtual CD drive, described by a small text file that may change at any time.
 *
 * The folder named by the environment's CORVINA_DRIVES holds a file for each drive: d.drive,
 * e.drive and so on. Each line is a word and its values; lines that start with # are remarks:
 *
 *   device /dev/full          the character device that stands for the drive
 *   disc /path/image.cue      the disc in the drive; without this line the drive is empty
 *   tray open                 the tray is out (the host's own commands move it, too)
 *   name VENDOR|PRODUCT|REV   what INQUIRY returns
 *   address HOST TARGET LUN   its place on a bus
 *   absent                    its device cannot be opened
 *   read-only                 its device cannot be opened for writing
 *   no-aspi                   ASPI does not show it
 *   gone                      every request to its device and every command through ASPI fails;
 *                             ASPI goes on showing it
 *   delay-us N                microseconds that each SCSI command and each read of audio takes;
 *                             the other requests (table, tray, state) return at once
 *   unreadable FIRST COUNT    scratched sectors; repeatable
 *   no-lead-out               sectors of the lead-out cannot be read
 *   refuse OPCODE             requests with this command fail (hexadecimal; repeatable)
 *   check OPCODE KEY ASC ASCQ commands with this code end with CHECK CONDITION (hexadecimal)
 *   short BYTES               a read of sectors transfers no more than this
 *   toc HEX                   what READ TOC returns instead of the disc's table
 *   log /path                 a file to which each request adds a line
 *   after N LINE              LINE holds once N reads of sectors have succeeded since the last
 *                             change
 */
#ifndef DRIVE_H
#define DRIVE_H

#include "disc_image.h"

enum { MAX_LIST = 16, TEXT_SIZE = 4096, TOC_BYTES = 804 };

struct drive_settings {
    char device[TEXT_SIZE];
    char disc[TEXT_SIZE];
    char log[TEXT_SIZE];
    bool tray_open;
    char vendor[9];
    char product[17];
    char revision[5];
    int host, target, lun;
    bool absent, read_only, no_aspi, gone, no_lead_out;
    long delay_us;
    int scratch_count;
    struct {
        int32_t first, count;
    } scratches[MAX_LIST];
    int refuse_count;
    unsigned refused[MAX_LIST];
    bool has_check;
    unsigned check_opcode;
    uint8_t check_sense[3];
    long short_bytes; /* -1: none */
    int toc_bytes;    /* 0: the disc's own */
    uint8_t toc[TOC_BYTES];
};

struct drive {
    char letter;
    struct drive_settings now;
    struct disc_image disc;
    bool has_disc;
    bool tray_open;
    long reads;
};

/* The drive of a letter with its file's present contents; NULL if there is none. */
struct drive* drive_of(char letter);

/* Counts a read of sectors and lets the lines that wait for it hold. */
void drive_count_read(struct drive* drive);

/* Adds a line to the drive's log. */
void drive_log(const struct drive* drive, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

/* The same for a SCSI command and the size of its data. */
void drive_log_command(const struct drive* drive, const char* way, const uint8_t* command,
                       int length, uint32_t size);

static inline bool drive_is_ready(const struct drive* drive) {
    return drive->has_disc && !drive->tray_open;
}

/* Reads sectors; how many could be, from the first on. */
int32_t drive_read(struct drive* drive, int32_t lba, int32_t sectors, uint8_t* place);

bool drive_refuses(const struct drive* drive, unsigned opcode);

#endif
