#pragma once

// The functions of kernel32 by which drives are found and asked. A user keeps the table by
// reference: it must outlive the user.

#include <windows.h>

namespace corvina {

struct DeviceApi {
    decltype(&::DeviceIoControl) ioControl = &::DeviceIoControl;
    decltype(&::GetDriveTypeA) driveType = &::GetDriveTypeA;
    decltype(&::GetVersionExA) version = &::GetVersionExA;
};

inline const DeviceApi systemDeviceApi;

} // namespace corvina
