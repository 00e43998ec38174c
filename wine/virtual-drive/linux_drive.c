/* Handles the drive requests that Wine sends to a character device: preloaded into Wine's programs
 * and its server. Anything that is not for a drive goes on to the system.
 *
 * Wine finds a drive by the link dosdevices/d:: in its prefix. The server opens it, where this file
 * can refuse; the programs send the requests themselves. */
#define _GNU_SOURCE
#include "drive.h"
#include "mmc.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/cdrom.h>
#include <pthread.h>
#include <scsi/sg.h>
#include <stdarg.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { FIRST_LETTER = 'b', LAST_LETTER = 'z', HOST_TIMED_OUT = 3 };

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;

static struct drive* drive_with_device(dev_t device) {
    for (char letter = FIRST_LETTER; letter <= LAST_LETTER; ++letter) {
        struct drive* drive = drive_of(letter);
        struct stat node;
        if (drive && stat(drive->now.device, &node) == 0 && S_ISCHR(node.st_mode) &&
            node.st_rdev == device)
            return drive;
    }
    return NULL;
}

static struct drive* drive_of_descriptor(int descriptor) {
    struct stat node;
    if (fstat(descriptor, &node) != 0 || !S_ISCHR(node.st_mode))
        return NULL;
    return drive_with_device(node.st_rdev);
}

static int fail(int error) {
    errno = error;
    return -1;
}

/* A packet waits no longer than its own timeout, in milliseconds; 0 is none. */
static long delay_of(const struct drive* drive, const struct sg_io_hdr* packet) {
    const long limit = packet ? 1000 * (long)packet->timeout : 0;
    return limit > 0 && limit < drive->now.delay_us ? limit : drive->now.delay_us;
}

static int run_packet(struct drive* drive, struct sg_io_hdr* packet) {
    drive_log_command(drive, "SG_IO", packet->cmdp, packet->cmd_len, packet->dxfer_len);
    if (drive_refuses(drive, packet->cmdp[0]))
        return fail(drive->now.gone ? ENODEV : EIO);
    if (delay_of(drive, packet) < drive->now.delay_us) {
        packet->host_status = HOST_TIMED_OUT;
        return fail(ETIMEDOUT);
    }
    const struct mmc_result result =
        mmc_run(drive, packet->cmdp, packet->dxferp, packet->dxferp ? packet->dxfer_len : 0);
    packet->status = (unsigned char)result.status;
    packet->resid = (int)(packet->dxfer_len - result.transferred);
    packet->sb_len_wr = 0;
    if (result.status == MMC_CHECK_CONDITION && packet->sbp) {
        packet->sb_len_wr =
            packet->mx_sb_len < MMC_SENSE_BYTES ? packet->mx_sb_len : MMC_SENSE_BYTES;
        memcpy(packet->sbp, result.sense, packet->sb_len_wr);
    }
    return 0;
}

static int read_header(struct drive* drive, struct cdrom_tochdr* header) {
    drive_log(drive, "CDROMREADTOCHDR");
    if (!drive_is_ready(drive))
        return fail(ENOMEDIUM);
    header->cdth_trk0 = drive->disc.tracks[0].number;
    header->cdth_trk1 = drive->disc.tracks[drive->disc.track_count - 1].number;
    return 0;
}

static void put_address(struct cdrom_tocentry* entry, int32_t lba) {
    if (entry->cdte_format == CDROM_LBA) {
        entry->cdte_addr.lba = lba;
        return;
    }
    const int32_t frames = lba + CD_MSF_OFFSET;
    entry->cdte_addr.msf.minute = (__u8)(frames / 4500);
    entry->cdte_addr.msf.second = (__u8)(frames / 75 % 60);
    entry->cdte_addr.msf.frame = (__u8)(frames % 75);
}

static int read_entry(struct drive* drive, struct cdrom_tocentry* entry) {
    drive_log(drive, "CDROMREADTOCENTRY %d", entry->cdte_track);
    if (!drive_is_ready(drive))
        return fail(ENOMEDIUM);
    entry->cdte_adr = 1;
    if (entry->cdte_track == CDROM_LEADOUT) {
        entry->cdte_ctrl = drive->disc.tracks[drive->disc.track_count - 1].control & 15;
        put_address(entry, drive->disc.lead_out);
        return 0;
    }
    for (int i = 0; i < drive->disc.track_count; ++i)
        if (drive->disc.tracks[i].number == entry->cdte_track) {
            entry->cdte_ctrl = drive->disc.tracks[i].control & 15;
            put_address(entry, drive->disc.tracks[i].start);
            return 0;
        }
    return fail(EINVAL);
}

