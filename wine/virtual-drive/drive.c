#include "drive.h"

#include <stdarg.h>
#include <stdlib.h>
#include <string.h>

enum { FILE_SIZE = 16384 };

static struct drive drives[26];
static char contents[26][FILE_SIZE]; /* of each drive's file, as last seen */

static void read_toc_text(struct drive_settings* settings, const char* hex) {
    unsigned byte = 0;
    int length = 0;
    settings->toc_bytes = 0;
    while (settings->toc_bytes < TOC_BYTES && sscanf(hex, " %2x%n", &byte, &length) == 1) {
        settings->toc[settings->toc_bytes++] = (uint8_t)byte;
        hex += length;
    }
}

static void apply(struct drive_settings* s, const char* line, long reads) {
    char word[32] = "";
    int length = 0;
    sscanf(line, "%31s %n", word, &length);
    const char* rest = line + length;
    const bool list = strcmp(word, "unreadable") == 0;
    if (strcmp(word, "device") == 0)
        snprintf(s->device, sizeof(s->device), "%s", rest);
    else if (strcmp(word, "disc") == 0)
        snprintf(s->disc, sizeof(s->disc), "%s", rest);
    else if (strcmp(word, "log") == 0)
        snprintf(s->log, sizeof(s->log), "%s", rest);
    else if (strcmp(word, "tray") == 0)
        s->tray_open = strcmp(rest, "open") == 0;
    else if (strcmp(word, "name") == 0)
        sscanf(rest, "%8[^|]|%16[^|]|%4[^|]", s->vendor, s->product, s->revision);
    else if (strcmp(word, "address") == 0)
        sscanf(rest, "%d %d %d", &s->host, &s->target, &s->lun);
    else if (strcmp(word, "absent") == 0)
        s->absent = true;
    else if (strcmp(word, "read-only") == 0)
        s->read_only = true;
    else if (strcmp(word, "no-aspi") == 0)
        s->no_aspi = true;
    else if (strcmp(word, "gone") == 0)
        s->gone = true;
    else if (strcmp(word, "no-lead-out") == 0)
        s->no_lead_out = true;
    else if (strcmp(word, "delay-us") == 0)
        s->delay_us = atol(rest);
    else if (list && s->scratch_count < MAX_LIST &&
             sscanf(rest, "%d %d", &s->scratches[s->scratch_count].first,
                    &s->scratches[s->scratch_count].count) == 2)
        ++s->scratch_count;
    else if (strcmp(word, "refuse") == 0 && s->refuse_count < MAX_LIST &&
             sscanf(rest, "%x", &s->refused[s->refuse_count]) == 1)
        ++s->refuse_count;
    else if (strcmp(word, "check") == 0) {
        unsigned sense[3] = {0};
        s->has_check =
            sscanf(rest, "%x %x %x %x", &s->check_opcode, &sense[0], &sense[1], &sense[2]) == 4;
        for (int i = 0; i < 3; ++i)
            s->check_sense[i] = (uint8_t)sense[i];
    } else if (strcmp(word, "short") == 0)
        s->short_bytes = atol(rest);
    else if (strcmp(word, "toc") == 0)
        read_toc_text(s, rest);
    else if (strcmp(word, "after") == 0) {
        char* line_after = NULL;
        if (reads >= strtol(rest, &line_after, 10))
            apply(s, line_after + strspn(line_after, " "), reads);
    }
}

static struct drive_settings settings_of(const char* text, long reads) {
    struct drive_settings settings = {
        .vendor = "CORVINA", .product = "VIRTUAL DRIVE", .revision = "1.0", .short_bytes = -1};
    char line[TEXT_SIZE];
    while (*text) {
        const size_t length = strcspn(text, "\r\n");
        snprintf(line, sizeof(line), "%.*s", (int)length, text);
        apply(&settings, line, reads);
        text += length;
        text += strspn(text, "\r\n");
    }
    return settings;
}

