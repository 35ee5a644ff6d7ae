#pragma once

#include "project/Project.h"

#include <optional>

namespace vantry {

class AppModel;
class Recorder;

/// Changes of the layout, from whichever view or key they come. Belongs to the main thread.
class EditingCommands {
public:
    /// Both outlive the commands.
    EditingCommands(AppModel& model, Recorder& recorder);

    /// The layout and the corner from now on; what is absent stays as it is. "Now" is the playhead while editing, the end of what
    /// is recorded while recording. In setup, and without a project, they are what the next recording starts with.
    void setLayout(std::optional<Layout> layout, std::optional<Corner> corner);

    /// Moves the bubble on, clockwise.
    void nextCorner();

    /// What a recording shows at its end, or would start with.
    LayoutEvent liveLayout() const;

private:
    double now() const;

    AppModel& m_model;
    Recorder& m_recorder;
};

} // namespace vantry
