#pragma once

#include <QObject>

namespace vantry {

/// The fields of a project that controls are bound to.
class ProjectField {
    Q_GADGET

public:
    enum Kind { Name, BubbleSize, YouTubeTitle, YouTubeDescription, YouTubeTags };
    Q_ENUM(Kind)
};

/// The same of an overlay: seconds, and fractions of the frame.
class OverlayField {
    Q_GADGET

public:
    enum Kind { Start, Duration, X, Y, Width };
    Q_ENUM(Kind)
};

} // namespace vantry