/* Takes over what the file says at this moment. */
static void refresh(struct drive* drive, bool file_changed) {
    const struct drive_settings settings = settings_of(contents[drive->letter - 'a'], drive->reads);
    const bool disc_changed = strcmp(settings.disc, drive->now.disc) != 0;
    const bool tray_changed = settings.tray_open != drive->now.tray_open;
    drive->now = settings;
    if (file_changed || tray_changed)
        drive->tray_open = settings.tray_open;
    if (!file_changed && !disc_changed)
        return;
    disc_close(&drive->disc);
    char why[TEXT_SIZE];
    drive->has_disc = settings.disc[0] && disc_open(&drive->disc, settings.disc, why, sizeof(why));
    if (settings.disc[0] && !drive->has_disc)
        drive_log(drive, "no disc: %s", why);
}

struct drive* drive_of(char letter) {
    const char* folder = getenv("CORVINA_DRIVES");
    if (!folder)
        return NULL;
    char path[TEXT_SIZE];
    snprintf(path, sizeof(path), "%s/%c.drive", folder, letter);
    FILE* file = open_unix_path(path, "rb");
    if (!file)
        return NULL;
    static char text[FILE_SIZE];
    const size_t length = fread(text, 1, sizeof(text) - 1, file);
    fclose(file);
    text[length] = '\0';

    const int index = letter - 'a';
    struct drive* drive = &drives[index];
    if (drive->letter && strcmp(text, contents[index]) == 0)
        return drive;
    drive->letter = letter;
    drive->reads = 0;
    memcpy(contents[index], text, length + 1);
    refresh(drive, true);
    return drive;
}

void drive_count_read(struct drive* drive) {
    ++drive->reads;
    if (strstr(contents[drive->letter - 'a'], "after"))
        refresh(drive, false);
}

void drive_log(const struct drive* drive, const char* format, ...) {
    FILE* file = drive->now.log[0] ? open_unix_path(drive->now.log, "ab") : NULL;
    if (!file)
        return;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(file, format, arguments);
    va_end(arguments);
    fputc('\n', file);
    fclose(file);
}

void drive_log_command(const struct drive* drive, const char* way, const uint8_t* command,
                       int length, uint32_t size) {
    static const char digits[] = "0123456789ABCDEF";
    char bytes[3 * 16 + 1] = "";
    for (int i = 0; i < length && i < 16; ++i) {
        bytes[3 * i] = digits[command[i] >> 4];
        bytes[3 * i + 1] = digits[command[i] & 15];
        bytes[3 * i + 2] = ' ';
    }
    drive_log(drive, "%s %s%u", way, bytes, (unsigned)size);
}

static bool is_scratched(const struct drive* drive, int32_t lba) {
    for (int i = 0; i < drive->now.scratch_count; ++i)
        if (lba >= drive->now.scratches[i].first &&
            lba - drive->now.scratches[i].first < drive->now.scratches[i].count)
            return true;
    return drive->now.no_lead_out && lba >= drive->disc.lead_out;
}

int32_t drive_read(struct drive* drive, int32_t lba, int32_t sectors, uint8_t* place) {
    for (int32_t i = 0; i < sectors; ++i) {
        uint8_t sector[SECTOR_BYTES];
        if (is_scratched(drive, lba + i) || !disc_read(&drive->disc, lba + i, sector))
            return i;
        long bytes = SECTOR_BYTES;
        if (drive->now.short_bytes >= 0 && drive->now.short_bytes - (long)i * SECTOR_BYTES < bytes)
            bytes = drive->now.short_bytes - (long)i * SECTOR_BYTES;
        if (bytes > 0)
            memcpy(place + (size_t)i * SECTOR_BYTES, sector, (size_t)bytes);
    }
    return sectors;
}

bool drive_refuses(const struct drive* drive, unsigned opcode) {
    for (int i = 0; i < drive->now.refuse_count; ++i)
        if (drive->now.refused[i] == opcode)
            return true;
    return drive->now.gone;
}
