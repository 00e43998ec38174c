#pragma once

// The request blocks of ASPI for Win32. A block is handed over by its address and must stay where
// it is until its status is no longer pending.

#include <cstddef>
#include <cstdint>

namespace corvina {

namespace Aspi {
inline constexpr std::uint8_t hostAdapterInquiry = 0;
inline constexpr std::uint8_t getDeviceType = 1;
inline constexpr std::uint8_t executeScsi = 2;

inline constexpr std::uint8_t pending = 0;
inline constexpr std::uint8_t complete = 1;

inline constexpr std::uint8_t directionIn = 8;
inline constexpr std::uint8_t cdRom = 5; // peripheral device type
} // namespace Aspi

struct SrbHeader {
    std::uint8_t SRB_Cmd;
    std::uint8_t SRB_Status;
    std::uint8_t SRB_HaId;
    std::uint8_t SRB_Flags;
    std::uint32_t SRB_Hdr_Rsvd;
};

struct SRB_HAInquiry {
    SrbHeader header;
    std::uint8_t HA_Count;
    std::uint8_t HA_SCSI_ID;
    std::uint8_t HA_ManagerId[16];
    std::uint8_t HA_Identifier[16];
    std::uint8_t HA_Unique[16];
    std::uint16_t HA_Rsvd1;
};

struct SRB_GDEVBlock {
    SrbHeader header;
    std::uint8_t SRB_Target;
    std::uint8_t SRB_Lun;
    std::uint8_t SRB_DeviceType;
    std::uint8_t SRB_Rsvd1;
};

struct SRB_ExecSCSICmd {
    SrbHeader header;
    std::uint8_t SRB_Target;
    std::uint8_t SRB_Lun;
    std::uint16_t SRB_Rsvd1;
    std::uint32_t SRB_BufLen;
    void* SRB_BufPointer;
    std::uint8_t SRB_SenseLen;
    std::uint8_t SRB_CDBLen;
    std::uint8_t SRB_HaStat;
    std::uint8_t SRB_TargStat;
    std::uint32_t SRB_PostProc; // 0: nobody is notified
    std::uint8_t SRB_Rsvd2[20];
    std::uint8_t CDBByte[16];
    std::uint8_t SenseArea[16];
};

static_assert(sizeof(SrbHeader) == 8 && offsetof(SrbHeader, SRB_Hdr_Rsvd) == 4);
static_assert(sizeof(SRB_HAInquiry) == 60 && offsetof(SRB_HAInquiry, HA_Rsvd1) == 58);
static_assert(sizeof(SRB_GDEVBlock) == 12 && offsetof(SRB_GDEVBlock, SRB_DeviceType) == 10);
static_assert(sizeof(SRB_ExecSCSICmd) == 80);
static_assert(
    offsetof(SRB_ExecSCSICmd, SRB_Target) == 8 && offsetof(SRB_ExecSCSICmd, SRB_Lun) == 9 &&
    offsetof(SRB_ExecSCSICmd, SRB_BufLen) == 12 &&
    offsetof(SRB_ExecSCSICmd, SRB_BufPointer) == 16 &&
    offsetof(SRB_ExecSCSICmd, SRB_SenseLen) == 20 && offsetof(SRB_ExecSCSICmd, SRB_CDBLen) == 21 &&
    offsetof(SRB_ExecSCSICmd, SRB_HaStat) == 22 && offsetof(SRB_ExecSCSICmd, SRB_TargStat) == 23 &&
    offsetof(SRB_ExecSCSICmd, SRB_PostProc) == 24 && offsetof(SRB_ExecSCSICmd, SRB_Rsvd2) == 28 &&
    offsetof(SRB_ExecSCSICmd, CDBByte) == 48 && offsetof(SRB_ExecSCSICmd, SenseArea) == 64);

} // namespace corvina
