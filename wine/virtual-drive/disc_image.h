/* A disc from a BIN/CUE image: its tracks and its raw sectors of 2352 bytes. */
#ifndef DISC_IMAGE_H
#define DISC_IMAGE_H

#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>

enum { SECTOR_BYTES = 2352, MAX_TRACKS = 99 };

struct disc_track {
    uint8_t number;
    uint8_t control; /* 4: data; 1: pre-emphasis; 2: copy permitted */
    int32_t start;   /* LBA */
};

struct disc_image {
    int track_count;
    struct disc_track tracks[MAX_TRACKS];
    int32_t lead_out; /* LBA */
    int file_count;
    struct {
        FILE* stream;
        int32_t first; /* LBA of its first sector */
        int32_t sectors;
    } files[MAX_TRACKS];
};

/* Opens a path of the Unix side, also from a Windows program. */
FILE* open_unix_path(const char* path, const char* mode);

/* Reads a cue sheet of whole 2352-byte sectors. If it cannot be used, says why and returns
 * false. */
bool disc_open(struct disc_image* disc, const char* cue_path, char* why, size_t why_size);
void disc_close(struct disc_image* disc);

/* The track that holds a sector; NULL before the first and from the lead-out on. */
const struct disc_track* disc_track_at(const struct disc_image* disc, int32_t lba);

/* Whether the sector was read. Sectors of the lead-out are silence. */
bool disc_read(struct disc_image* disc, int32_t lba, uint8_t* sector);

#endif
