#include "window/DeviceChoice.h"

#include <string>

namespace corvina::app {

void DeviceChoice::fill(std::optional<long> wanted) {
    devices_ = queue_.player().devices();
    std::vector<std::wstring> names{L"The system's choice"};
    int selected = 0;
    for (const OutputDevice& device : devices_) {
        names.push_back(device.name);
        if (wanted ? *wanted == device.index : device.name == settings_.device)
            selected = static_cast<int>(names.size()) - 1;
    }
    controls_.setDevices(names, selected);
    if (selected > 0 && !wanted)
        queue_.setDevice(devices_[static_cast<std::size_t>(selected) - 1].index);
}

void DeviceChoice::takeSelected() {
    const int selected = controls_.selectedDevice();
    const bool systemsChoice = selected <= 0;
    const auto index = static_cast<std::size_t>(selected) - 1;
    settings_.device = systemsChoice ? L"" : devices_[index].name;
    queue_.setDevice(systemsChoice ? -1 : devices_[index].index);
    if (queue_.isPlaying())
        queue_.play(queue_.current(), queue_.player().positionSeconds());
}

} // namespace corvina::app
