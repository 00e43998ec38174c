#pragma once

// The choice of the output device in the player window. The queue takes the chosen one; its name is
// remembered, because numbers change when devices come and go.

#include "PlayQueue.h"
#include "window/PlayerControls.h"
#include "window/Settings.h"

#include <optional>
#include <vector>

namespace corvina::app {

class DeviceChoice {
public:
    // All three must outlive this object.
    DeviceChoice(PlayQueue& queue, PlayerControls& controls, Settings& settings)
        : queue_(queue), controls_(controls), settings_(settings) {}

    // Lists the devices and selects one. wanted: of the command line; it wins over the remembered
    // one.
    void fill(std::optional<long> wanted);
    // Lists them anew, because devices come and go.
    void list();
    // Takes over what was selected in the list; a file that plays continues there.
    void takeSelected();

private:
    PlayQueue& queue_;
    PlayerControls& controls_;
    Settings& settings_;
    std::optional<long> wanted_; // until the user chooses
    std::vector<OutputDevice> devices_;
};

} // namespace corvina::app
