/* A stand-in for ASPI for Win32 over the virtual drives. Commands end on another thread, as those
 * of a real one do. Nothing is posted or called back at their end: callers poll the status. */
#include "drive.h"
#include "mmc.h"

#include <string.h>
#include <windows.h>

enum {
    COMPLETE = 1,
    ENDED_IN_ERROR = 4,
    INVALID_ADAPTER = 0x81,
    NO_DEVICE = 0x82,
    INVALID_COMMAND = 0x80,
    CD_ROM_TYPE = 5,
    ADAPTERS = 4
};
enum { HA_INQUIRY = 0, GET_DEVICE_TYPE = 1, EXECUTE = 2 };

struct request_block {
    uint8_t command;
    volatile uint8_t status;
    uint8_t adapter;
    uint8_t flags;
    uint32_t reserved;
};

struct adapter_block {
    struct request_block header;
    uint8_t count, scsi_id;
    char manager[16], identifier[16];
    uint8_t unique[16];
    uint16_t reserved;
};

struct type_block {
    struct request_block header;
    uint8_t target, lun, type, reserved;
};

struct command_block {
    struct request_block header;
    uint8_t target, lun;
    uint16_t reserved1;
    uint32_t size;
    uint8_t* data;
    uint8_t sense_size, command_size, adapter_status, target_status;
    uint32_t notification;
    uint8_t reserved2[20];
    uint8_t command[16];
    uint8_t sense[16];
};

_Static_assert(sizeof(struct adapter_block) == 60, "the host adapter inquiry block");
_Static_assert(sizeof(struct type_block) == 12, "the device type block");
_Static_assert(sizeof(struct command_block) == 80, "the SCSI command block");

static CRITICAL_SECTION lock;

static struct drive* drive_at(int host, int target, int lun) {
    for (char letter = 'b'; letter <= 'z'; ++letter) {
        struct drive* drive = drive_of(letter);
        if (drive && !drive->now.no_aspi && drive->now.host == host &&
            drive->now.target == target && drive->now.lun == lun)
            return drive;
    }
    return NULL;
}

static int adapter_count(void) {
    int count = 0;
    for (char letter = 'b'; letter <= 'z'; ++letter) {
        const struct drive* drive = drive_of(letter);
        if (drive && !drive->now.no_aspi && drive->now.host >= count)
            count = drive->now.host + 1;
    }
    return count < ADAPTERS ? count : ADAPTERS;
}

static void tell_adapter(struct adapter_block* block) {
    if (block->header.adapter >= adapter_count()) {
        block->header.status = INVALID_ADAPTER;
        return;
    }
    block->count = (uint8_t)adapter_count();
    block->scsi_id = 7;
    memcpy(block->manager, "VIRTUAL ASPI    ", sizeof(block->manager));
    memcpy(block->identifier, "VIRTUAL ADAPTER ", sizeof(block->identifier));
    block->header.status = COMPLETE;
}

static void tell_type(struct type_block* block) {
    if (!drive_at(block->header.adapter, block->target, block->lun)) {
        block->header.status = NO_DEVICE;
        return;
    }
    block->type = CD_ROM_TYPE;
    block->header.status = COMPLETE;
}

static uint8_t run(struct command_block* block, struct drive* drive) {
    if (!drive)
        return NO_DEVICE;
    drive_log_command(drive, "ASPI", block->command, block->command_size, block->size);
    if (drive_refuses(drive, block->command[0]))
        return ENDED_IN_ERROR;
    const struct mmc_result result = mmc_run(drive, block->command, block->data, block->size);
    block->target_status = (uint8_t)result.status;
    if (result.status == MMC_GOOD)
        return COMPLETE;
    const size_t space = block->sense_size < 16 ? block->sense_size : 16;
    memcpy(block->sense, result.sense, space);
    return ENDED_IN_ERROR;
}

static DWORD WINAPI run_later(void* argument) {
    struct command_block* block = argument;
    EnterCriticalSection(&lock);
    struct drive* drive = drive_at(block->header.adapter, block->target, block->lun);
    const long delay_us = drive ? drive->now.delay_us : 0;
    LeaveCriticalSection(&lock);
    if (delay_us > 0)
        Sleep((DWORD)((delay_us + 999) / 1000));
    EnterCriticalSection(&lock);
    const uint8_t status = run(block, drive);
    LeaveCriticalSection(&lock);
    /* From here on the block may be gone. */
    block->header.status = status;
    return 0;
}

DWORD __cdecl GetASPI32SupportInfo(void) {
    EnterCriticalSection(&lock);
    const int adapters = adapter_count();
    LeaveCriticalSection(&lock);
    return COMPLETE << 8 | (DWORD)adapters;
}

DWORD __cdecl SendASPI32Command(struct request_block* block) {
    if (block->command == EXECUTE) {
        block->status = 0;
        if (!QueueUserWorkItem(run_later, block, WT_EXECUTEDEFAULT))
            block->status = ENDED_IN_ERROR;
        return 0;
    }
    EnterCriticalSection(&lock);
    if (block->command == HA_INQUIRY)
        tell_adapter((struct adapter_block*)block);
    else if (block->command == GET_DEVICE_TYPE)
        tell_type((struct type_block*)block);
    else
        block->status = INVALID_COMMAND;
    LeaveCriticalSection(&lock);
    return block->status;
}

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved) {
    (void)module;
    (void)reserved;
    if (reason == DLL_PROCESS_ATTACH)
        InitializeCriticalSection(&lock);
    return TRUE;
}
