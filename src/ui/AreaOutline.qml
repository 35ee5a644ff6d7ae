import QtQuick
import Vantry

/// Darkens everything but an area, and draws a line around it.
Item {
    id: outline

    /// In this item.
    required property rect area
    required property bool outlined

    Rectangle {
        width: outline.width
        height: outline.area.y
        color: Theme.outside
    }

    Rectangle {
        y: outline.area.y + outline.area.height
        width: outline.width
        height: outline.height - y
        color: Theme.outside
    }

    Rectangle {
        y: outline.area.y
        width: outline.area.x
        height: outline.area.height
        color: Theme.outside
    }

    Rectangle {
        x: outline.area.x + outline.area.width
        y: outline.area.y
        width: outline.width - x
        height: outline.area.height
        color: Theme.outside
    }

    Rectangle {
        x: outline.area.x
        y: outline.area.y
        width: outline.area.width
        height: outline.area.height
        visible: outline.outlined
        color: "transparent"
        border { color: Theme.accentBlue; width: Theme.areaLine }
    }
}
