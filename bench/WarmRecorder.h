#pragma once

#include "capture/Recorder.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantry::bench {

/// A recorder of the environment's display and of other programs' sound that sees and hears all of its sources already.
class WarmRecorder {
public:
    struct Take {
        HostDuration start{}; ///< From the wish to begin until the file's writer had its first picture.
        double processorPercent = 0; ///< Of this process, until the file was complete; 100 is one core.
        ClipOutcome outcome;
    };

    /// Throws std::runtime_error when a source stays away.
    WarmRecorder(const std::string& microphone, const std::optional<std::string>& camera);

    /// Throws std::runtime_error when the clip cannot be completed.
    Take record(const std::filesystem::path& file, HostDuration length);

private:
    Recorder m_recorder;
    ClipOutcome m_outcome; ///< Of the latest clip; belongs to its writer until that is done.
};

} // namespace vantry::bench
