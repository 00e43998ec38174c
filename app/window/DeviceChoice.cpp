#include "window/DeviceChoice.h"

#include <string>

namespace corvina::app {

void DeviceChoice::fill(std::optional<long> wanted) {
    wanted_ = wanted;
    list();
    if (!wanted_)
        queue_.setDeviceName(settings_.device);
}

void DeviceChoice::list() {
    devices_ = queue_.player().devices();
    std::vector<std::wstring> names{L"The system's choice"};
    int selected = 0;
    for (const OutputDevice& device : devices_) {
        names.push_back(device.name);
        if (wanted_ ? *wanted_ == device.index : device.name == settings_.device)
            selected = static_cast<int>(names.size()) - 1;
    }
    controls_.transport().setDevices(names, selected);
}

void DeviceChoice::takeSelected() {
    const int selected = controls_.transport().selectedDevice();
    wanted_.reset();
    settings_.device = selected <= 0 ? L"" : devices_[static_cast<std::size_t>(selected) - 1].name;
    queue_.setDevice(-1);
    queue_.setDeviceName(settings_.device);
    if (queue_.isPlaying())
        queue_.play(queue_.current(), queue_.positionMs());
}

} // namespace corvina::app
