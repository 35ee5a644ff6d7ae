#pragma once

#include <QObject>

#include "project/Project.h"

namespace vantry {

/// The project's layouts as the views name them; the project itself knows nothing of views. The values are the same.
class LayoutKind {
    Q_GADGET

public:
    enum Kind { Camera = int(Layout::camera), Bubble = int(Layout::bubble), Screen = int(Layout::screen) };
    Q_ENUM(Kind)
};

/// The same of the corners.
class CornerKind {
    Q_GADGET

public:
    enum Kind {
        TopLeft = int(Corner::topLeft),
        TopRight = int(Corner::topRight),
        BottomRight = int(Corner::bottomRight),
        BottomLeft = int(Corner::bottomLeft),
    };
    Q_ENUM(Kind)
};

} // namespace vantry
