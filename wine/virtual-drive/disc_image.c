#include "disc_image.h"

#include <stdlib.h>
#include <string.h>

enum { LEAD_OUT_SECTORS = 90 * 75, PATH_SIZE = 4096, MAX_MINUTE = 9999 };

struct sheet {
    struct disc_image* disc;
    char folder[PATH_SIZE]; /* with its last slash */
    bool has_start;         /* the last track's index 01 was seen */
    char* why;
    size_t why_size;
};

static bool refuse(struct sheet* sheet, const char* reason, const char* line) {
    snprintf(sheet->why, sheet->why_size, "%s: %s", reason, line);
    return false;
}

FILE* open_unix_path(const char* path, const char* mode) {
#ifdef _WIN32
    char windows_path[PATH_SIZE];
    if (snprintf(windows_path, sizeof(windows_path), "Z:%s", path) >= (int)sizeof(windows_path))
        return NULL;
    return fopen(windows_path, mode);
#else
    return fopen(path, mode);
#endif
}

static bool add_file(struct sheet* sheet, const char* line) {
    struct disc_image* disc = sheet->disc;
    char name[PATH_SIZE];
    char path[2 * PATH_SIZE];
    char type[16];
    if (sscanf(line, " FILE \"%4095[^\"]\" %15s", name, type) != 2 || strcmp(type, "BINARY") != 0)
        return refuse(sheet, "not a FILE \"name\" BINARY", line);
    if (disc->file_count == MAX_TRACKS)
        return refuse(sheet, "too many files", line);
    snprintf(path, sizeof(path), "%s%s", name[0] == '/' ? "" : sheet->folder, name);
    FILE* stream = open_unix_path(path, "rb");
    if (!stream)
        return refuse(sheet, "cannot open", path);
    fseek(stream, 0, SEEK_END);
    const long bytes = ftell(stream);
    disc->files[disc->file_count].stream = stream;
    disc->files[disc->file_count].first = disc->lead_out;
    disc->files[disc->file_count].sectors = (int32_t)(bytes / SECTOR_BYTES);
    disc->lead_out += disc->files[disc->file_count].sectors;
    ++disc->file_count;
    return true;
}

static bool add_track(struct sheet* sheet, const char* line) {
    struct disc_image* disc = sheet->disc;
    int number = 0;
    char mode[16];
    if (sscanf(line, " TRACK %d %15s", &number, mode) != 2 || number < 1 || number > MAX_TRACKS ||
        disc->track_count == MAX_TRACKS || disc->file_count == 0)
        return refuse(sheet, "not a track", line);
    const bool audio = strcmp(mode, "AUDIO") == 0;
    if (!audio && strcmp(mode, "MODE1/2352") != 0 && strcmp(mode, "MODE2/2352") != 0)
        return refuse(sheet, "sectors are not whole", line);
    struct disc_track* track = &disc->tracks[disc->track_count++];
    track->number = (uint8_t)number;
    track->control = audio ? 0 : 4;
    sheet->has_start = false;
    return true;
}

static bool add_flags(struct sheet* sheet, const char* line) {
    if (sheet->disc->track_count == 0)
        return refuse(sheet, "flags before a track", line);
    struct disc_track* track = &sheet->disc->tracks[sheet->disc->track_count - 1];
    if (strstr(line, "PRE"))
        track->control |= 1;
    if (strstr(line, "DCP"))
        track->control |= 2;
    if (strstr(line, "4CH"))
        track->control |= 8;
    return true;
}

static bool add_index(struct sheet* sheet, const char* line) {
    struct disc_image* disc = sheet->disc;
    int index = 0;
    int minute = 0;
    int second = 0;
    int frame = 0;
    if (sscanf(line, " INDEX %d %d:%d:%d", &index, &minute, &second, &frame) != 4 ||
        disc->track_count == 0 || minute < 0 || minute > MAX_MINUTE || second < 0 || second > 59 ||
        frame < 0 || frame > 74)
        return refuse(sheet, "not an index", line);
    if (index == 1) {
        disc->tracks[disc->track_count - 1].start =
            disc->files[disc->file_count - 1].first + (minute * 60 + second) * 75 + frame;
        sheet->has_start = true;
    }
    return true;
}

static bool read_line(struct sheet* sheet, const char* line) {
    char word[16] = "";
    sscanf(line, "%15s", word);
    if (strcmp(word, "FILE") == 0)
        return add_file(sheet, line);
    if (strcmp(word, "TRACK") == 0)
        return add_track(sheet, line);
    if (strcmp(word, "FLAGS") == 0)
        return add_flags(sheet, line);
    if (strcmp(word, "INDEX") == 0)
        return add_index(sheet, line);
    if (strcmp(word, "PREGAP") == 0 || strcmp(word, "POSTGAP") == 0)
        return refuse(sheet, "gaps that the image does not hold", line);
    return true; /* titles, remarks and codes */
}

bool disc_open(struct disc_image* disc, const char* cue_path, char* why, size_t why_size) {
    memset(disc, 0, sizeof(*disc));
    struct sheet sheet = {.disc = disc, .has_start = true, .why = why, .why_size = why_size};
    snprintf(sheet.folder, sizeof(sheet.folder), "%s", cue_path);
    char* slash = strrchr(sheet.folder, '/');
    *(slash ? slash + 1 : sheet.folder) = '\0';
    FILE* cue = open_unix_path(cue_path, "r");
    if (!cue)
        return refuse(&sheet, "cannot open", cue_path);
    char line[2 * PATH_SIZE];
    bool good = true;
    while (good && fgets(line, sizeof(line), cue)) {
        line[strcspn(line, "\r\n")] = '\0';
        good = read_line(&sheet, line);
    }
    fclose(cue);
    if (good && (disc->track_count == 0 || !sheet.has_start))
        good = refuse(&sheet, "no track or a track without INDEX 01", cue_path);
    if (!good)
        disc_close(disc);
    return good;
}

void disc_close(struct disc_image* disc) {
    for (int i = 0; i < disc->file_count; ++i)
        fclose(disc->files[i].stream);
    memset(disc, 0, sizeof(*disc));
}

const struct disc_track* disc_track_at(const struct disc_image* disc, int32_t lba) {
    const struct disc_track* found = NULL;
    if (lba < disc->lead_out)
        for (int i = 0; i < disc->track_count && disc->tracks[i].start <= lba; ++i)
            found = &disc->tracks[i];
    return found;
}

bool disc_read(struct disc_image* disc, int32_t lba, uint8_t* sector) {
    for (int i = 0; i < disc->file_count; ++i) {
        const int32_t place = lba - disc->files[i].first;
        if (place >= 0 && place < disc->files[i].sectors)
            return fseek(disc->files[i].stream, (long)place * SECTOR_BYTES, SEEK_SET) == 0 &&
                   fread(sector, SECTOR_BYTES, 1, disc->files[i].stream) == 1;
    }
    memset(sector, 0, SECTOR_BYTES);
    return lba >= disc->lead_out && lba < disc->lead_out + LEAD_OUT_SECTORS;
}
