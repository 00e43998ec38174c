#include "sources/MediaFileSize.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <windows.h>

namespace corvina {

std::int32_t averageBitrate(const std::wstring& path, double seconds) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!(seconds > 0) || !::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return 0;
    const double bytes = data.nFileSizeHigh * 4294967296.0 + data.nFileSizeLow;
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(std::floor(bytes * 8 / seconds), most));
}

} // namespace corvina
