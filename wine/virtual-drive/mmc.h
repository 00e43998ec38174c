/* The SCSI commands of a virtual drive. */
#ifndef MMC_H
#define MMC_H

#include "drive.h"

enum { MMC_GOOD = 0, MMC_CHECK_CONDITION = 2, MMC_SENSE_BYTES = 18 };

enum {
    MMC_TEST_UNIT_READY = 0x00,
    MMC_INQUIRY = 0x12,
    MMC_START_STOP_UNIT = 0x1B,
    MMC_READ_TOC = 0x43,
    MMC_READ_CD = 0xBE
};

struct mmc_result {
    int status;
    uint8_t sense[MMC_SENSE_BYTES];
    uint32_t transferred; /* bytes of data */
};

/* Runs a command that takes data in. Never writes more than size bytes. */
struct mmc_result mmc_run(struct drive* drive, const uint8_t* command, uint8_t* data,
                          uint32_t size);

#endif
