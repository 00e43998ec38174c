#pragma once

// How each backend is made. A test gives its own; the manager never knows what it holds.

#include "cd/cCDAccess.h"
#include "platform/DeviceApi.h"
#include "platform/FileApi.h"

#include <functional>
#include <memory>

namespace corvina {

struct CdBackends {
    using Make = std::function<std::unique_ptr<cCDAccess>()>;

    Make spti;
    Make ioctl;
    Make aspi;
};

[[nodiscard]] CdBackends systemCdBackends(const DeviceApi& devices = systemDeviceApi,
                                          const FileApi& files = systemFileApi);

} // namespace corvina
