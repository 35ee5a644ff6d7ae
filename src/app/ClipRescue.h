#pragma once

namespace vantry {

class AppModel;

/// Finishes the clip in progress when the process ends in the middle of it, as the toolkit ends it by itself when the X server is
/// gone. There is one at a time, on the main thread.
class ClipRescue {
public:
    /// The model outlives the rescue.
    explicit ClipRescue(AppModel& model);
    ~ClipRescue();

    ClipRescue(const ClipRescue&) = delete;
    ClipRescue& operator=(const ClipRescue&) = delete;
};

} // namespace vantry