static int read_audio(struct drive* drive, const struct cdrom_read_audio* read) {
    const int32_t lba = read->addr_format == CDROM_LBA
                            ? read->addr.lba
                            : (read->addr.msf.minute * 60 + read->addr.msf.second) * 75 +
                                  read->addr.msf.frame - CD_MSF_OFFSET;
    drive_log(drive, "CDROMREADAUDIO %d %d", lba, read->nframes);
    drive_count_read(drive);
    if (!drive_is_ready(drive))
        return fail(ENOMEDIUM);
    if (lba < 0 || read->nframes < 0 || !read->buf)
        return fail(EINVAL);
    for (int32_t i = 0; i < read->nframes; ++i) {
        const struct disc_track* track = disc_track_at(&drive->disc, lba + i);
        if (track && (track->control & 12) == 4)
            return fail(EIO); /* data is no audio */
    }
    return drive_read(drive, lba, read->nframes, read->buf) == read->nframes ? 0 : fail(EIO);
}

static int move_tray(struct drive* drive, bool open) {
    drive_log(drive, open ? "CDROMEJECT" : "CDROMCLOSETRAY");
    drive->tray_open = open;
    return 0;
}

static int drive_status(const struct drive* drive) {
    if (drive->tray_open)
        return CDS_TRAY_OPEN;
    return drive->has_disc ? CDS_DISC_OK : CDS_NO_DISC;
}

static int run(struct drive* drive, unsigned long request, void* argument) {
    if (drive->now.gone)
        return fail(ENODEV);
    switch (request) {
    case SG_IO:
        return run_packet(drive, argument);
    case CDROMREADTOCHDR:
        return read_header(drive, argument);
    case CDROMREADTOCENTRY:
        return read_entry(drive, argument);
    case CDROMREADAUDIO:
        return read_audio(drive, argument);
    case CDROMEJECT:
        return move_tray(drive, true);
    case CDROMCLOSETRAY:
        return move_tray(drive, false);
    case CDROM_DRIVE_STATUS:
        return drive_status(drive);
    case CDROM_GET_CAPABILITY:
        return CDC_OPEN_TRAY | CDC_CLOSE_TRAY | CDC_PLAY_AUDIO;
    default:
        return fail(EINVAL);
    }
}

static bool is_for_a_drive(unsigned long request) {
    return (request >> 8 & 0xFF) == 0x53 || request == SG_IO;
}

/* Whether the request was for a drive; its result is then in *result. */
static bool handled(int descriptor, unsigned long request, void* argument, int* result) {
    if (!is_for_a_drive(request))
        return false;
    pthread_mutex_lock(&lock);
    struct drive* drive = drive_of_descriptor(descriptor);
    long delay_us = 0;
    if (drive && (request == SG_IO || request == CDROMREADAUDIO))
        delay_us = delay_of(drive, request == SG_IO ? argument : NULL);
    pthread_mutex_unlock(&lock);
    if (!drive)
        return false;
    if (delay_us > 0)
        usleep((useconds_t)delay_us);
    pthread_mutex_lock(&lock);
    *result = run(drive, request, argument);
    const int error = errno;
    pthread_mutex_unlock(&lock);
    errno = error;
    return true;
}

#define DEFINE_IOCTL(name)                                                                         \
    int name(int descriptor, unsigned long request, ...) {                                         \
        va_list arguments;                                                                         \
        va_start(arguments, request);                                                              \
        void* argument = va_arg(arguments, void*);                                                 \
        va_end(arguments);                                                                         \
        int result = 0;                                                                            \
        if (handled(descriptor, request, argument, &result))                                       \
            return result;                                                                         \
        static int (*system_call)(int, unsigned long, ...);                                        \
        if (!system_call)                                                                          \
            system_call = (int (*)(int, unsigned long, ...))dlsym(RTLD_NEXT, #name);               \
        return system_call(descriptor, request, argument);                                         \
    }

DEFINE_IOCTL(ioctl)
DEFINE_IOCTL(__ioctl_time64) /* what 32-bit programs with a 64-bit time call */

/* A prefix calls the device of drive D: dosdevices/d::. */
static bool names_device(const char* path) {
    const size_t length = strlen(path);
    return length > 2 && strcmp(path + length - 2, "::") == 0;
}

/* Whether the drive behind a link of a prefix lets itself be opened so. */
static bool may_open(const char* path, int flags) {
    struct stat node;
    if (!names_device(path) || stat(path, &node) != 0 || !S_ISCHR(node.st_mode))
        return true;
    pthread_mutex_lock(&lock);
    const struct drive* drive = drive_with_device(node.st_rdev);
    const bool refused =
        drive && (drive->now.absent || (drive->now.read_only && (flags & O_ACCMODE) != O_RDONLY));
    pthread_mutex_unlock(&lock);
    return !refused;
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (!may_open(path, flags))
        return fail(EACCES);
    static int (*system_call)(const char*, int, ...);
    if (!system_call)
        system_call = (int (*)(const char*, int, ...))dlsym(RTLD_NEXT, "open64");
    return system_call(path, flags, mode);
}
