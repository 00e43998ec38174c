#include "cd/CdBackends.h"

#include "cd/cdASPI.h"
#include "cd/cdIOCTL.h"
#include "cd/cdSPTI.h"

namespace corvina {

CdBackends systemCdBackends(const DeviceApi& devices, const FileApi& files) {
    const DriveDevice drives(devices, files);
    return {.spti = [drives] { return std::make_unique<cdSPTI>(drives); },
            .ioctl = [drives] { return std::make_unique<cdIOCTL>(drives); },
            .aspi = [drives] { return std::make_unique<cdASPI>(drives); }};
}

} // namespace corvina
