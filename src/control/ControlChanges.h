#pragma once

// What the parts of a control report to the control they belong to.

namespace corvina {

class ControlChanges {
public:
    // Properties and extent were loaded or reset.
    virtual void stateLoaded() = 0;
    // The picture is another one: it is painted anew, and containers that show a still picture are
    // notified.
    virtual void pictureChanged() noexcept = 0;

protected:
    ~ControlChanges() = default;
};

} // namespace corvina
