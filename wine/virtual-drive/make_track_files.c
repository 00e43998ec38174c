/* make-track-files IMAGE.cue FOLDER: writes the files Track01.cda and so on that Windows shows in
 * the root of the disc. */
#include "disc_image.h"

#include <string.h>

static void put_number(uint8_t* place, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i, value >>= 8)
        place[i] = (uint8_t)value;
}

/* Frame, second and minute, in this order. */
static void put_time(uint8_t* place, int32_t sectors) {
    place[0] = (uint8_t)(sectors % 75);
    place[1] = (uint8_t)(sectors / 75 % 60);
    place[2] = (uint8_t)(sectors / 4500);
}

static int write_track_file(const char* folder, const struct disc_track* track, int32_t end) {
    uint8_t bytes[44] = {0};
    memcpy(bytes, "RIFF", 4);
    put_number(bytes + 4, sizeof(bytes) - 8, 4);
    memcpy(bytes + 8, "CDDAfmt ", 8);
    put_number(bytes + 16, sizeof(bytes) - 20, 4);
    put_number(bytes + 20, 1, 2);
    put_number(bytes + 22, track->number, 2);
    put_number(bytes + 24, 0xC0881A00u, 4); /* the disc's serial number */
    put_number(bytes + 28, (uint32_t)track->start, 4);
    put_number(bytes + 32, (uint32_t)(end - track->start), 4);
    put_time(bytes + 36, track->start + 150);
    put_time(bytes + 40, end - track->start);
    char path[4096];
    snprintf(path, sizeof(path), "%s/Track%02d.cda", folder, track->number);
    FILE* file = fopen(path, "wb");
    if (!file || fwrite(bytes, sizeof(bytes), 1, file) != 1 || fclose(file) != 0) {
        perror(path);
        return 1;
    }
    return 0;
}

int main(int count, char** arguments) {
    static struct disc_image disc;
    char why[8192];
    if (count != 3) {
        fprintf(stderr, "usage: make-track-files IMAGE.cue FOLDER\n");
        return 2;
    }
    if (!disc_open(&disc, arguments[1], why, sizeof(why))) {
        fprintf(stderr, "make-track-files: %s\n", why);
        return 1;
    }
    for (int i = 0; i < disc.track_count; ++i) {
        const int32_t end = i + 1 < disc.track_count ? disc.tracks[i + 1].start : disc.lead_out;
        if (write_track_file(arguments[2], &disc.tracks[i], end) != 0)
            return 1;
    }
    return 0;
}
